#include <gmock/gmock.h>

#include "engine/common/Fixtures.hpp"
#include "engine/playlists/PlaylistFolder.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;

class PlaylistEvents : public PlayerTest {
 protected:
  player::PlaylistCollection& playlists() { return player->playlistCollection(); }
};

TEST_F(PlaylistEvents, WhatACallChangesIsToldBeforeTheCallEnds) {
  start();
  const auto list = playlists().newPlaylist("Evening");
  EXPECT_EQ(told.playlistChanges, 1);
  list->name("Night");
  EXPECT_EQ(told.playlistChanges, 2);
  playlists().remove(list);
  EXPECT_EQ(told.playlistChanges, 3);
  minutesPass();
  EXPECT_EQ(told.playlistChanges, 3) << "told twice";
}

TEST_F(PlaylistEvents, ARefusedCallTellsNothing) {
  start();
  const auto list = playlists().newPlaylist("Evening");
  playlists().newPlaylist("Night");
  EXPECT_NE(FailureOf([&] { list->name("Night"); }), 0);
  EXPECT_NE(FailureOf([&] { playlists().newPlaylist("Evening"); }), 0);
  EXPECT_NE(FailureOf([&] { playlists().remove(nullptr); }), 0);
  EXPECT_EQ(told.playlistChanges, 2);
}

TEST_F(PlaylistEvents, WhatOthersChangeIsToldOnALaterTurn) {
  start();
  playlists().newPlaylist("Evening");
  writeText(folder / "playlists/Foreign.m3u8", "#EXTM3U\n#PLAYLIST:Foreign\n");
  EXPECT_EQ(playlists().getAll()->count(), 2);
  EXPECT_EQ(told.playlistChanges, 1);
  EXPECT_TRUE(until([&] { return told.playlistChanges == 2; }));
}

/// A folder whose playlists are called back by whoever is told of a change.
class PlaylistCallbacks : public ::testing::Test {
 protected:
  std::vector<std::string> names() {
    std::vector<std::string> all;
    const auto array = lists.getAll();
    for (std::int32_t i = 0; i < array->count(); ++i) all.push_back(array->item(i)->name());
    return all;
  }
  /// Does something at the first change only.
  void atFirst(std::function<void()> what) {
    onChange = [this, what = std::move(what)] {
      const auto now = what;
      onChange = [] {};
      now();
    };
  }

  TempFolder folder;
  PlaylistFolder beside{folder / "beside"};  ///< its library
  std::function<void()> onChange = [] {};
  StoredPlaylists lists{beside.loop,
                        folder / "playlists",
                        beside.library,
                        {[] {}, [] {}, [](const std::string&) {}, [this] { onChange(); }}};
};

TEST_F(PlaylistCallbacks, FindWhatTheCallHasDone) {
  std::vector<std::vector<std::string>> seen;
  onChange = [&] { seen.push_back(names()); };
  const auto list = lists.newPlaylist("Evening");
  list->name("Night");
  lists.remove(list);
  EXPECT_THAT(seen, ElementsAre(ElementsAre("Evening"), ElementsAre("Night"), ElementsAre()));
}

TEST_F(PlaylistCallbacks, MayTakeAwayWhatIsMade) {
  atFirst([this] { lists.remove(lists.getByName("Evening")->item(0)); });
  const auto list = lists.newPlaylist("Evening");
  EXPECT_EQ(list->name(), "Evening");
  EXPECT_THAT(names(), ElementsAre());
}

TEST_F(PlaylistCallbacks, MayRenameOrTakeAwayWhatIsRenamed) {
  auto list = lists.newPlaylist("Evening");
  atFirst([&] { list->name("Late"); });
  list->name("Night");
  EXPECT_THAT(names(), ElementsAre("Late"));
  player::Playlist& renamed = *list;
  atFirst([&] {
    lists.remove(list);
    lists.newPlaylist("Night");
  });
  renamed.name("Night");
  EXPECT_THAT(names(), ElementsAre("Night"));
  EXPECT_EQ(lists.getByName("Late")->count(), 0);
}

TEST_F(PlaylistCallbacks, MayMakeAnewWhatIsTakenAway) {
  const auto list = lists.newPlaylist("Evening");
  atFirst([this] { lists.newPlaylist("Evening"); });
  lists.remove(list);
  EXPECT_THAT(names(), ElementsAre("Evening"));
  EXPECT_NE(lists.getByName("Evening")->item(0), list);
}

}  // namespace
}  // namespace engine::testing
