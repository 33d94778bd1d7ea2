#include "standin/covers/CoverShelf.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <future>

#include "base/Failure.hpp"
#include "files/WriteFile.hpp"
#include "standin/covers/DecoderTurn.hpp"
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

TEST_F(Shelf, CountsAsAskedForWhatIsInMemoryToo) {
  CoverShelf shelf(place, {.disk = 10, .memory = 100}, &Write);
  shelf.put(first, 256, "12345");
  shelf.put(second, 256, "12345");
  EXPECT_EQ(shelf.take(first, 256), "12345");
  shelf.put(third, 256, "12345");
  CoverShelf again(place);
  EXPECT_TRUE(again.has(first, 256));
  EXPECT_FALSE(again.has(second, 256));
}

TEST_F(Shelf, RemembersOverAStartWhatWasAskedForLast) {
  const auto written = [&](const std::string& key, int days) {
    const auto file = place / (key + "-256.jpg");
    Write(file.string(), "12345");
    std::filesystem::last_write_time(
        file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * days));
  };
  std::filesystem::create_directories(place);
  written(first, 30);
  written(second, 20);
  EXPECT_EQ(CoverShelf(place).take(first, 256), "12345");
  CoverShelf shelf(place, {.disk = 10, .memory = 0}, &Write);
  shelf.put(third, 256, "12345");
  EXPECT_TRUE(shelf.has(first, 256));
  EXPECT_FALSE(shelf.has(second, 256));
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

TEST_F(Shelf, CountsAFileAsItWasReadThoughSomebodyHasChangedIt) {
  CoverShelf(place).put(first, 256, "12345");
  CoverShelf shelf(place, {.disk = 20, .memory = 0}, &Write);
  EXPECT_EQ(shelf.used(), 5U);
  const auto file = std::filesystem::directory_iterator(place)->path();
  Write(file.string(), "123456789012345");
  EXPECT_EQ(shelf.take(first, 256), "123456789012345");
  EXPECT_EQ(shelf.used(), 15U);
  Write(file.string(), "1");
  EXPECT_EQ(shelf.take(first, 256), "1");
  EXPECT_EQ(shelf.used(), 1U);
  std::filesystem::remove(file);
  EXPECT_EQ(shelf.take(first, 256), std::nullopt);
  EXPECT_EQ(shelf.used(), 0U);
  shelf.put(second, 256, "12345");
  shelf.put(third, 256, "12345");
  EXPECT_TRUE(shelf.has(second, 256)) << "nothing is cleared away for what is not there";
}

TEST_F(Shelf, OneThatGoesWhileItIsReadIsGivenOnceAndNotCounted) {
  CoverShelf shelf(place, {.disk = 20, .memory = 0}, &Write, [&](const std::string& path) {
    std::string bytes = CoverShelf::ReadBack(path);
    std::filesystem::remove(path);
    return bytes;
  });
  shelf.put(first, 256, "12345");
  EXPECT_EQ(shelf.take(first, 256), "12345");
  EXPECT_EQ(shelf.take(first, 256), std::nullopt);
  EXPECT_FALSE(shelf.has(first, 256));
  EXPECT_EQ(shelf.used(), 0U);
}

TEST_F(Shelf, ASlowDiskHoldsUpOnlyWhoReadsFromIt) {
  std::promise<void> reads;
  std::promise<void> goesOn;
  CoverShelf shelf(place, {.disk = 100, .memory = 0}, &Write, [&](const std::string&) {
    reads.set_value();
    goesOn.get_future().wait();
    return std::string("slow");
  });
  shelf.put(first, 256, "12345");
  auto reader = std::async(std::launch::async, [&] { return shelf.take(first, 256); });
  reads.get_future().wait();
  auto others = std::async(std::launch::async, [&] {
    shelf.put(second, 256, "12345");
    return shelf.has(first, 256) && shelf.has(second, 256);
  });
  constexpr std::chrono::seconds kForEver(60);
  EXPECT_EQ(others.wait_for(kForEver), std::future_status::ready);
  goesOn.set_value();
  EXPECT_TRUE(others.get());
  EXPECT_EQ(reader.get(), "slow");
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
    EXPECT_EQ(marks.find("iB2"), "") << "it is not looked at again";
    marks.put("not a mark", second);
  }
  std::ofstream(file, std::ios::app) << "fC3 " << second.substr(0, 7);
  {
    PictureMarks marks(file);
    EXPECT_EQ(marks.find("fA1"), first);
    EXPECT_EQ(marks.find("iB2"), std::nullopt) << "what failed once may have had no memory, or half a file";
    marks.put("iB2", "");
    EXPECT_EQ(marks.find("fC3"), std::nullopt);
    marks.put("fD4", third);
    marks.put("fE5", third);
  }
  PictureMarks marks(file);
  EXPECT_EQ(marks.find("fD4"), third) << "the line behind the cut one";
  EXPECT_EQ(marks.find("fE5"), third);
  EXPECT_EQ(marks.find("fA1"), first);
  EXPECT_EQ(marks.find("iB2"), "") << "failed twice: known to be none";
}

TEST_F(Shelf, MarksThatSayNothingNewTakeNoRoom) {
  const auto file = folder.path() / "marks";
  const auto size = [&] { return std::filesystem::file_size(file); };
  PictureMarks marks(file);
  marks.put("a", first);
  marks.put("b", "");
  const auto before = size();
  for (int i = 0; i < 50; ++i) {
    marks.put("a", first);
    marks.put("b", "");
  }
  EXPECT_EQ(size(), before);
  for (int i = 0; i < 3000; ++i) marks.put("a", i % 2 == 0 ? second : third);
  EXPECT_GT(size(), 3000U * 30);
  EXPECT_EQ(PictureMarks(file).find("a"), third);
  EXPECT_LT(size(), 200U) << "a start keeps what counts";
  EXPECT_EQ(PictureMarks(file).find("a"), third);
}

TEST(ADecodersTurn, IsNotWaitedForWithoutAnEnd) {
  constexpr std::chrono::milliseconds kAtOnce{0};
  std::counting_semaphore<> places(2);
  {
    const standin::DecoderTurn one(places, kAtOnce);
    const standin::DecoderTurn two(places, kAtOnce);
    EXPECT_THROW(standin::DecoderTurn(places, kAtOnce), standin::DecodersBusy);
    EXPECT_THROW(standin::DecoderTurn(places, kAtOnce), standin::DecodersBusy)
        << "who got none gives none back";
  }
  EXPECT_NO_THROW(standin::DecoderTurn(places, kAtOnce));
}

TEST_F(Shelf, TooManyMarksLoseAHalf) {
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
