#include <gmock/gmock.h>

#include <limits>

#include "Desk.hpp"

using mpris::Path;
using mpris_test::Desk;
using mpris_test::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr std::int64_t kSecond = 1'000'000;

class Transport : public Desk {
 protected:
  void is(std::int32_t playState) { player.now["playState"] = playState; }
  const std::vector<std::string>& done() { return player.journal.lines(); }
};

}  // namespace

TEST_F(Transport, PlayResumesWhatIsPausedAndStartsWhatIsStopped) {
  player.plays();
  for (const std::int32_t state : {2, 1, 10}) {
    is(state);
    call("Play");
  }
  EXPECT_THAT(done(), ElementsAre("ResumePlayer", "ResumePlayer", "ResumePlayer"));
}

TEST_F(Transport, PlayLeavesWhatPlaysAlone) {
  player.plays();
  for (const std::int32_t state : {3, 4, 5, 6, 9}) {
    is(state);
    call("Play");
  }
  EXPECT_THAT(done(), IsEmpty());
}

TEST_F(Transport, PauseLeavesWhatIsPausedOrStoppedAlone) {
  player.plays();
  for (const std::int32_t state : {2, 1, 10, 0}) {
    is(state);
    call("Pause");
  }
  EXPECT_THAT(done(), IsEmpty());
  is(3);
  call("Pause");
  EXPECT_THAT(done(), ElementsAre("PausePlayer"));
}

TEST_F(Transport, PauseHoldsAStationThatWaitsForMoreOfItself) {
  player.plays();
  is(6);
  call("Pause");
  EXPECT_THAT(done(), ElementsAre("controls.pause"));
}

TEST_F(Transport, WhatIsPausedWhileItIsBeingOpenedIsHeldByThePlayer) {
  player.opens();
  EXPECT_EQ(get("PlaybackStatus"), Value("Playing"));
  call("Pause");
  EXPECT_EQ(get("PlaybackStatus"), Value("Paused"));
  call("Pause");
  changes();
  EXPECT_THAT(done(), ElementsAre("controls.pause"));
}

TEST_F(Transport, PlayTakesThatPauseBack) {
  for (const char* word : {"Play", "PlayPause"}) {
    player.opens();
    call("PlayPause");
    call(word);
    EXPECT_EQ(get("PlaybackStatus"), Value("Playing")) << word;
  }
  EXPECT_THAT(done(), ElementsAre("controls.pause", "controls.play", "controls.pause", "controls.play"));
}

TEST_F(Transport, APauseOfAnotherIsTakenBackAsWell) {
  player.opens();
  player.now["play"] = true;
  player.now["pause"] = false;
  changes();
  EXPECT_EQ(get("PlaybackStatus"), Value("Paused"));
  call("Play");
  EXPECT_THAT(done(), ElementsAre("controls.play"));
}

TEST_F(Transport, PlayPauseTurnsRoundWhatItFinds) {
  player.plays();
  call("PlayPause");
  is(2);
  call("PlayPause");
  is(1);
  call("PlayPause");
  EXPECT_THAT(done(), ElementsAre("PausePlayer", "ResumePlayer", "ResumePlayer"));
}

TEST_F(Transport, StopLeavesWhatIsStoppedAlone) {
  player.plays();
  call("Stop");
  is(1);
  call("Stop");
  EXPECT_THAT(done(), ElementsAre("StopPlayer"));
}

TEST_F(Transport, NextAndPreviousAreStepsOnlyWhereThePlayerHasThem) {
  player.plays();
  player.now["next"] = false;
  player.now["previous"] = false;
  call("Next");
  call("Previous");
  EXPECT_THAT(done(), IsEmpty());
  player.now["next"] = true;
  player.now["previous"] = true;
  call("Next");
  call("Previous");
  EXPECT_THAT(done(), ElementsAre("PlayNext", "PlayPrev"));
}

TEST_F(Transport, SeeksFromWhereItIsAndStopsAtTheStart) {
  player.plays();
  player.now["position"] = 10.0;
  call("Seek", {5 * kSecond});
  call("Seek", {-100 * kSecond});
  EXPECT_THAT(done(), ElementsAre("controls.currentPosition = 15", "controls.currentPosition = 0"));
}

TEST_F(Transport, ASeekBeyondTheEndIsNext) {
  player.plays();
  player.now["position"] = 179.0;
  call("Seek", {5 * kSecond});
  call("Seek", {std::numeric_limits<std::int64_t>::max()});
  EXPECT_THAT(done(), ElementsAre("PlayNext", "PlayNext"));
}

TEST_F(Transport, NobodySeeksInWhatIsStoppedOrHasNoEnd) {
  player.plays();
  is(1);
  call("Seek", {kSecond});
  is(3);
  player.now["duration"] = 0.0;
  call("Seek", {kSecond});
  call("SetPosition", {Path{track()}, kSecond});
  EXPECT_EQ(get("CanSeek"), Value(false));
  EXPECT_THAT(done(), IsEmpty());
}

TEST_F(Transport, APositionIsForTheItemThatItWasMeantFor) {
  player.plays();
  const std::string first = track();
  player.plays("Two", 1);
  call("SetPosition", {Path{first}, 20 * kSecond});
  EXPECT_THAT(done(), IsEmpty());
  call("SetPosition", {Path{track()}, 20 * kSecond});
  EXPECT_THAT(done(), ElementsAre("controls.currentPosition = 20"));
}

TEST_F(Transport, APositionOutsideOfTheItemIsNone) {
  player.plays();
  for (const std::int64_t position : {-kSecond, 181 * kSecond, std::numeric_limits<std::int64_t>::min(),
                                      std::numeric_limits<std::int64_t>::max()})
    call("SetPosition", {Path{track()}, position});
  EXPECT_THAT(done(), IsEmpty());
  call("SetPosition", {Path{track()}, 180 * kSecond});
  EXPECT_THAT(done(), ElementsAre("controls.currentPosition = 180"));
}

TEST_F(Transport, OpensTheAddressesThatThePlayerPlays) {
  call("OpenUri", {"file:///music/a%20b.flac"});
  call("OpenUri", {"HTTP://radio.example/live"});
  EXPECT_THAT(done(), ElementsAre("PlayURL file:///music/a%20b.flac", "PlayURL HTTP://radio.example/live"));
}

TEST_F(Transport, RefusesOtherAddresses) {
  for (const char* address :
       {"", "/music/one.flac", "spotty:track:1", "cdda:///dev/sr0#1", "://", "ftp://a/b"})
    EXPECT_EQ(refusal([&] { call("OpenUri", {address}); }), "org.freedesktop.DBus.Error.NotSupported")
        << address;
  EXPECT_THAT(done(), IsEmpty());
}

TEST_F(Transport, TheVolumeIsBroughtIntoItsRange) {
  for (const double volume : {0.335, -1.0, 7.0, std::numeric_limits<double>::infinity()})
    set("Volume", volume);
  EXPECT_THAT(done(), ElementsAre("Volume = 34", "Volume = 0", "Volume = 100", "Volume = 100"));
  EXPECT_EQ(refusal([&] { set("Volume", std::numeric_limits<double>::quiet_NaN()); }),
            "org.freedesktop.DBus.Error.InvalidArgs");
  player.now["volume"] = 34;
  EXPECT_EQ(get("Volume"), Value(0.34));
}

TEST_F(Transport, ShufflesAndLoops) {
  set("Shuffle", true);
  set("LoopStatus", "Playlist");
  set("LoopStatus", "None");
  EXPECT_THAT(done(), ElementsAre("ShuffleMode = True", "LoopMode = True", "LoopMode = False"));
  EXPECT_EQ(refusal([&] { set("LoopStatus", "Track"); }), "org.freedesktop.DBus.Error.NotSupported");
  EXPECT_EQ(refusal([&] { set("LoopStatus", "Sometimes"); }), "org.freedesktop.DBus.Error.InvalidArgs");
  player.now["loop"] = true;
  player.now["shuffle"] = true;
  EXPECT_EQ(get("LoopStatus"), Value("Playlist"));
  EXPECT_EQ(get("Shuffle"), Value(true));
}

TEST_F(Transport, TheRateIsThatOfThePlayersScan) {
  player.plays();
  EXPECT_EQ(get("Rate"), Value(1.0));
  is(4);
  EXPECT_EQ(get("Rate"), Value(5.0));
  is(5);
  EXPECT_EQ(get("Rate"), Value(-5.0));
}

TEST_F(Transport, ARateIsTheNearestThatThePlayerHas) {
  player.plays();
  for (const double rate : {1.0, 0.5, 2.0, -1.0}) set("Rate", rate);
  EXPECT_THAT(done(), IsEmpty());
  set("Rate", 4.0);
  set("Rate", -3.0);
  is(4);
  set("Rate", 5.0);  // it scans so already
  set("Rate", -5.0);
  set("Rate", 1.0);
  is(5);
  set("Rate", 1.0);
  EXPECT_THAT(done(), ElementsAre("FastForward", "FastReverse", "FastReverse", "FastForward", "FastReverse"));
}

TEST_F(Transport, ARateOfNothingIsAPauseAndNoRateStartsAnything) {
  player.plays();
  set("Rate", 0.0);
  is(2);
  set("Rate", 5.0);
  is(1);
  set("Rate", 5.0);
  EXPECT_THAT(done(), ElementsAre("PausePlayer"));
}

TEST_F(Transport, BeforeThePlugInsStartIsOverNothingIsDoneAndNothingFails) {
  player.plays();
  player.ready = false;
  for (const char* method : {"Next", "Previous", "Pause", "PlayPause", "Stop"}) call(method);
  call("Seek", {kSecond});
  EXPECT_EQ(get("PlaybackStatus"), Value("Stopped"));
  EXPECT_EQ(get("Position"), Value(std::int64_t{0}));
  for (const char* can : {"CanGoNext", "CanGoPrevious", "CanPlay", "CanPause", "CanSeek"})
    EXPECT_EQ(get(can), Value(false)) << can;
  EXPECT_EQ(get("Metadata"), Value(mpris::Dict()));
}

TEST_F(Transport, RaiseShowsTheWindowWhereThereIsOne) {
  call("Raise", {}, kRoot);
  EXPECT_EQ(get("CanRaise", kRoot), Value(true));
  window = false;
  call("Raise", {}, kRoot);
  call("Quit", {}, kRoot);
  EXPECT_EQ(get("CanRaise", kRoot), Value(false));
  EXPECT_EQ(get("CanQuit", kRoot), Value(false));
  EXPECT_THAT(done(), ElementsAre("ShowPopupControls = True"));
}
