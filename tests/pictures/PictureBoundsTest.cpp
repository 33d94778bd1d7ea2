// Pictures that are bad, or far larger than their files.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <functional>
#include <utility>
#include <vector>

#include "pictures/Outline.hpp"
#include "pictures/Picture.hpp"
#include "pictures/PictureMaker.hpp"
#include "support/faults/InChild.hpp"

namespace pictures::testing {
namespace {

using namespace std::string_literals;

/// By how many MiB the process has grown at the most while `work` was done in it. For a process of its own,
/// as the system only tells the most there ever was.
std::int64_t GrowthBy(const std::function<void()>& work) {
  std::ifstream file("/proc/self/statm");
  std::int64_t all = 0;
  std::int64_t pages = 0;
  file >> all >> pages;
  work();
  rusage used{};
  ::getrusage(RUSAGE_SELF, &used);
  return used.ru_maxrss / 1024 - pages * ::sysconf(_SC_PAGESIZE) / (1 << 20);
}

struct Named {
  const char* name;
  std::string bytes;
};

TEST(PictureBounds, ThirtyThousandByThirtyThousandIsRefusedInAnyKindAndTakesNoMemory) {
  constexpr int kSide = 30000;
  const std::vector<Named> all = {{"png", FlatPng(kSide, kSide)},
                                  {"png that is there coarsely first", FlatPng(kSide, kSide, {true, 0})},
                                  {"jpeg", JpegThatClaims(kSide, kSide)},
                                  {"gif", FlatGif(kSide, kSide)},
                                  {"bmp", FlatBmp(kSide, kSide)},
                                  {"webp", FlatWebp(16384, 16384)}};
  for (const auto& [name, bytes] : all) {
    ASSERT_LT(bytes.size(), kMostBytes) << name;
    EXPECT_GE(SizeOf(bytes).width, 16384) << name;
    EXPECT_TRUE(support::InChild([&, kind = name, &whole = bytes] {
      EXPECT_LT(GrowthBy([&] {
                  EXPECT_FALSE(CanBeShown(whole)) << kind;
                  EXPECT_EQ(Thumbnail(whole, 256), "") << kind;
                }),
                64)
          << kind;
    }));
  }
}

TEST(PictureBounds, TheLargestThatMayBeShownTakesWhatItsPixelsTake) {
  const std::vector<Named> all = {{"png", FlatPng(4000, 4000)},
                                  {"gif", FlatGif(4000, 4000)},
                                  {"bmp", FlatBmp(4000, 4000)},
                                  {"webp", FlatWebp(4000, 4000)},
                                  {"jpeg", Saved("jpeg", 4000, 4000)}};
  for (const auto& [name, bytes] : all) {
    EXPECT_TRUE(support::InChild([&, kind = name, &whole = bytes] {
      EXPECT_LT(GrowthBy([&] { EXPECT_TRUE(CanBeShown(whole)) << kind; }), 320) << kind;
    }));
  }
}

TEST(PictureBounds, ALargePngTakesARowAtATime) {
  const std::string large = FlatPng(8000, 8000);  // 192 MB of colours
  EXPECT_TRUE(support::InChild([&] {
    EXPECT_LT(GrowthBy([&] {
                EXPECT_TRUE(CanBeShown(large));
                EXPECT_EQ(SizeOf(Thumbnail(large, 1024)).width, 1024);
              }),
              64);
  }));
}

TEST(PictureBounds, OfOneThatMovesNoFrameIsUnpackedButTheFirst) {
  constexpr int kFrames = 60;  // each of 64 MB
  const std::vector<Named> all = {{"gif", FlatGif(4000, 4000, kFrames)},
                                  {"webp", MovingWebp(4000, 4000, kFrames)},
                                  {"webp in a large room", MovingWebp(4000, 4000, 2, 30000, 30000)}};
  for (const auto& [name, bytes] : all) {
    EXPECT_TRUE(support::InChild([&, kind = name, &whole = bytes] {
      EXPECT_LT(GrowthBy([&] {
                  EXPECT_TRUE(CanBeShown(whole)) << kind;
                  EXPECT_EQ(SizeOf(Thumbnail(whole, 256)).width, 256) << kind;
                }),
                640)
          << kind;
    }));
  }
}

TEST(PictureBounds, PixelsThatAreSaidToBeginFarBehindTheEndAreNotWaitedFor) {
  // Where its pixels begin, how long its head is, and how many colours it has.
  for (const std::size_t place : {10, 14, 46}) {
    std::string bmp = FlatBmp(100, 100);
    EXPECT_TRUE(OutlineOf(bmp).whole);
    bmp.replace(place, 4, "\0\0\0\xDA"s);
    EXPECT_FALSE(OutlineOf(bmp).whole) << "the loader would make room for 3.6 GB";
    EXPECT_FALSE(CanBeShown(bmp));
  }
}

TEST(PictureBounds, AFrameThatIsLargerThanItsPictureCounts) {
  std::string gif = FlatGif(100, 100);
  const std::size_t frame = gif.find("\x2C\0\0\0\0"s);
  gif.replace(frame + 5, 4, "\x30\x75\x30\x75");  // 30,000 by 30,000
  EXPECT_EQ(SizeOf(gif).width, 30000);
  EXPECT_FALSE(CanBeShown(gif));
}

TEST(PictureBounds, ThousandsOfPassesOverAPictureAreRefused) {
  const std::string jpeg = Saved("jpeg", 2000, 2000);
  std::string many = jpeg.substr(0, jpeg.size() - 2);
  for (int i = 0; i < 1000; ++i) many += "\xFF\xDA\0\x08\x01\x01\0\0\x3F\0"s;
  EXPECT_TRUE(CanBeShown(jpeg));
  EXPECT_FALSE(CanBeShown(many + "\xFF\xD9"));
}

TEST(PictureBounds, EachKindIsShownAndMadeSmall) {
  for (const auto& [name, bytes] : std::vector<Named>{{"png", Saved("png", 600, 400)},
                                                      {"jpeg", Saved("jpeg", 600, 400)},
                                                      {"bmp", Saved("bmp", 600, 400)},
                                                      {"webp", Saved("webp", 600, 400)},
                                                      {"flat png", FlatPng(600, 400)},
                                                      {"coarse png", FlatPng(600, 400, {true, 0})},
                                                      {"flat webp", FlatWebp(600, 400)},
                                                      {"moving webp", MovingWebp(600, 400, 3)},
                                                      {"flat bmp", FlatBmp(600, 400)},
                                                      {"gif", FlatGif(600, 400)},
                                                      {"moving gif", FlatGif(600, 400, 3)}}) {
    EXPECT_EQ(SizeOf(bytes).width, 600) << name;
    EXPECT_EQ(SizeOf(bytes).height, 400) << name;
    EXPECT_TRUE(CanBeShown(bytes)) << name;
    const Size small = SizeOf(Thumbnail(bytes, 300));
    EXPECT_EQ(small.width, 300) << name;
    EXPECT_EQ(small.height, 200) << name;
  }
}

TEST(PictureBounds, OneThatLiesOnItsSideIsPutUpright) {
  const std::string jpeg = WithSegment(Saved("jpeg", 600, 400), '\xE1', Orientation(6));
  EXPECT_TRUE(CanBeShown(jpeg));
  const Size small = SizeOf(Thumbnail(jpeg, 300));
  EXPECT_EQ(small.width, 200);
  EXPECT_EQ(small.height, 300);
}

TEST(PictureBounds, CutOffAnywhereItIsRefused) {
  for (const auto& [name, bytes] : std::vector<Named>{{"png", Saved("png", 200, 200)},
                                                      {"jpeg", Saved("jpeg", 200, 200)},
                                                      {"bmp", FlatBmp(200, 200)},
                                                      {"webp", Saved("webp", 200, 200)},
                                                      {"moving webp", MovingWebp(200, 200, 1)}}) {
    ASSERT_TRUE(CanBeShown(bytes)) << name;
    for (std::size_t part = 0; part < 50; ++part)
      EXPECT_FALSE(CanBeShown(bytes.substr(0, bytes.size() * part / 50))) << name << " at " << part;
  }
  const std::string gif = FlatGif(200, 200, 2);
  for (std::size_t size = 0; size < gif.size() / 2; ++size) EXPECT_FALSE(CanBeShown(gif.substr(0, size)));
  EXPECT_TRUE(CanBeShown(gif.substr(0, gif.size() / 2 + 20))) << "its first frame is there";
}

TEST(PictureBounds, TheSmallPictureWithinOneIsNotItsEnd) {
  const std::string jpeg = WithSegment(Saved("jpeg", 800, 800), '\xE1', "Exif\0\0"s + Saved("jpeg", 40, 40));
  EXPECT_TRUE(CanBeShown(jpeg));
  EXPECT_FALSE(CanBeShown(jpeg.substr(0, jpeg.size() / 3)));
  EXPECT_EQ(Thumbnail(jpeg.substr(0, jpeg.size() / 3), 256), "");
  EXPECT_TRUE(CanBeShown(jpeg + "what others put behind it")) << "the end is there all the same";
}

TEST(PictureBounds, RowsThatEndEarlyAreNoPicture) {
  for (const bool interlaced : {false, true}) {
    EXPECT_TRUE(CanBeShown(FlatPng(2000, 2000, {interlaced, 0})));
    EXPECT_FALSE(CanBeShown(FlatPng(2000, 2000, {interlaced, 1})));
    EXPECT_FALSE(CanBeShown(FlatPng(2000, 2000, {interlaced, 200000})));
  }
}

TEST(PictureBounds, WithAnyBitTurnedEachKindIsShownOrRefusedAndNothingElseHappens) {
  std::uint32_t random = 1;
  for (const auto& [name, bytes] : std::vector<Named>{{"png", Saved("png", 64, 64)},
                                                      {"jpeg", Saved("jpeg", 64, 64)},
                                                      {"gif", FlatGif(64, 64, 2)},
                                                      {"bmp", FlatBmp(64, 64)},
                                                      {"webp", Saved("webp", 64, 64)},
                                                      {"moving webp", MovingWebp(64, 64, 2)}}) {
    int shown = 0;
    int refused = 0;
    for (int round = 0; round < 400; ++round) {
      std::string broken = bytes;
      random = random * 1664525 + 1013904223;
      const std::size_t bit = (random >> 8U) % (broken.size() * 8);
      broken[bit / 8] = static_cast<char>(broken[bit / 8] ^ (1 << (bit % 8)));
      const Size claimed = SizeOf(broken);
      if (std::int64_t{claimed.width} * claimed.height > 1 << 20) continue;  // fit to be unpacked, and slow
      const bool good = CanBeShown(broken);
      const std::string small = Thumbnail(broken, 32);
      EXPECT_LE(SizeOf(small).width, 32) << name << " bit " << bit;
      EXPECT_TRUE(good || small.empty()) << name << " bit " << bit;
      ++(good ? shown : refused);
    }
    EXPECT_GT(shown, 0) << name;
    EXPECT_GT(refused, 0) << name;
  }
}

}  // namespace
}  // namespace pictures::testing
