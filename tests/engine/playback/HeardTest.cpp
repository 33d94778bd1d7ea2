#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "engine/common/Fixtures.hpp"
#include "engine/playback/HeardThroughAPipe.hpp"

namespace engine::testing {
namespace {

/// What comes out of the player, sample by sample.
class Heard : public PlayerTest {
 protected:
  static constexpr double kSeconds = 2;

  /// All tracks of the library, one after the other, each of that length. What has not been told yet is heard
  /// slowly, so that the decoder, which is half a second ahead, doesn't end a track before it has the next.
  demo::Sound playAll(int tracks) {
    HeardThroughAPipe listener(folder / "pipe", folder / "heard.wav");
    config.audioOutput = "pcm:" + (folder / "pipe");
    startWith(tracks);
    player->settings().volume(100);
    player->currentPlaylist(player->mediaCollection().getAll());
    player->controls().play();
    EXPECT_TRUE(until([&] {
      const auto playing = std::count(told.states.begin(), told.states.end(), player::kPlaying);
      listener.upTo(kSeconds * static_cast<double>(playing) - 0.2);
      return playing == tracks;
    }));
    listener.flow();
    EXPECT_TRUE(untilState(player::kStopped));
    player.reset();  // closes the pipe
    listener.end();
    return demo::ReadSound(folder / "heard.wav");
  }
  /// The largest sample of a part, which is told by its ends in seconds.
  static double peak(const demo::Sound& sound, double from, double to) {
    double most = 0;
    const auto end = std::min(sound.samples.size(), static_cast<std::size_t>(to * sound.rate));
    for (auto i = static_cast<std::size_t>(from * sound.rate); i < end; ++i)
      most = std::max(most, static_cast<double>(std::abs(sound.samples[i])));
    return most;
  }
  void addLoud(const std::string& file, const std::string& title, int number, const Loudness& loudness,
               double seconds = kSeconds) {
    TrackTags tags;
    tags.title = title;
    tags.album = "Blue";
    tags.track = static_cast<std::uint16_t>(number);
    tags.loudness = loudness;
    addTrack(file, tags, seconds);
  }
};

TEST_F(Heard, AnAlbumHasNoGapBetweenItsTracks) {
  const demo::Sound whole = demo::Tone(441, 2 * kSeconds);
  demo::Sound first = whole;
  demo::Sound second = whole;
  first.samples.resize(88200 + 37);
  second.samples.erase(second.samples.begin(), second.samples.begin() + 88200 + 37);
  demo::WriteSound(music("1.wav"), first, demo::FileFormat::kWav);
  demo::WriteSound(music("2.wav"), second, demo::FileFormat::kWav);
  const demo::Sound heard = playAll(2);
  ASSERT_EQ(heard.rate, whole.rate);
  ASSERT_EQ(heard.samples.size(), whole.samples.size());
  float worst = 0;
  for (std::size_t i = 0; i < whole.samples.size(); ++i) {
    worst = std::max(worst, std::abs(heard.samples[i] - whole.samples[i]));
  }
  EXPECT_LT(worst, 0.01F);
}

/// As loud as it was made: half of full scale.
constexpr double kMade = 0.5;
double Factor(double decibels) { return std::pow(10, decibels / 20); }

TEST_F(Heard, WithoutReplayGainTitlesSoundAsTheyAre) {
  addLoud("1.flac", "One", 1, {-600, -300, 5000, 5000});
  EXPECT_NEAR(peak(playAll(1), 0.1, 0.4), kMade, 0.01);
}

TEST_F(Heard, WithReplayGainEachTitleSoundsAsLoudAsItsTagsSayToTheSample) {
  config.replayGain = ReplayGain::kTrack;
  addLoud("1.flac", "One", 1, {-600, -300, 5000, 5000});
  addLoud("2.flac", "Two", 2, {300, -300, 5000, 5000});
  addLoud("3.wav", "Three", 3, {});
  const demo::Sound heard = playAll(3);
  EXPECT_NEAR(static_cast<double>(heard.samples.size()) / heard.rate, 6, 0.001);  // and no gap
  EXPECT_NEAR(peak(heard, 0.1, 1.99), kMade * Factor(-6), 0.01);
  EXPECT_NEAR(peak(heard, 2.05, 3.95), kMade * Factor(3), 0.02);
  EXPECT_NEAR(peak(heard, 4.05, 6), kMade, 0.01);
}

TEST_F(Heard, WithTheAlbumsGainItsTitlesKeepTheirDistance) {
  config.replayGain = ReplayGain::kAlbum;
  config.preamp = 2;
  addLoud("1.wav", "One", 1, {-600, -400, 5000, 6000});
  addLoud("2.flac", "Two", 2, {300, -400, 5000, 6000});
  const demo::Sound heard = playAll(2);
  EXPECT_NEAR(peak(heard, 0.05, 3.95), kMade * Factor(-2), 0.01);
  EXPECT_NEAR(peak(heard, 0.05, 1.95), peak(heard, 2.05, 3.95), 0.005);
}

TEST_F(Heard, APeakThatWouldBeCutHoldsTheGainBack) {
  config.replayGain = ReplayGain::kTrack;
  addLoud("1.flac", "One", 1, {1200, 0, 5000, 5000});
  const demo::Sound heard = playAll(1);
  EXPECT_NEAR(peak(heard, 0.1, 0.4), 1.0, 0.01);
  const auto cut = std::count_if(heard.samples.begin(), heard.samples.end(),
                                 [](float sample) { return std::abs(sample) > 0.999F; });
  EXPECT_LT(cut, static_cast<long>(heard.samples.size() / 20));
}

TEST_F(Heard, WhereClippingIsAllowedThePeaksAreCut) {
  config.replayGain = ReplayGain::kTrack;
  config.clipping = true;
  addLoud("1.flac", "One", 1, {1200, 0, 5000, 5000});
  const demo::Sound heard = playAll(1);
  const auto cut = std::count_if(heard.samples.begin(), heard.samples.end(),
                                 [](float sample) { return std::abs(sample) > 0.999F; });
  EXPECT_GT(cut, static_cast<long>(heard.samples.size() / 2));
}

TEST_F(Heard, WithACrossfadeOneTitleGoesOverIntoTheNextWhileItSounds) {
  constexpr int kRate = 192000;  // what is written to a file is taken in pieces of so many samples
  constexpr std::size_t kPace = kRate * 2 / 25;
  config.crossfade = 2;
  demo::WriteSound(music("1.wav"), demo::Tone(440, 4, kRate), demo::FileFormat::kWav);
  demo::WriteSound(music("2.wav"), demo::Tone(880, 4, kRate), demo::FileFormat::kWav);
  HeardThroughAPipe one(folder / "pipe", folder / "one.wav", kPace);
  HeardThroughAPipe two(folder / "pipe.2", folder / "two.wav", kPace);
  config.audioOutput = "pcm:" + (folder / "pipe");
  startWith(2);
  player->settings().volume(100);
  player->currentPlaylist(player->mediaCollection().getAll());
  player->controls().play();
  ASSERT_TRUE(until([&] {
    return std::count(told.states.begin(), told.states.end(), player::kTransitioning) > 1 &&
           told.states.back() == player::kPlaying;
  }));
  EXPECT_GT(player->controls().currentPosition(), 0.3);  // some of it has been heard
  one.flow();
  two.flow();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ::testing::ElementsAre(10, 9, 3, 8, 9, 3, 8, 1));
  player.reset();
  one.end();
  two.end();
  EXPECT_LT(two.first(), one.last());
  const demo::Sound out = demo::ReadSound(folder / "one.wav");
  const demo::Sound in = demo::ReadSound(folder / "two.wav");
  EXPECT_EQ(out.samples.size(), 4U * kRate);
  EXPECT_EQ(in.samples.size(), 4U * kRate);
  EXPECT_NEAR(peak(out, 0.5, 1.5), kMade, 0.01);
  EXPECT_LT(peak(out, 3.9, 4), kMade * 0.7);
  EXPECT_LT(peak(in, 0, 0.05), kMade * 0.5);
  EXPECT_NEAR(peak(in, 2.9, 4), kMade, 0.01);
}

TEST_F(Heard, AFileFromElsewhereIsMadeAsLoudAsItsTagsSay) {
  config.replayGain = ReplayGain::kTrack;
  addLoud("1.flac", "One", 1, {-600, -300, 5000, 5000});
  fs::rename(music("1.flac"), folder / "elsewhere.flac");
  HeardThroughAPipe listener(folder / "pipe", folder / "heard.wav");
  config.audioOutput = "pcm:" + (folder / "pipe");
  start();
  player->settings().volume(100);
  player->URL(folder / "elsewhere.flac");
  player->controls().play();
  listener.flow();
  ASSERT_TRUE(untilState(player::kStopped));
  player.reset();
  listener.end();
  EXPECT_NEAR(peak(demo::ReadSound(folder / "heard.wav"), 0.1, 0.4), kMade * Factor(-6), 0.01);
}

}  // namespace
}  // namespace engine::testing
