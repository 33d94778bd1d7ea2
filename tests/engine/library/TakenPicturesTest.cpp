#include "engine/library/TakenPictures.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "files/ReadFile.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;

class Taken : public ::testing::Test {
 protected:
  static constexpr std::size_t kSize = 1000;

  /// A picture like no other, taken out at that hour.
  std::string keep(TakenPictures& taken, char which, int hour) {
    std::string path = taken.keep(std::string(kSize, which));
    usedAt(path, hour);
    return path;
  }
  static void usedAt(const std::string& path, int hour) {
    fs::last_write_time(path, fs::file_time_type::clock::now() + std::chrono::hours(hour - 100));
  }
  [[nodiscard]] std::string folder() const { return (root.path() / "pictures").string(); }
  [[nodiscard]] std::uintmax_t bytes() const {
    std::uintmax_t all = 0;
    for (const auto& entry : fs::directory_iterator(folder())) all += entry.file_size();
    return all;
  }

  support::TempFolder root;
};

TEST_F(Taken, AreEachThereOnceAndNamedByWhatTheyAre) {
  TakenPictures taken(folder());
  const std::string png = taken.keep("\x89PNG and more");
  EXPECT_EQ(fs::path(png).extension(), ".png");
  EXPECT_EQ(files::ReadFile(png).text, "\x89PNG and more");
  EXPECT_EQ(taken.keep("\x89PNG and more"), png);
  EXPECT_EQ(fs::path(taken.keep("RIFF and more")).extension(), ".webp");
  EXPECT_TRUE(TakenPictures::isThere(png));
  fs::remove(png);
  EXPECT_FALSE(TakenPictures::isThere(png));
}

TEST_F(Taken, AreNeverMoreThanTheirBoundAndThoseGoThatNobodyHasAskedForLongest) {
  TakenPictures taken(folder(), 8 * kSize);
  const std::string first = keep(taken, 'a', 1);
  const std::string second = keep(taken, 'b', 2);
  for (int i = 2; i < 8; ++i) keep(taken, static_cast<char>('a' + i), i + 1);
  EXPECT_EQ(bytes(), 8 * kSize);
  EXPECT_TRUE(TakenPictures::isThere(first)) << "asked for: it is the last to go now";
  const std::string last = keep(taken, 'z', 50);
  EXPECT_LE(bytes(), 8 * kSize);
  EXPECT_TRUE(TakenPictures::isThere(first));
  EXPECT_TRUE(TakenPictures::isThere(last));
  EXPECT_FALSE(TakenPictures::isThere(second));
  for (int i = 0; i < 100; ++i) {
    keep(taken, static_cast<char>(i), 60 + i);
    ASSERT_LE(bytes(), 8 * kSize);
  }
}

TEST_F(Taken, OfAnEarlierPlayerCountAndNothingElseInTheFolderIsTouched) {
  {
    TakenPictures taken(folder());
    for (int i = 0; i < 20; ++i) keep(taken, static_cast<char>('a' + i), i);
  }
  std::ofstream(folder() + "/notes.txt") << "somebody's own";
  TakenPictures taken(folder(), 8 * kSize);
  const std::string last = keep(taken, 'z', 50);
  EXPECT_LE(bytes(), 8 * kSize + 14);
  EXPECT_TRUE(TakenPictures::isThere(last));
  EXPECT_TRUE(fs::exists(folder() + "/notes.txt"));
}

}  // namespace
}  // namespace engine::testing
