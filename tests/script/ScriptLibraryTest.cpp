#include "support/ScriptHouse.hpp"

using base::Value;
using support::ScriptHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

namespace {

class ScriptLibrary : public ScriptHouse {
 protected:
  void addAlbum(const std::string& title) {
    library.addTrack("t", "Various", "x", "Folk")->info["WM/AlbumTitle"] = title;
  }
};

}  // namespace

TEST_F(ScriptLibrary, ACategoryIsListed) {
  library.attributes["album"] = {"Blue", "Hejira"};
  EXPECT_THAT(Texts(call("GetCategoryList", "album")), ElementsAre("Blue", "Hejira"));
  library.addPlaylist("Road Trip");
  EXPECT_THAT(Texts(call("GetCategoryList", "PLAYLIST")), ElementsAre("Road Trip"));
}

TEST_F(ScriptLibrary, TheMediaLibraryIsTakenAsAnAttribute) {
  EXPECT_THAT(Texts(call("GetCategoryList", "Media Library")), IsEmpty());
  EXPECT_TRUE(journal.has("library: getAttributeStringCollection Media Library audio"));
}

TEST_F(ScriptLibrary, AnotherWordIsLoggedAndGivesAnEmptyCollection) {
  EXPECT_THAT(Texts(call("GetCategoryList", "Title")), IsEmpty());
  EXPECT_THAT(
      journal.lines(),
      ElementsAre("WriteLog(\"Error\", \"Media Player : GetCategoryList argument must be: Media Library, "
                  "Artist, Album, Genre, PlayList\")"));
}

TEST_F(ScriptLibrary, ByCategoryGivesEveryTitleByDefault) {
  EXPECT_THAT(Texts(call("GetByCategory")), ElementsAre("Track One", "Track Two"));
  EXPECT_THAT(Texts(call("GetByCategory", "Genre", "Folk")), ElementsAre("Track One", "Track Two"));
  EXPECT_THAT(Texts(call("GetByCategory", "PlayList", "Nope")), IsEmpty());
}

TEST_F(ScriptLibrary, ByCategoryYieldsEveryFiftyTitles) {
  for (int i = 0; i < 99; ++i) library.addTrack("t", "a", "b", "c");
  journal.clear();
  EXPECT_EQ(Texts(call("GetByCategory")).size(), 101U);
  EXPECT_EQ(journal.count("WaitEvents()"), 3U);
}

TEST_F(ScriptLibrary, MediaInfoHasItsKeysInOrder) {
  EXPECT_THAT(call("GetMediaInfo", "Album", "Blue", "track one").record(),
              ElementsAre(Pair("Artist", Value("Joni Mitchell")), Pair("Album", Value("Blue")),
                          Pair("Genre", Value("Folk")), Pair("Duration", Value(205.5))));
}

TEST_F(ScriptLibrary, AnUnknownTitleHasFourEmptyTexts) {
  EXPECT_THAT(call("GetMediaInfo", "Album", "Blue", "Nope").record(),
              ElementsAre(Pair("Artist", Value("")), Pair("Album", Value("")), Pair("Genre", Value("")),
                          Pair("Duration", Value(""))));
}

TEST_F(ScriptLibrary, ListsAreRefreshedUnderTheSystemsOwnSpelling) {
  EXPECT_EQ(call("RefreshLists", "playlist"), Value(true));
  EXPECT_EQ(call("RefreshLists", "ALBUM"), Value(true));
  EXPECT_THAT(journal.lines(), ElementsAre("UpdateMediaEvents(PlayList)", "UpdateMediaEvents(Album)"));
  journal.clear();
  EXPECT_EQ(call("RefreshLists", "Title"), Value(false));
  EXPECT_EQ(call("RefreshLists", "media library"), Value(false));
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(ScriptLibrary, EachAlbumOccursOnceInTheOrderOfItsFirstAppearance) {
  for (const char* album : {"B", "B", "", "A", "B", "a", "C"}) addAlbum(album);
  EXPECT_THAT(Texts(call("GetAlbumsByCategory", "artist", "Various")), ElementsAre("B", "A", "C"));
}

TEST_F(ScriptLibrary, AlbumsOfAGenreAreNone) {
  EXPECT_THAT(Texts(call("GetAlbumsByCategory", "Genre", "Folk")), IsEmpty());
  EXPECT_THAT(Texts(call("GetAlbumsByCategory", "Album", "Nope")), IsEmpty());
  EXPECT_THAT(journal.with("library: getByAttribute Genre"), IsEmpty());
}

TEST_F(ScriptLibrary, WhatPlaysIsAddedToTheHousesPlaylist) {
  EXPECT_EQ(call("AddToPlayList"), Value());
  EXPECT_THAT(journal.with("library: "), IsEmpty());
  playing();
  EXPECT_EQ(call("AddToPlayList"), Value());
  EXPECT_TRUE(journal.has("library: append Track One to Vantorix"));
  EXPECT_EQ(call("AddToPlayList", "x", "y", "z", "Mine"), Value());
  EXPECT_TRUE(journal.has("library: append Track One to Mine"));
  plugin.playTarget.PlayTargetMedia.reset();
  EXPECT_EQ(call("AddToPlayList"), Value(std::int32_t{-4}));
}
