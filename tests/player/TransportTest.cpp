#include <limits>

#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Transport : public House {
 protected:
  void SetUp() override { start(); }
  player::WMPCalls& calls = plugin.calls;
};

}  // namespace

TEST_F(Transport, PauseWhilePausedResumes) {
  wmp9->state = player::kPaused;
  calls.PauseResume();
  EXPECT_THAT(playerCalls(), ElementsAre("player: play"));
}

TEST_F(Transport, PauseWhileStoppedDoesNothing) {
  for (const int state : {player::kStopped, player::kReady, player::kUndefined, player::kTransitioning}) {
    wmp9->state = state;
    calls.PauseResume();
  }
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(Transport, PauseWhilePlayingOrScanningPauses) {
  for (const int state : {player::kPlaying, player::kScanForward, player::kScanReverse}) {
    wmp9->state = state;
    calls.PauseResume();
  }
  EXPECT_THAT(playerCalls(), ElementsAre("player: pause", "player: pause", "player: pause"));
}

TEST_F(Transport, NextWhileStoppedMovesOnAndStarts) {
  wmp9->state = player::kStopped;
  calls.NextTrack();
  EXPECT_THAT(playerCalls(), ElementsAre("player: next", "player: play"));
}

TEST_F(Transport, NextWhilePlayingOnlyMovesOn) {
  wmp9->state = player::kPlaying;
  calls.NextTrack();
  calls.PreviousTrack();
  EXPECT_THAT(playerCalls(), ElementsAre("player: next", "player: previous"));
}

TEST_F(Transport, AStepThatIsNotAvailableIsDroppedSilently) {
  wmp9->unavailable = {"Play", "Pause", "Stop", "Next", "Previous", "FastForward", "FastReverse"};
  for (const int state : {player::kStopped, player::kPaused, player::kPlaying}) {
    wmp9->state = state;
    calls.NextTrack();
    calls.PreviousTrack();
    calls.ResumePlayback();
    calls.FastForward();
    calls.FastReverse();
    calls.StopPlayback();
    calls.PauseResume();
  }
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(Transport, PreviousThatIsNotThereStillStartsAStoppedPlayer) {
  wmp9->state = player::kReady;
  wmp9->unavailable = {"Previous"};
  calls.PreviousTrack();
  EXPECT_THAT(playerCalls(), ElementsAre("player: play"));
}

TEST_F(Transport, ResumeStartsOnlyFromPauseStopAndReady) {
  for (const int state : {2, 10, 1, 3, 4, 5, 0, 6, 8, 9}) {
    wmp9->state = state;
    calls.ResumePlayback();
  }
  EXPECT_EQ(playerCalls().size(), 3U);
}

TEST_F(Transport, ASecondPressOfAScanReturnsToNormalSpeed) {
  wmp9->state = player::kPlaying;
  calls.FastForward();
  wmp9->state = player::kScanForward;
  calls.FastForward();
  calls.FastReverse();
  wmp9->state = player::kScanReverse;
  calls.FastReverse();
  EXPECT_THAT(playerCalls(),
              ElementsAre("player: fastForward", "player: play", "player: fastReverse", "player: play"));
}

TEST_F(Transport, RestartGoesToTheStartOnlyWhilePlaying) {
  wmp9->state = player::kPlaying;
  calls.RestartPlayback();
  wmp9->state = player::kPaused;
  calls.RestartPlayback();
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentPosition 0", "player: play"));
}

TEST_F(Transport, StopQueuesTheStoppedStateFirst) {
  calls.StopPlayback();
  EXPECT_THAT(plugin.queue.StateStack(), ElementsAre(1));
  EXPECT_THAT(playerCalls(), ElementsAre("player: stop"));
}

TEST_F(Transport, StopWhileStoppedBlanksTheMediaDevicesAgain) {
  wmp9->unavailable = {"Stop"};
  calls.StopPlayback();
  loop.advance(base::Milliseconds(2));
  EXPECT_TRUE(published("Title", ""));
  EXPECT_TRUE(published("Length", ""));
}

TEST_F(Transport, EjectOfADriveThatIsNotThereIsSkipped) {
  calls.EjectDrive(5);
  EXPECT_THAT(playerCalls(), IsEmpty());
  calls.EjectDrive(0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: eject 0"));
}

TEST_F(Transport, VolumeUpStopsAtFullAndUnmutes) {
  wmp9->level = 95;
  wmp9->muted = true;
  calls.VolumeUp(10);
  EXPECT_EQ(wmp9->level, 100);
  EXPECT_FALSE(wmp9->muted);
}

TEST_F(Transport, VolumeDownToNothingMutes) {
  wmp9->level = 10;
  calls.VolumeDown(10);
  EXPECT_EQ(wmp9->level, 0);
  EXPECT_TRUE(wmp9->muted);
}

TEST_F(Transport, VolumeDownShortOfNothingDoesNotMute) {
  wmp9->level = 11;
  wmp9->muted = true;
  calls.VolumeDown(10);
  EXPECT_EQ(wmp9->level, 1);
  EXPECT_FALSE(wmp9->muted);
}

TEST_F(Transport, AVolumeSumThatOverflowsChangesNothing) {
  wmp9->level = std::numeric_limits<std::int32_t>::max() - 5;
  calls.VolumeUp(10);
  wmp9->level = std::numeric_limits<std::int32_t>::min() + 5;
  calls.VolumeDown(10);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Transport, AVolumeThatCannotBeReadIsLeftAlone) {
  wmp9->failing = {"read volume"};
  calls.VolumeUp(10);
  calls.VolumeDown(10);
  EXPECT_THAT(playerCalls(), ElementsAre("player: mute off", "player: mute off"));
}

TEST_F(Transport, SetVolumeTakesWhatThePlayerTakes) {
  calls.SetVolume(120);
  EXPECT_EQ(wmp9->level, 120);
  calls.SetVolume(0);
  EXPECT_EQ(wmp9->level, 0);
  EXPECT_TRUE(wmp9->muted);
  journal.clear();
  calls.SetVolume(-1);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Transport, IsPlayingWhilePlayingOrScanning) {
  std::vector<int> playing;
  for (int state = 0; state <= 11; ++state) {
    wmp9->state = state;
    if (calls.IsPlaying()) playing.push_back(state);
  }
  EXPECT_THAT(playing, ElementsAre(3, 4, 5));
}

TEST_F(Transport, AFailedPlayerCallIsSkippedAndNothingIsLogged) {
  wmp9->failing = {"next", "stop", "play"};
  calls.NextTrack();
  calls.StopPlayback();
  EXPECT_THAT(playerCalls(), ElementsAre("player: next", "player: play", "player: stop"));
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
}
