// What comes next, whatever becomes of the list meanwhile.

#include <gmock/gmock.h>

#include <algorithm>

#include "engine/playback/PlaybackStates.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

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
  const auto shelf = std::make_shared<Shelf>("", "");
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
  const auto shelf = std::make_shared<Shelf>("", "");
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

}  // namespace
}  // namespace engine::testing
