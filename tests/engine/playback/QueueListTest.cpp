// What is played, changed while it plays.

#include "engine/playback/QueueList.hpp"

#include <gmock/gmock.h>

#include "base/Failure.hpp"
#include "engine/playback/PlaybackStates.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Queue : public PlaybackStates {
 protected:
  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (std::int32_t i = 0; i < queue.count(); ++i) all.push_back(queue.item(i)->name());
    return all;
  }
  void play(const std::vector<std::string>& paths) {
    queue.begin();
    playing(paths);
  }
  static player::ToldMedia told(const std::string& path) {
    player::ToldMedia media;
    media.url = path;
    return media;
  }

  bool shown = true;
  int edits = 0;
  QueueList queue{playback,
                  {.shown = [this] { return shown; },
                   .mediaOf = [](const player::ToldMedia& each) { return media(each.url); },
                   .edited = [this] { ++edits; }}};
};

TEST_F(Queue, WhatIsPutInBehindTheCurrentItemIsPlayedNext) {
  play({"/a", "/b", "/c"});
  queue.insertItems(1, {told("/x"), told("/y")});
  EXPECT_THAT(names(), ElementsAre("a", "x", "y", "b", "c"));
  EXPECT_EQ(output.appended, "/x");
  EXPECT_EQ(playback.place(), 0);
  EXPECT_THAT(states, IsEmpty()) << "what sounds goes on";
}

TEST_F(Queue, ShuffledWhatIsPutInBehindTheCurrentItemIsPlayedNextAllTheSame) {
  for (int tries = 0; tries < 20; ++tries) {
    play({"/a", "/b", "/c", "/d", "/e", "/f"});
    playback.shuffle(true);
    queue.insertItems(playback.place() + 1, {told("/x"), told("/y")});
    EXPECT_EQ(output.appended, "/x");
    end();
    EXPECT_EQ(output.appended, "/y");
    playback.shuffle(false);
  }
}

TEST_F(Queue, ShuffledWhatIsMovedBehindTheCurrentItemIsPlayedNext) {
  for (const std::int32_t from : {0, 1, 2, 3, 4, 5, 6, 7}) {
    play({"/a", "/b", "/c", "/d", "/e", "/f", "/g", "/h"});
    playback.shuffle(true);
    for (int turn = 0; turn < 4; ++turn) {  // some have had their turn by then
      const std::int32_t place = playback.place();
      if (from != place) {
        const std::string moved = "/" + queue.item(from)->name();
        queue.moveItem(from, from < place ? place : place + 1);
        EXPECT_EQ(output.appended, moved) << "from " << from << " behind " << place;
      }
      end();
    }
    playback.shuffle(false);
  }
}

TEST_F(Queue, ShuffledAMoveToAnywhereElseLeavesTheOrderAsItIs) {
  play({"/a", "/b", "/c", "/d", "/e", "/f", "/g", "/h"});
  playback.shuffle(true);
  const std::string next = output.appended;
  const std::int32_t place = playback.place();
  queue.moveItem(place, place == 0 ? 1 : place - 1);  // what plays itself
  EXPECT_EQ(output.appended, next);
  const std::int32_t now = playback.place();
  queue.moveItem(now < 4 ? 7 : 0, now < 4 ? 6 : 1);
  EXPECT_EQ(output.appended, next);
}

TEST_F(Queue, ChangesLeaveTheListThatWasChosenAsItWas) {
  const auto chosen = list({"/a", "/b", "/c"});
  playback.assign(chosen);
  playback.play();
  playback.started(output.now);
  queue.removeItems({1});
  queue.moveItem(1, 0);
  EXPECT_THAT(names(), ElementsAre("c", "a"));
  EXPECT_EQ(chosen->count(), 3);
  EXPECT_EQ(queue.name(), "list");
  EXPECT_EQ(playback.place(), 1);
  EXPECT_EQ(edits, 2);
}

TEST_F(Queue, ClearedWhatPlaysIsPlayedToItsEndAndPausedOnTheWay) {
  play({"/a", "/b"});
  queue.removeItems({0, 1});
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_EQ(playback.state(), player::kPlaying);
  playback.pause();
  EXPECT_TRUE(playback.available("play"));
  playback.play();
  EXPECT_EQ(playback.state(), player::kPlaying);
  states.clear();
  end();
  EXPECT_THAT(states, ElementsAre(8, 1));
  EXPECT_EQ(playback.queue().current(), nullptr);
}

TEST_F(Queue, PutBackItGoesOnBehindWhatPlays) {
  play({"/a", "/b", "/c"});
  end();
  queue.removeItems({0, 1, 2});
  queue.insertItems(0, {told("/a"), told("/b"), told("/c")});
  EXPECT_EQ(playback.place(), 1);
  EXPECT_EQ(output.appended, "/c");
}

TEST_F(Queue, StoppedTheItemThatIsTakenOutGivesWayToTheNext) {
  play({"/a", "/b", "/c"});
  playback.stop();
  queue.removeItems({0});
  EXPECT_EQ(playback.queue().current()->name(), "b");
  playback.play();
  EXPECT_EQ(output.loaded.back(), "/b");
}

TEST_F(Queue, WhatNobodyHasChosenIsNoQueueAndAFirstTitleBeginsOne) {
  playback.preset(list({"/all", "/of", "/them"}));
  shown = false;
  EXPECT_EQ(queue.count(), 0);
  EXPECT_THROW((void)queue.item(0), base::Failure);
  const std::int64_t before = queue.revision();
  queue.insertItems(0, {told("/x")});
  shown = true;
  EXPECT_THAT(names(), ElementsAre("x"));
  EXPECT_GT(queue.revision(), before);
  playback.play();
  EXPECT_EQ(output.loaded.back(), "/x");
}

TEST_F(Queue, ItsRevisionCountsEachTitleAndItsMarkEachChoice) {
  play({"/a", "/b"});
  const std::int64_t mark = queue.mark();
  const std::int64_t revision = queue.revision();
  EXPECT_EQ(queue.revision(), revision);
  queue.insertItems(2, {told("/x"), told("/y")});
  EXPECT_EQ(queue.revision(), revision + 2);
  queue.moveItem(0, 1);
  EXPECT_EQ(queue.revision(), revision + 3);
  EXPECT_EQ(queue.mark(), mark);
  play({"/c"});
  EXPECT_GT(queue.mark(), mark);
  EXPECT_GT(queue.revision(), revision + 3);
}

TEST_F(Queue, AChangeThatCannotBeMadeLeavesEverythingAsItIs) {
  play({"/a", "/b"});
  const std::int64_t revision = queue.revision();
  EXPECT_THROW(queue.insertItems(5, {told("/x")}), base::Failure);
  EXPECT_THROW(queue.removeItems({7}), base::Failure);
  EXPECT_THROW(queue.name("Other"), base::Failure);
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_EQ(queue.revision(), revision);
  EXPECT_EQ(edits, 0);
}

TEST_F(Queue, AnItemOfItIsPlayedAtOnceAndWhatComesBehindIt) {
  play({"/a", "/b", "/c"});
  playback.playAt(1);
  EXPECT_EQ(output.loaded.back(), "/b");
  playback.started(output.now);
  EXPECT_EQ(output.appended, "/c");
  EXPECT_THROW(playback.playAt(3), base::Failure);
}

}  // namespace
}  // namespace engine::testing
