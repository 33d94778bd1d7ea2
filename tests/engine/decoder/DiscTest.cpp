// The tracks of a disc, as the decoder plays them. An image of a disc stands for the disc.

#include <gmock/gmock.h>

#include <cmath>
#include <optional>
#include <vector>

#include "demo/Sound.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/common/ToldByOutput.hpp"
#include "engine/decoder/MpvOutput.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A stretch of what is heard: as loud as the track of that number, for so many seconds.
struct Stretch {
  int track = 0;
  double seconds = 0;
};

class ADiscInADrive : public PlayerTest {
 protected:
  ADiscInADrive() {
    // Three tracks of 1, 2 and 3 seconds; each has one value throughout, an eighth of the largest for each
    // track. Both bytes are the same, as whoever reads a disc guesses at their order.
    constexpr std::size_t kBytesASecond = 176'400;
    std::string image;
    for (std::size_t number = 1; number <= 3; ++number)
      image.append(number * kBytesASecond, static_cast<char>(number * 0x10));
    Write(folder / "disc.bin", image);
    writeText(
        folder / "disc.cue",
        "FILE \"disc.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    INDEX "
        "01 00:01:00\n  TRACK 03 AUDIO\n    INDEX 01 00:03:00\n");
    config.audioOutput = "pcm:" + (folder / "heard.wav");
    output.emplace(
        loop, config,
        [this](const std::string& device, int track) {
          return device == drive ? std::optional(track * 75) : std::nullopt;
        },
        [](const std::string&) {});
    output->listener(heard);
    output->volume(100);
  }

  [[nodiscard]] std::string track(int number) const {
    return "cdda://" + drive + "#" + std::to_string(number);
  }
  /// What was played, once the output has gone.
  std::vector<Stretch> stretches() {
    output.reset();
    const demo::Sound sound = demo::ReadSound(folder / "heard.wav");
    std::vector<Stretch> found;
    for (const float sample : sound.samples) {
      const int number = static_cast<int>(std::lround(sample * 8));
      if (found.empty() || found.back().track != number) found.push_back({number});
      found.back().seconds += 1.0 / sound.rate;
    }
    return found;
  }

  std::string drive = folder / "disc.cue";
  ToldByOutput heard;
  std::optional<MpvOutput> output;
};

TEST_F(ADiscInADrive, IsPlayedTrackByTrackInWhicheverOrder) {
  output->load(1, track(2));
  output->append(2, track(3));
  output->append(3, track(1));
  EXPECT_TRUE(until([&] { return heard.endedOnes.size() == 3; }));
  EXPECT_THAT(heard.startedOnes, ElementsAre(1U, 2U, 3U));
  EXPECT_THAT(heard.failedOnes, IsEmpty());
  const auto found = stretches();
  const std::vector<int> order{2, 3, 1};
  ASSERT_EQ(found.size(), order.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    EXPECT_EQ(found[i].track, order[i]);
    EXPECT_NEAR(found[i].seconds, order[i], 0.0001) << "and nothing of what lies behind it";
  }
}

TEST_F(ADiscInADrive, LeavesTheFilesBehindItAsTheyAre) {
  const std::string good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
  output->load(1, track(1));
  output->append(2, good);
  output->append(3, track(2));
  EXPECT_TRUE(until([&] { return heard.endedOnes.size() == 3; }));
  EXPECT_THAT(heard.startedOnes, ElementsAre(1U, 2U, 3U));
  EXPECT_THAT(heard.failedOnes, IsEmpty());
}

}  // namespace
}  // namespace engine::testing
