// The player as the pages show it: what they are told, and what they foresee themselves.
#include "standin/player/PlayerNow.hpp"

#include <gtest/gtest.h>

#include "standin/player/Title.hpp"

namespace {

using standin::PlayerNow;

PlayerNow Playing(double position, std::int64_t at) {
  PlayerNow now;
  now.known = true;
  now.state = 3;
  now.duration = 60;
  now.position = position;
  now.at = at;
  return now;
}

}  // namespace

TEST(PlayerNowTest, APageForeseesWhereAnItemHasComeTo) {
  const PlayerNow told = Playing(10, 1000);
  EXPECT_DOUBLE_EQ(told.positionAt(3500), 12.5);
  EXPECT_DOUBLE_EQ(told.positionAt(100'000), 60) << "and no further than its end";
  EXPECT_TRUE(told.foretells(Playing(12.55, 3500)));
  EXPECT_FALSE(told.foretells(Playing(12.7, 3500))) << "somebody has moved it";
  PlayerNow paused = told;
  paused.state = 2;
  EXPECT_DOUBLE_EQ(paused.positionAt(9000), 10);
  PlayerNow back = told;
  back.state = 5;
  EXPECT_DOUBLE_EQ(back.positionAt(2000), 5);
  EXPECT_DOUBLE_EQ(back.positionAt(9000), 0);
}

TEST(PlayerNowTest, WhatElseChangesIsTold) {
  const PlayerNow told = Playing(10, 1000);
  PlayerNow louder = told;
  louder.volume = 30;
  PlayerNow further = told;
  further.place = 4;
  PlayerNow other = told;
  other.queue = "another";
  PlayerNow painted = told;
  painted.cover = "0123";
  PlayerNow sought = told;
  sought.cover.reset();
  for (const PlayerNow& later : {louder, further, other, painted, sought})
    EXPECT_FALSE(told.foretells(later));
  EXPECT_TRUE(told.foretells(told));
}

TEST(PlayerNowTest, APictureHasAKeyOrThereIsNoneOrItIsLookedFor) {
  PlayerNow now = Playing(10, 1000);
  EXPECT_EQ(standin::JsonOf(now, 0).at("cover"), "");
  now.cover = "0123";
  EXPECT_EQ(standin::JsonOf(now, 0).at("cover"), "0123");
  now.cover.reset();
  EXPECT_TRUE(standin::JsonOf(now, 0).at("cover").is_null());
}

TEST(PlayerNowTest, IsReadFromWhatThePlayerAnswers) {
  const PlayerNow now = standin::PlayerNowOf(base::Record{{"playState", std::int32_t{3}},
                                                          {"position", 1.5},
                                                          {"name", "River"},
                                                          {"source", "/music/River.flac"},
                                                          {"volume", std::int32_t{40}},
                                                          {"next", true},
                                                          {"duration", base::Value()},
                                                          {"place", std::int32_t{2}},
                                                          {"count", std::int32_t{5}},
                                                          {"queueMark", 12.0}},
                                             77);
  EXPECT_EQ(now.title, "River");
  EXPECT_EQ(now.item, standin::MarkOf("River", "/music/River.flac"));
  EXPECT_EQ(now.queue, "\x1Fqueue 12");
  EXPECT_TRUE(now.canNext);
  EXPECT_FALSE(now.canPause);
  EXPECT_EQ(now.duration, 0);
  const nlohmann::json json = standin::JsonOf(now, 90);
  EXPECT_EQ(json.at("play"), "playing");
  EXPECT_EQ(json.at("at"), 77);
  EXPECT_EQ(json.at("clock"), 90);
}

TEST(PlayerNowTest, WhatOpensAndIsToBePausedIsShownAsPaused) {
  base::Record opens{{"playState", std::int32_t{9}}, {"play", false}, {"pause", true}};
  EXPECT_EQ(standin::JsonOf(standin::PlayerNowOf(opens, 0), 0).at("play"), "loading");
  opens = {{"playState", std::int32_t{9}}, {"play", true}, {"pause", false}};
  EXPECT_EQ(standin::JsonOf(standin::PlayerNowOf(opens, 0), 0).at("play"), "paused");
}

TEST(PlayerNowTest, WhatNobodyHasChosenIsNotShownAsPlaying) {
  const base::Record idle{{"playState", std::int32_t{1}},
                          {"name", "First of all"},
                          {"source", "/a"},
                          {"place", std::int32_t{-1}},
                          {"count", std::int32_t{0}}};
  EXPECT_EQ(standin::PlayerNowOf(idle, 0).title, "");
  EXPECT_EQ(standin::PlayerNowOf(idle, 0).item, "");
}

TEST(PlayerNowTest, AStationShowsWhatItPlays) {
  const base::Record station{
      {"playState", std::int32_t{3}}, {"name", "Radio One"},      {"source", "http://one"},  {"artist", ""},
      {"streamTitle", "A - Song"},    {"count", std::int32_t{1}}, {"place", std::int32_t{0}}};
  const PlayerNow now = standin::PlayerNowOf(station, 0);
  EXPECT_EQ(now.title, "A - Song");
  EXPECT_EQ(now.artist, "Radio One");
  EXPECT_EQ(now.item, standin::MarkOf("Radio One", "http://one")) << "it is the same item all the time";
}
