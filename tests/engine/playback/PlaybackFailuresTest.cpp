// What happens when items can't be played.

#include <gmock/gmock.h>

#include <set>

#include "engine/playback/PlaybackStates.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;

TEST_F(PlaybackStates, AFailedItemIsToldAndTheNextOneLoaded) {
  playback.assign(list({"/a", "/b"}));
  playback.play();
  states.clear();
  playback.failed(output.now, "broken");
  EXPECT_EQ(told, 1);
  EXPECT_EQ(errors.item(0).errorDescription, "/a: broken");
  EXPECT_THAT(output.loaded, ElementsAre("/a", "/b"));
  playback.started(output.now);
  EXPECT_THAT(states, ElementsAre(3));
}

TEST_F(PlaybackStates, AnAppendedItemThatFailsIsToldInItsTurn) {
  playing({"/a", "/b", "/c"});
  const EntryId next = output.next;
  playback.ended(output.now);
  playback.failed(next, "gone");
  playback.started(output.now);
  EXPECT_THAT(states, ElementsAre(8, 9, 3));
  EXPECT_EQ(playback.queue().current()->name(), "c");
}

TEST_F(PlaybackStates, AGoodItemBehindManyMissingOnesIsPlayed) {
  std::vector<std::string> paths;
  for (int i = 0; i < 15; ++i) paths.push_back("/gone" + std::to_string(i));
  paths.emplace_back("/good");
  playback.assign(list(paths));
  playback.play();
  for (int i = 0; i < 15; ++i) playback.failed(output.now, "gone");
  EXPECT_EQ(output.loaded.back(), "/good");
  playback.started(output.now);
  EXPECT_EQ(playback.state(), player::kPlaying);
  EXPECT_EQ(told, 15);
}

TEST_F(PlaybackStates, AListWithNothingPlayableStopsAfterOneRoundEvenInALoop) {
  for (const bool shuffle : {false, true}) {
    told = 0;
    output.loaded.clear();
    playback.loop(true);
    playback.shuffle(shuffle);
    playback.assign(list({"/1", "/2", "/3", "/4", "/5", "/6", "/7", "/8", "/9", "/10", "/11", "/12"}));
    playback.play();
    for (int i = 0; i < 50 && playback.state() != player::kStopped; ++i) playback.failed(output.now, "bad");
    EXPECT_EQ(playback.state(), player::kStopped);
    EXPECT_EQ(told, 12);
    EXPECT_THAT(std::set<std::string>(output.loaded.begin(), output.loaded.end()), ::testing::SizeIs(12));
  }
}

TEST_F(PlaybackStates, InAShuffledLoopTheOnlyGoodItemIsAlwaysFoundAgain) {
  playback.loop(true);
  playback.shuffle(true);
  playback.assign(list({"/1", "/2", "/good", "/4", "/5", "/6"}));
  playback.play();
  int heard = 0;
  for (int i = 0; i < 300; ++i) {
    ASSERT_NE(playback.state(), player::kStopped) << "after " << i;
    if (playback.queue().current()->name() == "good") {
      playback.started(output.now);
      end();
      ++heard;
    } else {
      playback.failed(output.now, "bad");
    }
  }
  EXPECT_GT(heard, 40);
}

TEST_F(PlaybackStates, OfVeryManyFailuresInARowTheRestIsToldAsOne) {
  std::vector<std::string> paths;
  for (int i = 0; i < 5000; ++i) paths.push_back("/gone" + std::to_string(i));
  playback.assign(list(paths));
  playback.play();
  while (playback.state() != player::kStopped) playback.failed(output.now, "gone");
  EXPECT_EQ(told, 101);
  EXPECT_EQ(errors.item(0).errorDescription, "4900 more can't be played, the last one: /gone4999: gone");
  EXPECT_EQ(errors.item(1).errorDescription, "/gone99: gone");
}

TEST_F(PlaybackStates, AGoodItemEndsTheRowOfFailures) {
  playback.loop(true);
  playback.assign(list({"/1", "/2"}));
  playback.play();
  for (int i = 0; i < 6; ++i) {
    playback.failed(output.now, "bad");
    ASSERT_EQ(playback.state(), player::kTransitioning);
    playback.started(output.now);
    end();
    ASSERT_EQ(playback.state(), player::kPlaying);
    playback.next();
  }
}

TEST_F(PlaybackStates, AFailureWhilePausedDoesNotBeginToPlay) {
  playing({"/a", "/b"});
  playback.pause();
  playback.failed(output.now, "gone");
  EXPECT_THAT(states, ElementsAre(2));
  EXPECT_THAT(output.loaded, ElementsAre("/a"));
  playback.play();
  EXPECT_THAT(states, ElementsAre(2, 3, 9));
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace engine::testing
