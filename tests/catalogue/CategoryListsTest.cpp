#include "support/LibraryHouse.hpp"

using support::LibraryHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class CategoryLists : public LibraryHouse {
 protected:
  void SetUp() override {
    LibraryHouse::SetUp();
    library.attributes["album"] = {"Blue", "Abbey Road"};
    library.attributes["artist"] = {"Joni Mitchell"};
  }
  base::TextListRef list(const std::string& category, std::int32_t expected = 0) {
    base::TextListRef names;
    EXPECT_EQ(catalogue.GetGroupList(category, names, ""), expected) << category;
    return names;
  }
  /// While the host takes a line of the log for the first time, it lets `event` in.
  void during(const std::string& line, std::function<void()> event) {
    host->answers["WriteLog"] = [line = "Media Player: " + line, event = std::move(event),
                                 over = false](base::Args& args) mutable {
      if (over || base::ToText(args[1]) != line) return base::Value();
      over = true;
      event();
      return base::Value();
    };
  }
  [[nodiscard]] std::size_t reads() const {
    return journal.with("library: getAttributeStringCollection").size();
  }
  [[nodiscard]] std::size_t playlistReads() const { return journal.count("library: getAllPlaylists"); }
};

}  // namespace

TEST_F(CategoryLists, NamesComeInThePlayersOrderFromAudioOnly) {
  EXPECT_THAT(*list("Album"), ElementsAre("Blue", "Abbey Road"));
  EXPECT_THAT(journal.with("library: "), ElementsAre("library: getAttributeStringCollection Album audio"));
}

TEST_F(CategoryLists, EverySpellingSharesOneCacheEntry) {
  const auto first = list("album");
  EXPECT_EQ(list("ALBUM"), first);
  EXPECT_EQ(list("Album"), first);
  EXPECT_EQ(reads(), 1U);
}

TEST_F(CategoryLists, ASecondCallHandsOutTheSameCollectionFromCache) {
  plugin.state.DebugMessages = true;
  const auto first = list("Album");
  EXPECT_TRUE(debugged("Loading Album collection"));
  EXPECT_FALSE(debugged("Loading Album collection from cache"));
  EXPECT_TRUE(debugged("Finished loading Album collection"));
  journal.clear();
  EXPECT_EQ(list("Album"), first);
  EXPECT_TRUE(debugged("Loading Album collection"));
  EXPECT_TRUE(debugged("Loading Album collection from cache"));
  EXPECT_TRUE(debugged("Finished loading Album collection"));
  EXPECT_EQ(reads(), 0U);
}

TEST_F(CategoryLists, TheLibrarysChangeMakesEveryCategoryStale) {
  const auto albums = list("Album");
  const auto artists = list("Artist");
  library.attributes["album"].push_back("Hejira");
  wmp9->events().MediaCollectionChange();
  EXPECT_THAT(*list("Album"), ElementsAre("Blue", "Abbey Road", "Hejira"));
  EXPECT_THAT(*albums, ElementsAre("Blue", "Abbey Road"));
  EXPECT_NE(list("Artist"), artists);
}

TEST_F(CategoryLists, AnEmptyCategoryIsReadOnEveryRequest) {
  EXPECT_THAT(*list("Genre"), IsEmpty());
  EXPECT_THAT(*list("Genre"), IsEmpty());
  EXPECT_EQ(reads(), 2U);
}

TEST_F(CategoryLists, EmptyNamesAreDroppedButCountInTheProgress) {
  library.attributes["genre"] = {"", "Folk", "", "Jazz"};
  EXPECT_THAT(*list("Genre"), ElementsAre("Folk", "Jazz"));
  EXPECT_THAT(progress.fractions, ElementsAre(0.25F, 0.5F, 0.75F, 1.0F));
}

TEST_F(CategoryLists, AFailureKeepsTheCacheAndTheMark) {
  plugin.state.DebugMessages = true;
  const auto before = list("Album");
  wmp9->events().MediaCollectionChange();
  journal.clear();
  library.failing = {"getAttributeStringCollection"};
  EXPECT_THAT(*list("Album", base::number::kDeviceIo), IsEmpty());
  EXPECT_FALSE(debugged("Finished loading Album collection"));
  library.failing.clear();
  EXPECT_TRUE(plugin.stale.CategoryStale.at("Album"));
  plugin.stale.CategoryStale["Album"] = false;
  EXPECT_EQ(list("Album"), before);
}

TEST_F(CategoryLists, AnyOtherWordIsAnAttributeThatIsReadOnce) {
  library.attributes["wm/year"] = {"1971"};
  const auto years = list("WM/Year");
  wmp9->events().MediaCollectionChange();
  EXPECT_EQ(list("wm/YEAR"), years);
  EXPECT_EQ(reads(), 1U);
}

TEST_F(CategoryLists, NamesAreEnteredInTheCrossReference) {
  library.attributes["artist"] = {"AC/DC"};
  list("Artist");
  EXPECT_EQ(lookup("Artist", "AC DC"), "AC/DC");
}

TEST_F(CategoryLists, AReadYieldsAtItsFirstItemAndEveryFiftieth) {
  library.attributes["genre"].assign(101, "Folk");
  list("Genre");
  EXPECT_EQ(journal.count("WaitEvents()"), 3U);
  journal.clear();
  list("Genre");
  EXPECT_EQ(journal.count("WaitEvents()"), 0U);
}

TEST_F(CategoryLists, AMarkSetDuringAReadIsOverwrittenByIt) {
  host->answers["WaitEvents"] = [this](base::Args&) {
    wmp9->events().MediaCollectionChange();
    return base::Value();
  };
  const auto first = list("Album");
  EXPECT_EQ(list("Album"), first);
  EXPECT_TRUE(plugin.stale.CategoryStale.at("Artist"));
}

TEST_F(CategoryLists, AReadThatTheLogLetsInDoesNotTakeTheListAway) {
  plugin.state.DebugMessages = true;
  const auto first = list("Album");
  base::TextListRef inner;
  during("Loading Album collection from cache", [&] {
    library.attributes["album"] = {"Hejira"};
    wmp9->events().MediaCollectionChange();
    inner = list("Album");
  });
  const auto outer = list("Album");
  ASSERT_TRUE(inner);
  EXPECT_THAT(*inner, ElementsAre("Hejira"));
  EXPECT_EQ(outer, first) << "the one that was there when the request came";
  EXPECT_THAT(*outer, ElementsAre("Blue", "Abbey Road"));
  EXPECT_EQ(list("Album"), inner);
}

TEST_F(CategoryLists, AReadWithinAReadOfPlaylistsListsEachOnce) {
  for (int i = 0; i < 60; ++i) library.addPlaylist("List " + std::to_string(i));
  base::TextListRef inner;
  int turns = 0;
  host->answers["WaitEvents"] = [&](base::Args&) {
    if (++turns == 2) inner = list("PlayList");
    return base::Value();
  };
  EXPECT_EQ(list("PlayList")->size(), 60U);
  ASSERT_TRUE(inner);
  EXPECT_EQ(inner->size(), 60U);
  EXPECT_EQ(list("PlayList")->size(), 60U);
}

TEST_F(CategoryLists, ThreeCategoriesShareNothingOnceTheyAreRead) {
  library.attributes["genre"] = {"Folk"};
  const auto albums = list("Album");
  const auto artists = list("Artist");
  const auto genres = list("Genre");
  EXPECT_THAT(*albums, ElementsAre("Blue", "Abbey Road"));
  EXPECT_THAT(*artists, ElementsAre("Joni Mitchell"));
  EXPECT_THAT(*genres, ElementsAre("Folk"));
}

TEST_F(CategoryLists, ANameThatCantBeReadCostsOnlyItself) {
  library.attributes["genre"] = {"Folk", "Rock", "Jazz"};
  library.unreadable = {"Rock"};
  EXPECT_THAT(*list("Genre"), ElementsAre("Folk", "Jazz"));
}

TEST_F(CategoryLists, TheProgressWindowIsShownForEveryRequest) {
  list("Album");
  list("Album");
  list("PlayList", -1);
  EXPECT_THAT(progress.calls, ElementsAre("show GetGroupList", "hide GetGroupList", "show GetGroupList",
                                          "hide GetGroupList", "show GetGroupList", "hide GetGroupList"));
}

TEST_F(CategoryLists, NoPlaylistsAtAllIsNotFound) {
  const auto names = list("PlayList", -1);
  ASSERT_TRUE(names);
  EXPECT_THAT(*names, IsEmpty());
}

TEST_F(CategoryLists, PlaylistsAreListedAndKept) {
  plugin.state.DebugMessages = true;
  library.addPlaylist("Road/Trip");
  library.addPlaylist("Vantorix");
  const auto names = list("playlist");
  EXPECT_THAT(*names, ElementsAre("Road/Trip", "Vantorix"));
  EXPECT_EQ(lookup("PlayList", "Road Trip"), "Road/Trip");
  for (const char* line :
       {"Loading playlist collection", "Getting all playlists", "Finished getting all playlists",
        "Returned from getting playlists", "Finished loading playlist collection"})
    EXPECT_TRUE(debugged(line)) << line;
  journal.clear();
  EXPECT_EQ(list("PLAYLIST"), names);
  EXPECT_TRUE(debugged("Loading playlists from cache"));
  EXPECT_TRUE(debugged("Finished loading playlist collection"));
  EXPECT_EQ(playlistReads(), 0U);
}

TEST_F(CategoryLists, ThePlaylistsChangeMakesThemStale) {
  library.addPlaylist("One");
  list("PlayList");
  library.addPlaylist("Two");
  wmp9->events().PlaylistCollectionChange();
  EXPECT_THAT(*list("PlayList"), ElementsAre("One", "Two"));
  EXPECT_FALSE(plugin.stale.PlayListsStale);
}

TEST_F(CategoryLists, TwoBlanksInAPlaylistsNameAreListedAsOne) {
  library.addPlaylist("Road  Trip");
  EXPECT_THAT(*list("PlayList"), ElementsAre("Road Trip"));
  EXPECT_EQ(lookup("PlayList", "Road Trip"), "Road  Trip");
}

TEST_F(CategoryLists, APlaylistWithoutANameIsNotListed) {
  library.addPlaylist("One");
  library.addPlaylist("");
  library.addPlaylist("Three");
  EXPECT_THAT(*list("PlayList"), ElementsAre("One", "Three"));
  EXPECT_EQ(progress.fractions.size(), 3U);
  EXPECT_FALSE(plugin.stale.PlayListsStale);
}

TEST_F(CategoryLists, APlaylistThatTheFilterLeavesNothingOfIsNotListed) {
  library.addPlaylist("&");
  library.addPlaylist("");
  library.addPlaylist("R&B");
  base::TextListRef names;
  EXPECT_EQ(catalogue.GetGroupList("PlayList", names, "HTML"), 0);
  EXPECT_THAT(*names, ElementsAre(" ", "R B"));
}

TEST_F(CategoryLists, TheFilterReachesPlaylistsOnly) {
  library.addPlaylist("Rock & Roll");
  library.attributes["genre"] = {"R&B"};
  base::TextListRef names;
  catalogue.GetGroupList("PlayList", names, "HTML");
  EXPECT_THAT(*names, ElementsAre("Rock Roll"));
  catalogue.GetGroupList("Genre", names, "HTML");
  EXPECT_THAT(*names, ElementsAre("R&B"));
}

TEST_F(CategoryLists, APlaylistThatCantBeReadIsLeftOutWithoutAWord) {
  library.addPlaylist("One");
  library.addPlaylist("Broken")->nameFails = true;
  library.addPlaylist("Three");
  EXPECT_THAT(*list("PlayList"), ElementsAre("One", "Three"));
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
}

TEST_F(CategoryLists, FailingPlaylistsKeepTheNamesAndTheMark) {
  library.addPlaylist("One");
  const auto before = list("PlayList");
  plugin.stale.PlayListsStale = true;
  library.failing = {"getAllPlaylists"};
  EXPECT_THAT(*list("PlayList", base::number::kDeviceIo), IsEmpty());
  EXPECT_TRUE(plugin.stale.PlayListsStale);
  plugin.stale.PlayListsStale = false;
  EXPECT_EQ(list("PlayList"), before);
}

TEST_F(CategoryLists, ASlowPlaylistIsToldWhenDebugged) {
  const auto slow = library.addPlaylist("Slow", {std::make_shared<support::FakeMedia>("a", "", "", "")});
  slow->onName = [this] { loop.advance(base::Milliseconds(2600)); };
  library.addPlaylist("Quick")->onName = [this] { loop.advance(base::Milliseconds(1900)); };
  list("PlayList");
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
  plugin.state.DebugMessages = true;
  plugin.stale.PlayListsStale = true;
  list("PlayList");
  EXPECT_THAT(
      journal.with("WriteLog(\"Debug\", \"Media Player: Excessive"),
      ElementsAre("WriteLog(\"Debug\", \"Media Player: Excessive time processing playlist: Slow with 1 "
                  "media items in 3 seconds\")"));
}

TEST_F(CategoryLists, AHostThatFailsDoesNotKeepTheListFromBeingBuilt) {
  host->failing = {"WaitEvents", "SaveINISetting", "WriteLog"};
  plugin.state.DebugMessages = true;
  EXPECT_THAT(*list("Album"), ElementsAre("Blue", "Abbey Road"));
}
