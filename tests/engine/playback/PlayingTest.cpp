#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "base/Failure.hpp"
#include "engine/common/Fixtures.hpp"
#include "engine/playback/ErrorList.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class Playing : public PlayerTest {
 protected:
  void twoTrackAlbum() {
    addTrack("a/1.flac", "One", "Ann", "Blue", "Jazz", 1);
    addTrack("a/2.flac", "Two", "Ann", "Blue", "Jazz", 2);
    startWith(2);
    player->currentPlaylist(player->mediaCollection().getByAttribute("Album", "Blue"));
  }
  /// How many items have come to their end.
  [[nodiscard]] std::int64_t ended() const {
    return std::count(told.states.begin(), told.states.end(), player::kMediaEnded);
  }
};

TEST_F(Playing, AnAlbumPlaysThroughAllStates) {
  twoTrackAlbum();
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 9, 3, 8, 1));
  EXPECT_EQ(told.errors, 0);
}

TEST_F(Playing, TheLibraryPlaysWithoutBeingAssigned) {
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1);
  startWith(1);
  ASSERT_TRUE(until([&] { return player->playState() == player::kStopped; }));
  EXPECT_TRUE(told.states.empty());
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(9, 3, 8, 1));
}

TEST_F(Playing, AutoStartPlaysWhatIsAssigned) {
  const std::string path = addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1);
  startWith(1);
  player->settings().autoStart(true);
  player->URL(path);
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 1));
}

TEST_F(Playing, ASingleItemReplacesTheList) {
  twoTrackAlbum();
  player->currentMedia(player->currentPlaylist()->item(1));
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 10, 9, 3, 8, 1));
  EXPECT_EQ(player->currentPlaylist()->count(), 1);
  EXPECT_EQ(player->currentMedia()->name(), "Two");
}

TEST_F(Playing, EventsNeverComeFromWithinACall) {
  twoTrackAlbum();
  player->controls().play();
  EXPECT_TRUE(told.states.empty());
  EXPECT_EQ(player->playState(), player::kTransitioning);
}

TEST_F(Playing, AFileThatIsNoMusicIsToldAndPassedOver) {
  twoTrackAlbum();
  const std::string bad = folder / "bad.mp3";
  writeText(bad, "this is no music at all");
  auto list = player->mediaCollection().getByAttribute("Album", "Blue");
  player->URL(bad);
  list->insertItem(0, player->currentMedia());
  player->currentPlaylist(list);
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 10, 10, 9, 3, 8, 9, 3, 8, 1));
  EXPECT_EQ(told.errors, 1);
  ASSERT_EQ(player->Error().errorCount(), 1);
  EXPECT_EQ(player->Error().item(0).errorCode, kCannotPlay);
  EXPECT_THAT(player->Error().item(0).errorDescription, HasSubstr("bad.mp3"));
  player->Error().clearErrorQueue();
  EXPECT_EQ(player->Error().errorCount(), 0);
}

TEST_F(Playing, AListOfBadFilesStopsEvenInALoop) {
  start();
  std::vector<player::MediaRef> items;
  player->URL(folder / "gone 1.flac");
  auto list = player->currentPlaylist();
  player->URL(folder / "gone 2.flac");
  list->appendItem(player->currentMedia());
  list->appendItem(player->currentMedia());
  player->currentPlaylist(list);
  player->settings().setMode("loop", true);
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_EQ(told.errors, 3);
}

TEST_F(Playing, MissingFilesOfAPlaylistAreShownToldAndPassedOver) {
  std::string text = "#EXTM3U\n";
  for (int i = 0; i < 15; ++i)
    text += "#EXTINF:1,Ann - Gone " + std::to_string(i) + "\ngone " + std::to_string(i) + ".flac\n";
  writeText(folder / "playlists/L.m3u8", text + addTrack("1.flac", "One", "Ann", "Blue", "Jazz", 1) + "\n");
  startWith(1);
  auto list = player->playlistCollection().getByName("L")->item(0);
  ASSERT_EQ(list->count(), 16);
  EXPECT_EQ(list->item(3)->name(), "Gone 3");
  ASSERT_TRUE(until([&] { return list->item(15)->getItemInfo("Album") == "Blue"; }));
  player->currentPlaylist(list);
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 1));
  EXPECT_EQ(told.errors, 15);
  EXPECT_THAT(player->Error().item(0).errorDescription, HasSubstr("gone 14.flac"));
  EXPECT_EQ(list->count(), 16);
}

TEST_F(Playing, FilesWithoutAnySoundStopEvenInALoop) {
  for (const char* file : {"1.wav", "2.wav"}) {
    demo::WriteSound(folder / file, demo::Silence(0), demo::FileFormat::kWav);
  }
  start();
  player->URL(folder / "1.wav");
  auto list = player->currentPlaylist();
  player->URL(folder / "2.wav");
  list->appendItem(player->currentMedia());
  player->currentPlaylist(list);
  player->settings().setMode("loop", true);
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_EQ(told.errors, 2);
}

TEST_F(Playing, VeryShortItemsAllHaveTheirTurn) {
  for (int i = 0; i < 30; ++i) {
    demo::WriteSound(music(std::to_string(i) + ".wav"), demo::Tone(440, 0.001 * (i + 1)),
                     demo::FileFormat::kWav);
  }
  startWith(30);
  player->currentPlaylist(player->mediaCollection().getAll());
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_EQ(told.errors, 0);
  EXPECT_EQ(std::count(told.states.begin(), told.states.end(), player::kPlaying), 30);
  EXPECT_EQ(ended(), 30);
}

TEST_F(Playing, AFolderThatVanishesWhilePlayingIsToldAndTheRestGoesOn) {
  config.untimed = false;
  addTrack("a/1.wav", "One", "Ann", "Blue", "Jazz", 1, 60.0);
  addTrack("b/2.wav", "Two", "Ann", "Blue", "Jazz", 2);
  addTrack("c/3.wav", "Three", "Ann", "Blue", "Jazz", 3);
  addTrack("d/4.wav", "Four", "Ann", "Blue", "Jazz", 4);
  startWith(4);
  player->currentPlaylist(player->mediaCollection().getByAttribute("Album", "Blue"));
  player->controls().play();
  ASSERT_TRUE(untilState(player::kPlaying));
  // Prefetching may hold the next file open already, but never the one after it.
  for (const char* gone : {"a", "b", "c"}) fs::remove_all(music(gone));
  player->controls().currentPosition(59.5);
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_GE(told.errors, 1);
  EXPECT_LE(told.errors, 2);
  ASSERT_EQ(player->Error().errorCount(), told.errors);
  EXPECT_THAT(player->Error().item(0).errorDescription, HasSubstr("3.wav"));
  EXPECT_EQ(ended(), 4 - told.errors);
}

TEST_F(Playing, TimeIsRealWithoutADevice) {
  config.untimed = false;
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1, 1.5);
  startWith(1);
  player->URL(music("1.wav"));
  const auto begin = std::chrono::steady_clock::now();
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  EXPECT_GT(took.count(), 1.2);
}

TEST_F(Playing, AnItemsEndIsToldWhenItsSoundHasEnded) {
  config.untimed = false;
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1, 1.0);
  addTrack("2.wav", "Two", "Ann", "Blue", "Jazz", 2, 1.0);
  startWith(2);
  player->currentPlaylist(player->mediaCollection().getAll());
  const auto begin = std::chrono::steady_clock::now();
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  ASSERT_THAT(told.states, ElementsAre(10, 9, 3, 8, 9, 3, 8, 1));
  // From the press on, as a busy machine may tell late that it plays, but nothing is over too early.
  const auto seconds = [&](std::size_t to) {
    return std::chrono::duration<double>(told.times[to] - begin).count();
  };
  EXPECT_GT(seconds(3), 0.9);
  EXPECT_GT(seconds(6), 1.9);
}

TEST_F(Playing, ADiscPlaysItsTracks) {
  std::ofstream(folder / "disc.bin", std::ios::binary) << std::string(std::size_t{5} * 75 * 2352, '\0');
  std::ofstream(folder / "disc.cue") << "FILE \"disc.bin\" BINARY\n"
                                        "  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n"
                                        "  TRACK 02 AUDIO\n    INDEX 01 00:02:00\n";
  config.cdDevices = {folder / "disc.cue"};
  start();
  player->currentPlaylist(player->cdromCollection().item(0)->playlist());
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 9, 3, 8, 1));
}

TEST_F(Playing, AMachineWithoutSoundPlaysInSilenceAndSaysSo) {
  config.audioOutput = "pulse";
  ::setenv("PULSE_SERVER", ("unix:" + (folder / "nobody")).c_str(), 1);
  config.untimed = false;
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1, 0.3);
  startWith(1);
  player->URL(music("1.wav"));
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  ASSERT_TRUE(until([&] { return !log.empty(); })) << "told when it comes to it";
  ::unsetenv("PULSE_SERVER");
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 1));
  EXPECT_THAT(log, ElementsAre("No sound device can be used: playing in silence"));
}

TEST_F(Playing, SilenceThatWasAskedForIsNotTold) {
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1, 0.3);
  startWith(1);
  player->URL(music("1.wav"));
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(log, SizeIs(0));
}

TEST_F(Playing, APauseWhileTheEndStillSoundsHoldsTheEnd) {
  config.untimed = false;
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1, 1.0);
  addTrack("2.wav", "Two", "Ann", "Blue", "Jazz", 2, 60.0);
  startWith(2);
  for (int tries = 1;; ++tries) {
    player->currentPlaylist(player->mediaCollection().getAll());
    player->controls().play();
    ASSERT_TRUE(until([&] { return ended() > 0 || player->controls().currentPosition() > 0.5; }));
    // The decoder's place begins anew when it goes on to the next file, before that can be heard.
    ASSERT_TRUE(until([&] { return ended() > 0 || player->controls().currentPosition() < 0.5; }));
    player->controls().pause();
    player->settings().setMode("loop", true);  // what follows the next one, not what is under way
    player->settings().setMode("loop", false);
    minutesPass();
    EXPECT_EQ(player->playState(), player::kPaused);
    EXPECT_EQ(told.states.back(), player::kPaused);
    if (ended() == 0) break;
    // A busy machine has let the end sound before the pause came: once more.
    ASSERT_LT(tries, 20);
    player->controls().stop();
    ASSERT_TRUE(untilState(player::kStopped));
    told.states.clear();
  }
  player->controls().play();
  ASSERT_TRUE(until([&] { return ended() == 1 && told.states.back() == player::kPlaying; }));
  player->controls().currentPosition(59.5);
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 2, 3, 8, 9, 3, 8, 1));
}

TEST_F(Playing, ShufflingWhileTheEndStillSoundsPlaysOnAndEachOnce) {
  config.untimed = false;
  for (int i = 1; i <= 4; ++i) {
    addTrack(std::to_string(i) + ".wav", std::to_string(i), "Ann", "Blue", "Jazz", i, i == 1 ? 1.0 : 0.3);
  }
  startWith(4);
  player->currentPlaylist(player->mediaCollection().getAll());
  player->controls().play();
  ASSERT_TRUE(until([&] { return ended() > 0 || player->controls().currentPosition() > 0.5; }));
  ASSERT_TRUE(until([&] { return ended() > 0 || player->controls().currentPosition() < 0.5; }));
  player->settings().setMode("shuffle", true);
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 8, 9, 3, 8, 9, 3, 8, 9, 3, 8, 1));
  EXPECT_EQ(told.errors, 0);
}

TEST_F(Playing, PauseHoldsThePositionAndPlayGoesOn) {
  config.untimed = false;
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1, 60);
  startWith(1);
  player->URL(music("1.wav"));
  EXPECT_FALSE(player->controls().isAvailable("Pause"));
  player->controls().play();
  ASSERT_TRUE(untilState(player::kPlaying));
  EXPECT_TRUE(player->controls().isAvailable("pause"));
  ASSERT_TRUE(until([&] { return player->controls().currentPosition() > 0.1; }));
  player->controls().pause();
  EXPECT_EQ(player->playState(), player::kPaused);
  // What the decoder had told already comes in; then it tells nothing more.
  double place = -1;
  int still = 0;
  ASSERT_TRUE(until([&] {
    const double before = std::exchange(place, player->controls().currentPosition());
    loop.turn(std::chrono::milliseconds(100));
    still = before == place && player->controls().currentPosition() == place ? still + 1 : 0;
    return still >= 10;
  }));
  minutesPass();
  EXPECT_DOUBLE_EQ(player->controls().currentPosition(), place);
  player->controls().play();
  EXPECT_TRUE(until([&] { return player->controls().currentPosition() > place + 0.1; }));
  player->controls().currentPosition(10);
  EXPECT_TRUE(until([&] { return player->controls().currentPosition() > 10.1; }));
  EXPECT_LT(player->controls().currentPosition(), 59);
  player->controls().fastForward();
  EXPECT_EQ(player->playState(), player::kScanForward);
  player->controls().fastReverse();
  EXPECT_EQ(player->playState(), player::kScanReverse);
  const double before = player->controls().currentPosition();
  EXPECT_TRUE(until([&] { return player->controls().currentPosition() < before - 1; }));
  player->controls().play();
  EXPECT_EQ(player->playState(), player::kPlaying);
  player->controls().stop();
  EXPECT_EQ(player->playState(), player::kStopped);
  EXPECT_EQ(player->controls().currentPosition(), 0);
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(10, 9, 3, 2, 3, 4, 5, 3, 1));
}

TEST_F(Playing, ShuffleAndLoopAreToldWhenTheyChange) {
  start();
  player->settings().setMode("LOOP", false);  // as it was: nothing to tell
  player->settings().setMode("shuffle", true);
  player->settings().setMode("Loop", true);
  EXPECT_TRUE(player->settings().getMode("Shuffle"));
  EXPECT_TRUE(player->settings().getMode("loop"));
  EXPECT_TRUE(told.modes.empty());
  ASSERT_TRUE(until([&] { return told.modes.size() == 2; }));
  EXPECT_EQ(told.modes[0], std::make_pair(std::string("Shuffle"), true));
  EXPECT_EQ(told.modes[1], std::make_pair(std::string("Loop"), true));
  EXPECT_THROW(player->settings().setMode("dim", true), base::Failure);
}

TEST_F(Playing, VolumeStaysBetweenItsEnds) {
  start();
  EXPECT_EQ(player->settings().volume(), 50);
  player->settings().volume(0);
  player->settings().volume(100);
  EXPECT_THROW(player->settings().volume(101), base::Failure);
  EXPECT_THROW(player->settings().volume(-1), base::Failure);
  EXPECT_EQ(player->settings().volume(), 100);
  player->settings().mute(true);
  EXPECT_TRUE(player->settings().mute());
}

TEST_F(Playing, TheVersionBeginsWithANine) {
  start();
  EXPECT_EQ(player->versionInfo().front(), '9');
}

TEST_F(Playing, APlayerMayGoWhileItPlays) {
  config.untimed = false;
  addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1, 60);
  startWith(1);
  player->URL(music("1.wav"));
  const player::MediaRef media = player->currentMedia();
  player->controls().play();
  ASSERT_TRUE(untilState(player::kPlaying));
  player.reset();
  minutesPass();
  EXPECT_EQ(media->name(), "One");
}

}  // namespace
}  // namespace engine::testing
