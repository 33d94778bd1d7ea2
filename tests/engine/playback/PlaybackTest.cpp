#include "engine/playback/Playback.hpp"

#include <gmock/gmock.h>

#include "engine/playback/PlaybackStates.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;

TEST_F(PlaybackStates, NothingIsAvailableWithoutMedia) {
  for (const auto* step :
       {"play", "pause", "stop", "next", "previous", "fastforward", "fastreverse", "eat"}) {
    EXPECT_FALSE(playback.available(step)) << step;
  }
  playback.play();
  playback.stop();
  playback.next();
  playback.pause();
  EXPECT_EQ(playback.state(), player::kUndefined);
  EXPECT_TRUE(states.empty());
}

TEST_F(PlaybackStates, TheNextItemIsHandedOverWhileTheFirstPlays) {
  playing({"/a", "/b", "/c"});
  EXPECT_EQ(output.appended, "/b");
  end();
  EXPECT_THAT(states, ElementsAre(8, 9, 3));
  EXPECT_EQ(output.appended, "/c");
  EXPECT_THAT(output.loaded, ElementsAre("/a"));
  EXPECT_EQ(playback.queue().current()->name(), "b");
}

TEST_F(PlaybackStates, AfterTheLastItemTheListIsAtItsBeginningAgain) {
  playing({"/a", "/b"});
  end();
  end();
  EXPECT_THAT(states, ElementsAre(8, 9, 3, 8, 1));
  EXPECT_EQ(playback.queue().current()->name(), "a");
}

TEST_F(PlaybackStates, ALoopBeginsAnew) {
  playing({"/a", "/b"});
  playback.loop(true);
  end();
  EXPECT_EQ(output.appended, "/a");
  end();
  EXPECT_EQ(playback.queue().current()->name(), "a");
  EXPECT_EQ(playback.state(), player::kPlaying);
}

TEST_F(PlaybackStates, ChangingTheModeChangesWhatFollows) {
  playing({"/a"});
  EXPECT_EQ(output.appended, "");
  playback.loop(true);
  EXPECT_EQ(output.appended, "/a");
  playback.loop(false);
  EXPECT_EQ(output.appended, "");
}

TEST_F(PlaybackStates, NextWhileStoppedOnlySelects) {
  playback.assign(list({"/a", "/b"}));
  playback.next();
  EXPECT_EQ(playback.state(), player::kReady);
  EXPECT_TRUE(output.loaded.empty());
  EXPECT_FALSE(playback.available("next"));
  EXPECT_TRUE(playback.available("previous"));
  playback.play();
  EXPECT_THAT(output.loaded, ElementsAre("/b"));
  EXPECT_THAT(states, ElementsAre(10, 10, 9));
}

TEST_F(PlaybackStates, NextWhilePlayingMovesOnAndPlays) {
  playing({"/a", "/b"});
  playback.next();
  playback.started(output.now);
  EXPECT_THAT(states, ElementsAre(9, 3));
  playback.next();  // there is none
  EXPECT_THAT(states, ElementsAre(9, 3));
}

TEST_F(PlaybackStates, OldNewsOfAnItemThatWasLeftIsNotHeard) {
  playing({"/a", "/b"});
  const EntryId old = output.now;
  playback.next();
  playback.ended(old);
  playback.failed(old, "late");
  EXPECT_THAT(states, ElementsAre(9));
  EXPECT_EQ(told, 0);
}

TEST_F(PlaybackStates, ScanningForwardRunsFastAndPlayReturns) {
  playing({"/a"});
  playback.fastForward();
  EXPECT_GT(output.rate, 1);
  EXPECT_FALSE(playback.available("fastforward"));
  EXPECT_TRUE(playback.available("fastreverse"));
  playback.play();
  EXPECT_EQ(output.rate, 1);
  EXPECT_THAT(states, ElementsAre(4, 3));
}

TEST_F(PlaybackStates, ScanningBackwardStepsToTheStartAndPlaysOn) {
  playing({"/a"});
  output.place = 3;
  playback.fastReverse();
  loop.timer->fire();
  EXPECT_LT(output.place, 3);
  for (int i = 0; i < 10; ++i) loop.timer->fire();
  EXPECT_EQ(output.place, 0);
  EXPECT_FALSE(output.paused);
  EXPECT_THAT(states, ElementsAre(5, 3));
}

TEST_F(PlaybackStates, PausingAScanReturnsToNormalSpeed) {
  playing({"/a"});
  playback.fastForward();
  playback.pause();
  EXPECT_EQ(output.rate, 1);
  EXPECT_TRUE(output.paused);
  playback.play();
  EXPECT_FALSE(output.paused);
  EXPECT_THAT(states, ElementsAre(4, 2, 3));
}

TEST_F(PlaybackStates, AStallIsToldAndItsEnd) {
  playing({"/a"});
  playback.stalled(true);
  playback.stalled(true);
  playback.stalled(false);
  EXPECT_THAT(states, ElementsAre(6, 3));
  playback.pause();
  playback.stalled(true);
  EXPECT_THAT(states, ElementsAre(6, 3, 2));
}

TEST_F(PlaybackStates, APauseWhileItOpensHoldsItAtItsStart) {
  playback.assign(list({"/a"}));
  playback.play();
  EXPECT_TRUE(playback.available("pause"));
  EXPECT_FALSE(playback.available("play"));
  playback.pause();
  EXPECT_FALSE(playback.available("pause"));
  EXPECT_TRUE(playback.available("play"));
  EXPECT_EQ(playback.state(), player::kTransitioning);
  playback.started(output.now);
  EXPECT_TRUE(output.paused);
  EXPECT_THAT(states, ElementsAre(10, 9, 3, 2));
  playback.play();
  EXPECT_FALSE(output.paused);
}

TEST_F(PlaybackStates, APauseWhileItOpensIsTakenBackByPlay) {
  playback.assign(list({"/a"}));
  playback.play();
  playback.pause();
  playback.play();
  playback.started(output.now);
  EXPECT_THAT(states, ElementsAre(10, 9, 3));
  EXPECT_THAT(output.loaded, ElementsAre("/a"));
}

TEST_F(PlaybackStates, WhatIsChosenAfterAPauseWhileItOpensPlays) {
  const std::vector<std::function<void()>> choices{[&] { playback.next(); }, [&] { playback.playAt(1); },
                                                   [&] {
                                                     playback.stop();
                                                     playback.play();
                                                   },
                                                   [&] {
                                                     playback.assign(list({"/c"}));
                                                     playback.play();
                                                   }};
  for (const auto& choose : choices) {
    playback.assign(list({"/a", "/b"}));
    playback.play();
    playback.pause();
    choose();
    playback.started(output.now);
    EXPECT_EQ(playback.state(), player::kPlaying);
  }
}

TEST_F(PlaybackStates, APauseWhileItOpensIsThatOfWhatFollowsWhereItCantBe) {
  playback.assign(list({"/a", "/b"}));
  playback.play();
  playback.pause();
  playback.failed(output.now, "gone");
  playback.started(output.now);
  EXPECT_EQ(playback.queue().current()->name(), "b");
  EXPECT_EQ(playback.state(), player::kPaused);
}

TEST_F(PlaybackStates, APauseWhileItOpensEndsWithTheLastThatCantBe) {
  playback.assign(list({"/a"}));
  playback.play();
  playback.pause();
  playback.failed(output.now, "gone");
  EXPECT_EQ(playback.state(), player::kStopped);
  playback.play();
  playback.started(output.now);
  EXPECT_EQ(playback.state(), player::kPlaying);
}

TEST_F(PlaybackStates, WhatEndsWhilePausedIsToldAfterThePause) {
  playing({"/a", "/b", "/c"});
  playback.pause();
  end();
  EXPECT_THAT(states, ElementsAre(2));
  EXPECT_EQ(playback.queue().current()->name(), "a");
  playback.loop(true);  // the output is past the first already: nothing is to be taken from it
  EXPECT_EQ(output.appends, 1);
  playback.play();
  EXPECT_THAT(states, ElementsAre(2, 3, 8, 9, 3));
  EXPECT_EQ(playback.queue().current()->name(), "b");
  EXPECT_EQ(output.appended, "/c");
}

TEST_F(PlaybackStates, AnEndThatWaitedForAPauseIsForgottenWithWhatEnded) {
  playing({"/a", "/b"});
  playback.pause();
  end();
  playback.stop();
  playback.play();
  playback.started(output.now);
  EXPECT_THAT(states, ElementsAre(2, 1, 9, 3));
  EXPECT_EQ(playback.queue().current()->name(), "a");
}

TEST_F(PlaybackStates, ThePlaceWantedBeforePlayingIsTakenUpAtTheStart) {
  playback.assign(list({"/a"}));
  playback.position(7);
  EXPECT_EQ(playback.position(), 7);
  playback.play();
  playback.started(output.now);
  EXPECT_EQ(output.place, 7);
}

TEST_F(PlaybackStates, AssigningWhilePlayingStops) {
  playing({"/a"});
  playback.assign(list({"/b"}));
  EXPECT_EQ(output.now, 0U);
  EXPECT_THAT(states, ElementsAre(10));
  playback.assign(nullptr);
  EXPECT_EQ(playback.state(), player::kUndefined);
}

TEST(StatusTexts, EveryStateHasOneButTheUndefined) {
  EXPECT_EQ(StatusText(player::kUndefined), "");
  for (int state = 1; state <= player::kReconnecting; ++state) {
    EXPECT_NE(StatusText(static_cast<player::PlayState>(state)), "") << state;
  }
}

}  // namespace
}  // namespace engine::testing
