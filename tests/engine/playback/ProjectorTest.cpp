#include "engine/playback/Projector.hpp"

#include "engine/playback/PlaybackStates.hpp"

namespace engine::testing {
namespace {

constexpr base::PictureSize kSize{320, 180};
constexpr base::PictureSize kNothing{};

/// A screen before a player that makes no sound and no picture.
class Projecting : public PlaybackStates {
 protected:
  /// Plays it to where it can be heard.
  void plays(const std::string& path, std::int32_t height) {
    playback.assign(list({path}));
    playback.play();
    playback.heightKnown(output.now, height);
    playback.started(output.now);
    projector.follow();
  }

  Screen screen;
  std::vector<std::string> sound;
  Projector projector{
      {screen,
       playback,
       output,
       {[this](const std::string& location, double seconds, bool paused, base::PictureSize size) {
          sound.push_back(location + " at " + std::to_string(static_cast<int>(seconds)) +
                          (paused ? " paused" : "") + " " + std::to_string(size.width));
        },
        [this] { sound.emplace_back("end"); }}}};
};

TEST_F(Projecting, AVideoIsDecodedWhileSomebodySeesIt) {
  plays("/film.mkv", 480);
  EXPECT_EQ(output.looked, kNothing);
  screen.seen(kSize);
  EXPECT_EQ(output.looked, kSize);
  EXPECT_THAT(sound, ::testing::Each("end"));
  screen.seen({});
  EXPECT_EQ(output.looked, kNothing);
}

TEST_F(Projecting, SoundGetsAPictureWhereItIsHeard) {
  plays("/song.flac", 0);
  playback.position(42);
  sound.clear();
  screen.seen(kSize);
  EXPECT_THAT(sound, ::testing::ElementsAre("/song.flac at 42 320"));
  EXPECT_EQ(output.looked, kNothing);
  playback.pause();
  projector.follow();
  EXPECT_EQ(sound.back(), "/song.flac at 42 paused 320");
  screen.seen({});
  EXPECT_EQ(sound.back(), "end");
}

TEST_F(Projecting, WhatIsShownStaysUntilTheNextTitleCanBeHeardAndGoesWhenItStops) {
  screen.seen(kSize);
  plays("/film.mkv", 480);
  screen.show(std::make_shared<base::PictureFrame>(kSize));
  playback.assign(list({"/film.mkv", "/song.flac"}));
  screen.show(std::make_shared<base::PictureFrame>(kSize));
  playback.play();
  projector.follow();
  EXPECT_EQ(playback.state(), player::kTransitioning);
  EXPECT_NE(screen.frame(), nullptr);
  playback.stop();
  projector.follow();
  EXPECT_EQ(screen.frame(), nullptr);
  EXPECT_EQ(output.looked, kNothing);
}

TEST_F(Projecting, OnlyAVideoFillsTheScreen) {
  int told = 0;
  screen.tell([&told] { ++told; });
  projector.full(true);
  plays("/song.flac", 0);
  EXPECT_FALSE(screen.full());
  plays("/film.mkv", 480);
  EXPECT_TRUE(screen.full());
  EXPECT_EQ(told, 1);
  projector.full(false);
  EXPECT_FALSE(screen.full());
  EXPECT_EQ(told, 2);
  projector.full(true);
  playback.stop();
  projector.follow();
  EXPECT_FALSE(screen.full());
}

TEST_F(Projecting, AFrameThatComesLateIsNotShown) {
  screen.seen(kSize);
  screen.show(std::make_shared<base::PictureFrame>(kSize));
  EXPECT_NE(screen.frame(), nullptr);
  screen.seen({0, 180});
  screen.show(std::make_shared<base::PictureFrame>(kSize));
  EXPECT_EQ(screen.frame(), nullptr);
}

TEST_F(Projecting, AVideoIsKnownByItsHeightWhileItPlaysAndATitleWithoutOneHasNone) {
  plays("/film.mkv", 480);
  EXPECT_EQ(playback.queue().current()->imageSourceHeight(), 480);
  playback.heightKnown(output.now, 0);
  EXPECT_EQ(playback.queue().current()->imageSourceHeight(), 0);
}

}  // namespace
}  // namespace engine::testing
