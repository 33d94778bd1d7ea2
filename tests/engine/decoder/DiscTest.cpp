// The tracks of a disc, as the decoder plays them. An image of a disc stands for the disc.

#include <gmock/gmock.h>

#include "engine/common/Fixtures.hpp"
#include "engine/common/TagBuilder.hpp"
#include "engine/common/ToldByOutput.hpp"
#include "engine/decoder/MpvOutput.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ADiscInADrive : public PlayerTest {
 protected:
  ADiscInADrive() {
    constexpr std::uint64_t kSecond = 176'400;  // of a disc's sound
    Write(folder / "disc.bin", "", 6 * kSecond);
    writeText(
        folder / "disc.cue",
        "FILE \"disc.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    INDEX "
        "01 00:01:00\n  TRACK 03 AUDIO\n    INDEX 01 00:03:00\n");
    output.listener(heard);
  }

  [[nodiscard]] std::string track(int number) const {
    return "cdda://" + drive + "#" + std::to_string(number);
  }

  std::string drive = folder / "disc.cue";
  ToldByOutput heard;
  MpvOutput output{loop, config, [this](const std::string& device) { return device == drive; },
                   [](const std::string&) {}};
};

TEST_F(ADiscInADrive, IsPlayedTrackByTrackInWhicheverOrder) {
  output.load(1, track(2));
  output.append(2, track(3));
  output.append(3, track(1));
  EXPECT_TRUE(until([&] { return heard.endedOnes.size() == 3; }));
  EXPECT_THAT(heard.startedOnes, ElementsAre(1U, 2U, 3U));
  EXPECT_THAT(heard.failedOnes, IsEmpty());
  EXPECT_NEAR(heard.lengths[1], 2, 0.1);
  EXPECT_NEAR(heard.lengths[2], 3, 0.1);
  EXPECT_NEAR(heard.lengths[3], 1, 0.1);
}

TEST_F(ADiscInADrive, LeavesTheFilesBehindItAsTheyAre) {
  const std::string good = addTrack("good.flac", "Good", "Ann", "Blue", "Jazz", 1);
  output.load(1, track(1));
  output.append(2, good);
  output.append(3, track(2));
  EXPECT_TRUE(until([&] { return heard.endedOnes.size() == 3; }));
  EXPECT_THAT(heard.startedOnes, ElementsAre(1U, 2U, 3U));
  EXPECT_THAT(heard.failedOnes, IsEmpty());
}

}  // namespace
}  // namespace engine::testing
