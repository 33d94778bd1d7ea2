#include "player/ByName.hpp"

#include "player/ByNameLibrary.hpp"
#include "player/ManyOut.hpp"
#include "support/ScriptHouse.hpp"

using base::Value;
using support::ScriptHouse;
using ::testing::ElementsAre;

namespace {

class PlayerByName : public ScriptHouse {
 protected:
  base::Object& wmp() { return base::Deref(base::ToObject(get("WMPObject"))); }
  base::ObjectRef part(const std::string& name) { return base::ToObject(wmp().get(name)); }
  static base::ObjectRef Item(const base::ObjectRef& list, std::int32_t index) {
    return base::ToObject(list->invoke("item", index));
  }
};

}  // namespace

TEST_F(PlayerByName, ControlsAndSettingsActOnThePlayer) {
  part("controls")->invoke("play");
  part("controls")->put("currentPosition", 30);
  part("settings")->put("volume", 80);
  part("settings")->invoke("setMode", "Loop", true);
  wmp().put("URL", "http://radio");
  EXPECT_THAT(playerCalls(), ElementsAre("player: play", "player: currentPosition 30", "player: volume 80",
                                         "player: setMode Loop on", "player: URL http://radio"));
  EXPECT_EQ(part("settings")->invoke("getMode", "Loop"), Value(true));
  EXPECT_EQ(part("controls")->invoke("isAvailable", "Stop"), Value(true));
  EXPECT_EQ(wmp().get("playState"), Value(std::int32_t{player::kStopped}));
}

TEST_F(PlayerByName, TheLibraryIsReadUnderTheModelsNames) {
  library.attributes["album"] = {"Blue"};
  const auto names =
      base::ToObject(part("mediaCollection")->invoke("getAttributeStringCollection", "Album", "audio"));
  EXPECT_EQ(names->get("count"), Value(std::int32_t{1}));
  EXPECT_EQ(names->invoke("item", 0), Value("Blue"));
  const auto group = base::ToObject(part("mediaCollection")->invoke("getByAttribute", "Album", "Blue"));
  EXPECT_EQ(group->get("count"), Value(std::int32_t{2}));
  EXPECT_EQ(Item(group, 1)->get("name"), Value("Track Two"));
  EXPECT_EQ(Item(group, 0)->invoke("getItemInfo", "Artist"), Value("Joni Mitchell"));
  EXPECT_EQ(Item(group, 0)->get("duration"), Value(205.5));
}

TEST_F(PlayerByName, WhatWasAnsweredCanBeHandedBack) {
  const auto mine = base::ToObject(part("playlistCollection")->invoke("newPlaylist", "Mine"));
  const auto all = base::ToObject(part("mediaCollection")->invoke("getAll"));
  mine->invoke("appendItem", Item(all, 1));
  mine->invoke("insertItem", 0, Item(all, 0));
  ASSERT_EQ(library.playlists.size(), 1U);
  EXPECT_THAT(library.playlists[0]->members, ElementsAre(player::MediaRef(one), player::MediaRef(two)));
  mine->invoke("removeItem", Item(all, 0));
  EXPECT_THAT(library.playlists[0]->members, ElementsAre(player::MediaRef(two)));
  wmp().put("currentMedia", Item(all, 0));
  wmp().put("currentPlaylist", mine);
  EXPECT_EQ(wmp9->media, one);
  EXPECT_EQ(wmp9->playlist, library.playlists[0]);
  part("playlistCollection")->invoke("remove", mine);
  EXPECT_TRUE(library.playlists.empty());
}

TEST_F(PlayerByName, APlaylistIsRenamedByItsField) {
  library.addPlaylist("Old");
  const auto lists = base::ToObject(part("playlistCollection")->invoke("getByName", "Old"));
  Item(lists, 0)->put("name", "New");
  EXPECT_EQ(library.playlists[0]->title, "New");
}

TEST_F(PlayerByName, ManyItemsAreReadAtOnce) {
  const auto all = base::ToObject(part("mediaCollection")->invoke("getAll"));
  const auto read = [&](std::int32_t from, std::int32_t count) {
    return all->invoke("readItems", base::Array{"name", "Artist", "sourceurl", "nothing"}, from, count);
  };
  const Value second(base::Array{"Track Two", Item(all, 1)->invoke("getItemInfo", "Artist"),
                                 Item(all, 1)->get("sourceURL"), ""});
  EXPECT_EQ(read(1, 1), second);
  EXPECT_EQ(read(1, 100), second) << "as many as there are";
  EXPECT_EQ(read(0, 2).array().size(), 8U);
  EXPECT_EQ(read(0, 2).array()[0], Value("Track One"));
  EXPECT_EQ(read(2, 5), Value(base::Array()));
  EXPECT_EQ(read(2000, 5), Value(base::Array()));
  EXPECT_THROW(read(-1, 1), base::Failure);
}

TEST_F(PlayerByName, LongTextsAreReadInPieces) {
  one->title = std::string(std::size_t{5} << 20U, 'x');
  const auto all = base::ToObject(part("mediaCollection")->invoke("getAll"));
  EXPECT_EQ(all->invoke("readItems", base::Array{"name"}, 0, 2).array().size(), 1U);
  EXPECT_EQ(all->invoke("readItems", base::Array{"name"}, 1, 1), Value(base::Array{"Track Two"}));
}

namespace {

class StoredList : public support::FakePlaylist, public player::ManyOut {
 public:
  using FakePlaylist::FakePlaylist;
  void insertItems(std::int32_t index, const std::vector<player::ToldMedia>& items) override {
    at = index;
    told = items;
  }
  void removeItems(const std::vector<std::int32_t>& places) override { removed = places; }
  [[nodiscard]] std::int64_t revision() const override { return (std::int64_t{1} << 52) + 1; }
  std::int32_t at = -1;
  std::vector<player::ToldMedia> told;
  std::vector<std::int32_t> removed;
};

}  // namespace

TEST_F(PlayerByName, ManyItemsArePutInAtOnceAsTheyAreRead) {
  support::Journal journal;
  const auto list = std::make_shared<StoredList>(journal, "L");
  const base::ObjectRef shown = player::ShowByName(player::PlaylistRef(list));
  const base::Array fields{"Artist", "sourceURL", "Genre", "Duration", "name"};
  shown->invoke("insertItems", 3, fields, base::Array{"A", "/1", "Jazz", "12.5", "T", "", "/2", "", "", ""});
  EXPECT_EQ(list->at, 3);
  ASSERT_EQ(list->told.size(), 2U);
  EXPECT_EQ(list->told[0].url, "/1");
  EXPECT_EQ(list->told[0].title, "T");
  EXPECT_EQ(list->told[0].artist, "A");
  EXPECT_EQ(list->told[0].seconds, 12.5);
  EXPECT_EQ(list->told[1].url, "/2");
  EXPECT_EQ(list->told[1].seconds, 0);
  EXPECT_THROW(shown->invoke("insertItems", 0, fields, base::Array{"A", "/1"}), base::Failure);
  EXPECT_THROW(shown->invoke("insertItems", 0, base::Array(), base::Array()), base::Failure);
  shown->invoke("removeItems", base::Array{std::int32_t{1}, std::int32_t{4}});
  EXPECT_EQ(list->removed, (std::vector<std::int32_t>{1, 4}));
  EXPECT_EQ(shown->get("revision"), Value(4503599627370497.0));  // to the last digit
}

TEST_F(PlayerByName, OnlyAStoredListTakesManyItemsAtOnce) {
  const auto all = base::ToObject(part("mediaCollection")->invoke("getAll"));
  EXPECT_THROW(all->invoke("insertItems", 0, base::Array{"sourceURL"}, base::Array{"/1"}), base::Failure);
  EXPECT_EQ(all->get("revision"), Value(0.0));
}

TEST_F(PlayerByName, NothingStaysNothing) {
  EXPECT_EQ(wmp().get("currentMedia"), Value(base::ObjectRef()));
  wmp9->media = one;
  wmp().put("currentMedia", base::ObjectRef());
  EXPECT_FALSE(wmp9->media);
}

TEST_F(PlayerByName, AnObjectOfAnotherKindIsTurnedAway) {
  const auto mine = base::ToObject(part("playlistCollection")->invoke("newPlaylist", "Mine"));
  EXPECT_THROW(mine->invoke("appendItem", mine), base::Failure);
  EXPECT_THROW(player::MediaBehind(Value("text")), base::Failure);
}

TEST_F(PlayerByName, ErrorsAndDrivesAreListed) {
  wmp9->errors = {{7, "seven"}};
  const auto errors = part("Error");
  EXPECT_EQ(errors->get("errorCount"), Value(std::int32_t{1}));
  EXPECT_EQ(Item(errors, 0)->get("errorDescription"), Value("seven"));
  errors->invoke("clearErrorQueue");
  const auto drives = part("cdromCollection");
  EXPECT_EQ(drives->get("count"), Value(std::int32_t{1}));
  EXPECT_EQ(Item(drives, 0)->get("driveSpecifier"), Value("D:"));
  Item(drives, 0)->invoke("eject");
  EXPECT_THAT(playerCalls(), ElementsAre("player: clearErrorQueue", "player: eject 0"));
}

TEST_F(PlayerByName, ThePlayersFailureReachesTheScript) {
  try {
    Item(part("Error"), 3);
    FAIL();
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kIndex);
  }
}
