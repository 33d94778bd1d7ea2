#include "engine/decoder/Leveller.hpp"

#include <gmock/gmock.h>

namespace engine::testing {
namespace {

Config With(ReplayGain gain, double preamp = 0, bool clipping = false) {
  Config config;
  config.replayGain = gain;
  config.preamp = preamp;
  config.clipping = clipping;
  return config;
}

constexpr Loudness kBoth{-700, -500, 9000, 10000};

TEST(Leveller, IsOffUnlessItIsAskedFor) {
  EXPECT_FALSE(Leveller(Config()).on());
  EXPECT_EQ(Leveller(Config()).decibels(kBoth), 0);
}

TEST(Leveller, TakesTheTracksOrTheAlbumsLoudness) {
  EXPECT_DOUBLE_EQ(Leveller(With(ReplayGain::kTrack)).decibels(kBoth), -7);
  EXPECT_DOUBLE_EQ(Leveller(With(ReplayGain::kAlbum)).decibels(kBoth), -5);
}

TEST(Leveller, TakesTheOtherWhereOnlyThatIsKnown) {
  const Loudness album{Loudness::kUnknown, -500, 0, 0};
  const Loudness track{-700, Loudness::kUnknown, 0, 0};
  EXPECT_DOUBLE_EQ(Leveller(With(ReplayGain::kTrack)).decibels(album), -5);
  EXPECT_DOUBLE_EQ(Leveller(With(ReplayGain::kAlbum)).decibels(track), -7);
}

TEST(Leveller, LeavesATitleAloneOfWhichNothingIsKnown) {
  EXPECT_EQ(Leveller(With(ReplayGain::kTrack, 6)).decibels({}), 0);
}

TEST(Leveller, AddsThePreampAndHoldsPeaksBelowFullScale) {
  const Loudness loud{200, 200, 5012, 10000};  // its peak is 6 decibels below full scale
  EXPECT_NEAR(Leveller(With(ReplayGain::kTrack, 3)).decibels(loud), 5, 0.001);
  EXPECT_NEAR(Leveller(With(ReplayGain::kTrack, 9)).decibels(loud), 6, 0.001);
  EXPECT_NEAR(Leveller(With(ReplayGain::kTrack, 9, true)).decibels(loud), 11, 0.001);
  EXPECT_NEAR(Leveller(With(ReplayGain::kAlbum, 9)).decibels(loud), 0, 0.001);
}

}  // namespace
}  // namespace engine::testing
