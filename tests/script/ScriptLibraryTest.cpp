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

TEST_F(ScriptLibrary, ARefreshThatFailsIsARefreshAllTheSame) {
  struct Failing : plugin::MediaEvents {
    void UpdateMediaEvents(const std::string& /*category*/) override {
      throw base::Failure(base::number::kDeviceIo);
    }
  } failing;
  script::ScriptClass other{{plugin.state, plugin.host, plugin.form, plugin.calls, plugin.playState,
                             plugin.catalogue, plugin.ownLibrary, failing}};
  EXPECT_EQ(other.invoke("RefreshLists", "Artist"), Value(true));
}

TEST_F(ScriptLibrary, AListThatCantBeReadIsAnEmptyCollection) {
  EXPECT_EQ(call("GetCategoryList", "PlayList"), Value(base::Array())) << "there is none";
  library.addPlaylist("Road Trip");
  library.failing = {"getAttributeStringCollection", "getAllPlaylists"};
  EXPECT_EQ(call("GetCategoryList", "Album"), Value(base::Array()));
  EXPECT_EQ(call("GetCategoryList", "PlayList"), Value(base::Array()));
}

TEST_F(ScriptLibrary, AnItemThatCantBeReadIsLeftOut) {
  struct Unreadable : support::FakeMedia {
    using FakeMedia::FakeMedia;
    [[nodiscard]] std::string name() const override { throw base::Failure(base::number::kDeviceIo); }
    [[nodiscard]] std::string getItemInfo(const std::string& /*attribute*/) const override {
      throw base::Failure(base::number::kDeviceIo);
    }
  };
  const auto broken = std::make_shared<Unreadable>("x", "x", "x", "x");
  library.addPlaylist("Gaps", {one, nullptr, broken, two});
  EXPECT_THAT(Texts(call("GetByCategory", "PlayList", "Gaps")), ElementsAre("Track One", "Track Two"));
  EXPECT_THAT(Texts(call("GetAlbumsByCategory", "PlayList", "Gaps")), ElementsAre("Blue"));
}

TEST_F(ScriptLibrary, WhatCantBeReadOfAnItemIsAnEmptyText) {
  struct HalfReadable : support::FakeMedia {
    using FakeMedia::FakeMedia;
    [[nodiscard]] std::string getItemInfo(const std::string& attribute) const override {
      if (attribute == "Album") throw base::Failure(base::number::kDeviceIo);
      return FakeMedia::getItemInfo(attribute);
    }
    [[nodiscard]] double duration() const override { throw base::Failure(base::number::kDeviceIo); }
  };
  library.addPlaylist("Half", {std::make_shared<HalfReadable>("Carey", "Joni Mitchell", "Blue", "Folk")});
  EXPECT_THAT(call("GetMediaInfo", "PlayList", "Half", "Carey").record(),
              ElementsAre(Pair("Artist", Value("Joni Mitchell")), Pair("Album", Value("")),
                          Pair("Genre", Value("Folk")), Pair("Duration", Value(""))));
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
