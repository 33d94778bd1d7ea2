#include <gmock/gmock.h>

#include "engine/common/Fixtures.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A player that is started again on the same folders.
class QueueRestart : public PlayerTest {
 protected:
  void album() {
    addTrack("a/1.flac", "One", "Ann", "Blue", "Jazz", 1, 2);
    addTrack("a/2.flac", "Two", "Ann", "Blue", "Jazz", 2, 2);
    addTrack("b/3.flac", "Three", "Ben", "Red", "Rock", 1, 2);
    startWith(3);
    player->currentPlaylist(player->mediaCollection().getByAttribute("Album", "Blue"));
    player->controls().next();
    player->controls().currentPosition(1.5);
  }
  void restart() {
    player.reset();
    told.states.clear();
    told.errors = 0;
    start();
  }
};

TEST_F(QueueRestart, TheQueueIsThereStoppedAndPlayGoesOn) {
  album();
  restart();
  EXPECT_THAT(Names(*player->currentPlaylist()), ElementsAre("One", "Two"));
  EXPECT_EQ(player->currentMedia()->name(), "Two");
  EXPECT_EQ(player->currentMedia()->getItemInfo("Artist"), "Ann");
  EXPECT_EQ(player->controls().currentPosition(), 1.5);
  EXPECT_EQ(player->playState(), player::kStopped);
  EXPECT_EQ(player->status(), "Stopped");
  minutesPass();
  EXPECT_THAT(told.states, IsEmpty());
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(9, 3, 8, 1));
}

TEST_F(QueueRestart, WhatStartUpSetsDoesNotMoveIt) {
  album();
  restart();
  player->settings().setMode("loop", true);
  player->settings().setMode("shuffle", true);
  player->settings().mute(false);
  player->settings().volume(30);
  loop.pump();
  EXPECT_EQ(player->currentMedia()->name(), "Two");
  EXPECT_EQ(player->controls().currentPosition(), 1.5);
  EXPECT_THAT(told.states, IsEmpty());
}

TEST_F(QueueRestart, TheScanOfTheLibraryLeavesItAlone) {
  album();
  player.reset();
  addTrack("a/0.flac", "Zero", "Ann", "Blue", "Jazz", 0);
  fs::remove(music("a/1.flac"));
  start();
  ASSERT_TRUE(until([&] { return player->mediaCollection().getByName("Zero")->count() == 1; }));
  EXPECT_THAT(Names(*player->currentPlaylist()), ElementsAre("One", "Two"));
  EXPECT_EQ(player->currentMedia()->name(), "Two");
}

TEST_F(QueueRestart, ATitleThatHasGoneIsToldAndPassedOver) {
  album();
  player.reset();
  fs::remove(music("a/2.flac"));
  start();
  player->controls().play();
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_EQ(told.errors, 1);
  EXPECT_THAT(Names(*player->currentPlaylist()), ElementsAre("One", "Two"));
}

TEST_F(QueueRestart, NothingIsTakenUpWhereItIsNotWanted) {
  config.resume = false;
  album();
  restart();
  EXPECT_EQ(player->currentPlaylist()->count(), 3);
  EXPECT_EQ(player->controls().currentPosition(), 0);
}

TEST_F(QueueRestart, WhatIsChosenLaterTakesItsPlace) {
  album();
  restart();
  player->currentPlaylist(player->mediaCollection().getByAttribute("Album", "Red"));
  restart();
  EXPECT_THAT(Names(*player->currentPlaylist()), ElementsAre("Three"));
}

}  // namespace
}  // namespace engine::testing
