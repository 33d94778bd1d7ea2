#include "support/LibraryHouse.hpp"

using support::LibraryHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class AddMedia : public LibraryHouse {
 protected:
  void SetUp() override {
    LibraryHouse::SetUp();
    track = library.addTrack("Carey?", "Joni Mitchell", "Blue", "Folk");
    mine = library.addPlaylist("Vantorix");
  }
  base::Value add(const std::string& name = "Vantorix") { return catalogue.AddMediaToPlayList(name); }
  static base::Value code(std::int32_t number) { return number; }
  support::FakeMediaRef track;
  support::FakePlaylistRef mine;
};

}  // namespace

TEST_F(AddMedia, ThePlayedItemIsAddedAndSuccessIsEmpty) {
  plugin.playTarget.PlayTargetMedia = track;
  EXPECT_EQ(add(), base::Value());
  EXPECT_THAT(mine->members, ElementsAre(player::MediaRef(track)));
  EXPECT_EQ(lookup("Media Library", "Carey"), "Carey");
}

TEST_F(AddMedia, AMissingPlaylistIsMade) {
  plugin.playTarget.PlayTargetMedia = track;
  EXPECT_EQ(add("New"), base::Value());
  EXPECT_THAT(journal.with("library: append"), ElementsAre("library: append Carey? to New"));
  EXPECT_TRUE(plugin.stale.PlayListsStale);
}

TEST_F(AddMedia, APlaylistThatCantBeReadIsMadeAnew) {
  plugin.playTarget.PlayTargetMedia = track;
  library.failing = {"getPlaylistByName"};
  EXPECT_EQ(add(), base::Value());
  EXPECT_TRUE(journal.has("library: newPlaylist Vantorix"));
  EXPECT_THAT(mine->members, IsEmpty());
  EXPECT_THAT(library.playlists.back()->members, ElementsAre(player::MediaRef(track)));
}

TEST_F(AddMedia, WithoutAPlaylistNothingIsAdded) {
  plugin.playTarget.PlayTargetMedia = track;
  library.makesPlaylists = false;
  EXPECT_EQ(add("New"), code(-1));
  EXPECT_EQ(add(""), code(-1));
}

TEST_F(AddMedia, AnAddressComesFirstAndIsAddedToTheLibrary) {
  plugin.playTarget.PlayTargetMedia = track;
  plugin.playTarget.PlayTargetURL = "http://radio";
  EXPECT_EQ(add(), base::Value());
  EXPECT_THAT(journal.with("library: a"),
              ElementsAre("library: add http://radio", "library: append http://radio to Vantorix"));
  library.failing = {"add"};
  EXPECT_EQ(add(), code(-7));
}

TEST_F(AddMedia, ThePlayersRefusalEntersTheTitle) {
  plugin.playTarget.PlayTargetMedia = track;
  mine->refuses = true;
  EXPECT_EQ(add(), code(-3));
  EXPECT_EQ(lookup("Media Library", "Carey"), "Carey?");
}

TEST_F(AddMedia, NothingPlayedSoFarIsTold) { EXPECT_EQ(add(), code(-4)); }

TEST_F(AddMedia, WhatNowPlaysIsLookedForInThePlayedList) {
  plugin.playTarget.PlayTargetPlayList = library.addPlaylist("Played", {track});
  EXPECT_EQ(add(), code(-5));
  wmp9->media = std::make_shared<support::FakeMedia>("", "", "", "");
  EXPECT_EQ(add(), code(-5));
  wmp9->media = std::make_shared<support::FakeMedia>("Another", "", "", "");
  EXPECT_EQ(add(), code(-6));
  wmp9->media = track;
  EXPECT_EQ(add(), base::Value());
  EXPECT_THAT(mine->members, ElementsAre(player::MediaRef(track)));
}
