#include "engine/playback/Playback.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "engine/common/Fixtures.hpp"
#include "engine/library/Lists.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

/// An output that only remembers what it is told.
class FakeOutput : public Output {
 public:
  void load(EntryId entry, const std::string& location) override {
    loaded.push_back(location);
    now = entry;
    next = 0;
  }
  void append(EntryId entry, const std::string& location) override {
    appended = location;
    next = entry;
    ++appends;
  }
  bool dropNext() override {
    if (onNext) return false;
    appended.clear();
    next = 0;
    return true;
  }
  void stop() override { now = next = 0; }
  void pause(bool value) override { paused = value; }
  void seek(double seconds) override { place = seconds; }
  [[nodiscard]] double position() const override { return place; }
  void speed(double factor) override { rate = factor; }
  void volume(std::int32_t) override {}
  void mute(bool) override {}

  std::vector<std::string> loaded;
  std::string appended;
  EntryId now = 0;
  EntryId next = 0;
  int appends = 0;
  bool onNext = false;  ///< what was appended is under way already
  bool paused = false;
  double place = 0;
  double rate = 1;
};

/// A loop whose one timer is fired by hand.
class HandLoop : public base::Loop {
 public:
  class HandTimer : public base::Timer {
   public:
    HandTimer(base::Milliseconds interval, std::function<void()> event)
        : interval_(interval), event_(std::move(event)) {}
    [[nodiscard]] base::Milliseconds interval() const override { return interval_; }
    void interval(base::Milliseconds value) override { interval_ = value; }
    [[nodiscard]] bool enabled() const override { return enabled_; }
    void enabled(bool value) override { enabled_ = value; }
    void fire() const {
      if (enabled_) event_();
    }

   private:
    base::Milliseconds interval_;
    std::function<void()> event_;
    bool enabled_ = false;
  };

  std::unique_ptr<base::Timer> makeTimer(base::Milliseconds interval, std::function<void()> event) override {
    auto made = std::make_unique<HandTimer>(interval, std::move(event));
    timer = made.get();
    return made;
  }
  void post(std::function<void()> work) override { work(); }
  void pump() override {}
  void whileOpen(const std::function<void()>& body) override { body(); }
  [[nodiscard]] base::Milliseconds now() const override { return {}; }

  HandTimer* timer = nullptr;
};

class PlaybackStates : public ::testing::Test {
 protected:
  static player::MediaRef media(const std::string& path) {
    TrackTags tags;
    tags.title = path.substr(1);
    return std::make_shared<LooseMedia>(path, tags);
  }
  static std::shared_ptr<ListPlaylist> list(const std::vector<std::string>& paths) {
    std::vector<player::MediaRef> items;
    for (const auto& path : paths) items.push_back(media(path));
    return std::make_shared<ListPlaylist>("list", items);
  }
  void playing(const std::vector<std::string>& paths) {
    playback.assign(list(paths));
    playback.play();
    playback.started(output.now);
    states.clear();
  }
  /// The end of what plays, with what was appended following by itself.
  void end() {
    const EntryId now = output.now;
    const EntryId next = output.next;
    playback.ended(now);
    if (next == 0) return;
    output.now = next;
    output.next = 0;
    output.onNext = false;
    playback.started(next);
  }

  HandLoop loop;
  FakeOutput output;
  ErrorList errors;
  std::vector<std::int32_t> states;
  int told = 0;
  Playback playback{loop,
                    output,
                    errors,
                    1,
                    {[this](player::PlayState state) { states.push_back(state); }, [this] { ++told; }}};
};

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

TEST_F(PlaybackStates, AnItemTakenFromTheListIsNotPlayedNext) {
  auto items = list({"/a", "/b", "/c"});
  playback.assign(items);
  playback.play();
  playback.started(output.now);
  items->removeItem(items->item(1));
  playback.listChanged();
  EXPECT_EQ(output.appended, "/c");
  items->removeItem(items->item(0));  // what plays
  playback.listChanged();
  EXPECT_EQ(output.appended, "/c");
  items->appendItem(media("/d"));
  playback.listChanged();
  end();
  EXPECT_EQ(playback.queue().current()->name(), "c");
  EXPECT_EQ(output.appended, "/d");
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

TEST_F(PlaybackStates, WhatIsUnderWayAlreadyStaysTheNextOne) {
  playing({"/a", "/b", "/c"});
  output.onNext = true;
  playback.refresh(list({"/a", "/c"}));
  EXPECT_EQ(output.appended, "/b");
  end();
  EXPECT_THAT(states, ElementsAre(8, 9, 3));
  EXPECT_EQ(playback.queue().current()->name(), "b");
  EXPECT_EQ(output.appended, "/c");
  playback.pause();
  EXPECT_EQ(playback.state(), player::kPaused);
}

TEST_F(PlaybackStates, ShufflingWhileTheNextIsUnderWayLosesNoTurn) {
  playing({"/a", "/b", "/c", "/d", "/e"});
  output.onNext = true;
  playback.shuffle(true);
  end();
  EXPECT_EQ(playback.queue().current()->name(), "b");
  std::vector<std::string> heard;
  while (playback.state() == player::kPlaying) {
    heard.push_back(playback.queue().current()->name());
    ASSERT_LE(heard.size(), 4U);
    end();
  }
  EXPECT_THAT(heard, UnorderedElementsAre("b", "c", "d", "e"));
}

TEST_F(PlaybackStates, TheSameFileIsNotHandedOverAgainFromAnotherPlace) {
  playing({"/b", "/c"});
  playback.refresh(list({"/a", "/b", "/c", "/d"}));
  EXPECT_EQ(output.appends, 1);
  end();
  EXPECT_EQ(playback.queue().current()->name(), "c");
  EXPECT_EQ(output.appended, "/d");
}

TEST_F(PlaybackStates, WhatIsShownIsWhatWasHandedOverThoughTheListChangedUntold) {
  auto items = list({"/a", "/b", "/c"});
  playback.assign(items);
  playback.play();
  playback.started(output.now);
  items->insertItem(0, media("/new"));
  end();
  EXPECT_EQ(playback.queue().current()->name(), "b");
  EXPECT_EQ(output.appended, "/c");
  items->removeItem(items->item(3));
  end();  // the output had it already
  EXPECT_EQ(playback.queue().current()->name(), "c");
  end();
  EXPECT_EQ(playback.state(), player::kStopped);
}

TEST_F(PlaybackStates, AmongTwoOfTheSameTheRightOneIsPlayed) {
  auto items = list({"/a", "/b", "/a", "/c"});
  playback.assign(items);
  playback.play();
  playback.started(output.now);
  end();
  items->insertItem(0, media("/new"));
  end();
  EXPECT_EQ(playback.queue().current()->name(), "a");
  EXPECT_EQ(output.appended, "/c");
}

TEST_F(PlaybackStates, AShuffledRoundSurvivesALibraryThatGrowsAndIsSorted) {
  playback.shuffle(true);
  std::vector<std::string> paths{"/k", "/m", "/p", "/s", "/v"};
  playback.assign(list(paths));
  playback.play();
  playback.started(output.now);
  std::vector<std::string> heard;
  for (int grown = 0; playback.state() == player::kPlaying; ++grown) {
    heard.push_back(playback.queue().current()->name());
    ASSERT_LE(heard.size(), 9U);
    if (grown < 4) {
      paths.push_back(std::string("/") + static_cast<char>('d' - grown));
      std::sort(paths.begin(), paths.end());
      playback.refresh(list(paths));
    }
    end();
  }
  EXPECT_THAT(heard, UnorderedElementsAre("a", "b", "c", "d", "k", "m", "p", "s", "v"));
}

TEST_F(PlaybackStates, AShuffledRoundSurvivesALibraryThatGetsToKnowTheItems) {
  const auto shelf = std::make_shared<Shelf>(std::string());
  const auto items = list({"/a", "/b", "/m/../c", "/d", "/e", "/./f", "/g", "/h"});
  playback.shuffle(true);
  playback.assign(items);
  playback.play();
  playback.started(output.now);
  std::vector<std::string> heard;
  while (playback.state() == player::kPlaying) {
    const std::string source = playback.queue().current()->sourceURL();
    heard.push_back(source.substr(source.size() - 1));
    ASSERT_LE(heard.size(), 8U);
    for (std::int32_t i = 0; heard.size() == 4 && i < items->count(); ++i) {
      const auto loose = items->item(i);
      const std::string source = loose->sourceURL();
      shelf->table.put("/" + source.substr(source.size() - 1), {});
      items->insertItem(i, std::make_shared<TrackMedia>(shelf, static_cast<TrackId>(i)));
      items->removeItem(loose);
    }
    playback.listChanged();
    end();
  }
  EXPECT_THAT(heard, UnorderedElementsAre("a", "b", "c", "d", "e", "f", "g", "h"));
}

TEST_F(PlaybackStates, AnItemThatTheLibraryGetsToKnowGoesOnToTheNext) {
  const auto shelf = std::make_shared<Shelf>(std::string());
  const auto items = list({"/m/../a", "/b"});
  playback.assign(items);
  playback.play();
  playback.started(output.now);
  shelf->table.put("/a", {});
  const auto loose = items->item(0);
  items->insertItem(0, std::make_shared<TrackMedia>(shelf, 0));
  items->removeItem(loose);
  playback.listChanged();
  EXPECT_EQ(output.appended, "/b");
}

TEST_F(PlaybackStates, AListThatWasEmptyPlaysOnceItIsFilled) {
  for (const bool told : {true, false}) {
    const auto items = list({});
    playback.assign(items);
    playback.play();
    EXPECT_EQ(playback.state(), player::kUndefined);
    items->appendItem(media("/a"));
    items->appendItem(media("/b"));
    if (told) {
      playback.listChanged();
      EXPECT_EQ(playback.state(), player::kStopped);
      EXPECT_EQ(playback.queue().current()->name(), "a");
    }
    output.loaded.clear();
    playback.play();
    EXPECT_THAT(output.loaded, ElementsAre("/a"));
    playback.started(output.now);
    EXPECT_EQ(output.appended, "/b");
  }
}

TEST_F(PlaybackStates, AGrowingListKeepsWhatPlays) {
  playing({"/b"});
  playback.refresh(list({"/a", "/b", "/c"}));
  EXPECT_EQ(playback.queue().current()->name(), "b");
  EXPECT_EQ(output.appended, "/c");
  EXPECT_TRUE(playback.available("previous"));
  EXPECT_TRUE(states.empty());
}

TEST_F(PlaybackStates, ShufflePlaysEachItemOnceARound) {
  playback.shuffle(true);
  playback.assign(list({"/a", "/b", "/c", "/d"}));
  playback.play();
  playback.started(output.now);
  std::vector<std::string> heard;
  while (playback.state() == player::kPlaying) {
    heard.push_back(playback.queue().current()->name());
    ASSERT_LE(heard.size(), 4U);
    end();
  }
  EXPECT_THAT(heard, UnorderedElementsAre("a", "b", "c", "d"));
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
