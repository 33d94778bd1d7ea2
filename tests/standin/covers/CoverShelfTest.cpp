#include "standin/covers/CoverShelf.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "base/Failure.hpp"
#include "files/WriteFile.hpp"
#include "standin/covers/PictureMarks.hpp"
#include "support/TempFolder.hpp"

namespace {

using standin::CoverShelf;
using standin::PictureMarks;

void Write(const std::string& path, const std::string& bytes) { files::WriteFile(path, bytes); }

class Shelf : public testing::Test {
 protected:
  support::TempFolder folder;
  std::filesystem::path place = folder.path() / "covers";
  const std::string first = CoverShelf::keyOf("first");
  const std::string second = CoverShelf::keyOf("second");
  const std::string third = CoverShelf::keyOf("third");
};

TEST_F(Shelf, GivesBackWhatWasPutOnItAfterAStartToo) {
  {
    CoverShelf shelf(place);
    EXPECT_EQ(shelf.take(first, 256), std::nullopt);
    shelf.put(first, 256, "small");
    EXPECT_EQ(shelf.take(first, 256), "small");
    EXPECT_FALSE(shelf.has(first, 1024));
  }
  CoverShelf again(place);
  EXPECT_TRUE(again.has(first, 256));
  EXPECT_EQ(again.take(first, 256), "small");
  EXPECT_EQ(again.used(), 5U);
}

TEST_F(Shelf, MakesRoomByWhatNobodyHasAskedForLongest) {
  CoverShelf shelf(place, {.disk = 10, .memory = 0}, &Write);
  shelf.put(first, 256, "12345");
  shelf.put(second, 256, "12345");
  EXPECT_EQ(shelf.take(first, 256), "12345");
  shelf.put(third, 256, "12345");
  EXPECT_TRUE(shelf.has(first, 256));
  EXPECT_FALSE(shelf.has(second, 256));
  EXPECT_TRUE(shelf.has(third, 256));
  EXPECT_LE(shelf.used(), 10U);
  int files = 0;
  for ([[maybe_unused]] const auto& each : std::filesystem::directory_iterator(place)) ++files;
  EXPECT_EQ(files, 2);
}

TEST_F(Shelf, OnAFullDiskStillHasTheNewestInMemory) {
  CoverShelf shelf(place, {.disk = 100, .memory = 10}, [](const std::string&, const std::string&) {
    throw base::Failure(base::number::kDiskFull);
  });
  shelf.put(first, 256, "12345");
  shelf.put(second, 256, "12345");
  EXPECT_EQ(shelf.take(first, 256), "12345");
  shelf.put(third, 256, "12345");
  EXPECT_EQ(shelf.take(first, 256), "12345") << "asked for since the second was";
  EXPECT_EQ(shelf.take(second, 256), std::nullopt);
  EXPECT_EQ(shelf.used(), 0U);
}

TEST_F(Shelf, ThatSomebodyHasClearedHasNothing) {
  CoverShelf shelf(place, {.disk = 100, .memory = 0}, &Write);
  shelf.put(first, 256, "12345");
  std::filesystem::remove_all(place);
  EXPECT_EQ(shelf.take(first, 256), std::nullopt);
  EXPECT_FALSE(shelf.has(first, 256));
  shelf.put(first, 256, "12345");
  EXPECT_EQ(shelf.take(first, 256), "12345");
}

TEST_F(Shelf, KnowsAKeyFromAWayOut) {
  EXPECT_TRUE(CoverShelf::isKey(first));
  EXPECT_FALSE(CoverShelf::isKey(""));
  EXPECT_FALSE(CoverShelf::isKey("../../../../../../../etc/passwd0"));
  EXPECT_FALSE(CoverShelf::isKey(first + "0"));
}

TEST_F(Shelf, MarksAreKnownAfterAStartAndACutLineSpoilsNoOther) {
  const auto file = folder.path() / "marks";
  {
    PictureMarks marks(file);
    EXPECT_EQ(marks.find("fA1"), std::nullopt);
    marks.put("fA1", first);
    marks.put("iB2", "");
    marks.put("not a mark", second);
  }
  std::ofstream(file, std::ios::app) << "fC3 " << second.substr(0, 7);
  {
    PictureMarks marks(file);
    EXPECT_EQ(marks.find("fA1"), first);
    EXPECT_EQ(marks.find("iB2"), "") << "known to be none";
    EXPECT_EQ(marks.find("fC3"), std::nullopt);
    marks.put("fD4", third);
    marks.put("fE5", third);
  }
  PictureMarks marks(file);
  EXPECT_EQ(marks.find("fE5"), third);
  EXPECT_EQ(marks.find("fA1"), first);
}

TEST_F(Shelf, TooManyMarksBeginAnew) {
  const auto file = folder.path() / "marks";
  PictureMarks marks(file, 2);
  marks.put("a", first);
  marks.put("b", first);
  marks.put("c", second);
  EXPECT_EQ(marks.find("a"), std::nullopt);
  EXPECT_EQ(marks.find("c"), second);
  EXPECT_EQ(PictureMarks(file, 2).find("c"), second);
}

}  // namespace
