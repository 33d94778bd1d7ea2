// A sound that is heard while it is spoken.
#include "ear/GrowingSound.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Sound = std::vector<std::int16_t>;

Sound Loud(double seconds) {
  Sound all(static_cast<std::size_t>(seconds * 16000));
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = i % 40 < 20 ? 4000 : -4000;
  return all;
}
Sound Still(double seconds, std::int16_t hiss = 30) {
  Sound all(static_cast<std::size_t>(seconds * 16000));
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = i % 2 == 0 ? hiss : static_cast<std::int16_t>(-hiss);
  return all;
}

/// Hears how long a sound is, and counts how often it is asked.
class WhoSpeaks : public testing::Test {
 protected:
  /// As the ear does: it works whenever nothing else has come.
  void say(const Sound& piece) {
    sound.more(piece);
    if (sound.pauses()) sound.hearPause();
  }
  int times = 0;
  ear::GrowingSound sound{[this](const Sound& all) {
    ++times;
    return ear::Heard{.speech = true, .words = std::to_string(all.size()), .thousandths = 900};
  }};
};

TEST_F(WhoSpeaks, IsAnsweredAtOnceWhereHeHasPausedBeforeTheEnd) {
  sound.begin();
  say(Still(0.5));
  say(Loud(1));
  say(Still(0.2));
  EXPECT_EQ(times, 0) << "between two words there may be as much";
  say(Still(0.3));
  EXPECT_EQ(times, 1);
  say(Still(0.3));
  EXPECT_EQ(times, 1) << "once is enough";
  EXPECT_EQ(sound.end().words, "32000") << "what was heard when the pause began to be one";
  EXPECT_EQ(times, 1);
}

TEST_F(WhoSpeaks, WhoGoesOnIsHeardToHisEnd) {
  sound.begin();
  say(Loud(1));
  say(Still(0.5));
  EXPECT_EQ(times, 1);
  say(Loud(0.5));
  EXPECT_EQ(sound.end().words, "32000");
  EXPECT_EQ(times, 2);
}

TEST_F(WhoSpeaks, WithoutAPauseAllIsHeardAtTheEnd) {
  sound.begin();
  for (int i = 0; i < 10; ++i) say(Loud(0.1));
  EXPECT_EQ(times, 0);
  EXPECT_EQ(sound.end().words, "16000");
}

TEST_F(WhoSpeaks, SilenceAndNoiseAreNoPause) {
  sound.begin();
  say(Still(3));
  EXPECT_EQ(times, 0) << "nobody has said anything";
  say(Loud(1));
  say(Still(2, 1000));
  EXPECT_EQ(times, 0) << "in a loud room nobody knows";
  EXPECT_EQ(sound.end().words, std::to_string(6 * 16000));
}

TEST_F(WhoSpeaks, ANewOneBeginsWithNothing) {
  sound.begin();
  say(Loud(1));
  say(Still(1));
  EXPECT_EQ(times, 1);
  sound.begin();
  say(Loud(0.5));
  EXPECT_EQ(sound.end().words, "8000");
  EXPECT_EQ(sound.end().words, "0") << "behind the end there is nothing left";
}

TEST_F(WhoSpeaks, IsHeardForHalfAMinuteAtMost) {
  sound.begin();
  for (int i = 0; i < 40; ++i) say(Loud(1));
  EXPECT_EQ(sound.end().words, std::to_string(30 * 16000));
}

TEST_F(WhoSpeaks, PiecesOfAnySizeAreTheSame) {
  Sound all = Loud(1.01);
  const Sound still = Still(0.51);
  all.insert(all.end(), still.begin(), still.end());
  for (const std::size_t size : {1U, 319U, 321U, 4000U}) {
    sound.begin();
    times = 0;
    for (std::size_t at = 0; at < all.size(); at += size)
      say(Sound(all.begin() + static_cast<std::ptrdiff_t>(at),
                all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), at + size))));
    EXPECT_EQ(times, 1) << size;
    EXPECT_GE(std::stoul(sound.end().words), 22000U) << size;
  }
}

}  // namespace
