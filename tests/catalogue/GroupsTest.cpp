#include "support/LibraryHouse.hpp"

using support::LibraryHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Groups : public LibraryHouse {
 protected:
  void SetUp() override {
    LibraryHouse::SetUp();
    all = library.addTrack("All I Want", "Joni Mitchell", "Blue", "Folk");
    carey = library.addTrack("Carey?", "Joni Mitchell", "Blue", "Folk");
    heroes = library.addTrack("\"Heroes\"", "David Bowie", "\"Heroes\"", "Rock");
  }
  std::int32_t group(const std::string& category, const std::string& name) {
    return catalogue.GetGroupItems(category, name, list);
  }
  std::int32_t media(std::string title) {
    const std::int32_t status = catalogue.GetMediaItem(title, list, item);
    titleAfterwards = title;
    return status;
  }
  support::FakeMediaRef all, carey, heroes;
  player::PlaylistRef list;
  player::MediaRef item;
  std::string titleAfterwards;
};

}  // namespace

TEST_F(Groups, AnEmptyAlbumNameIsNotFoundWithoutAskingThePlayer) {
  EXPECT_EQ(group("Album", ""), -1);
  EXPECT_FALSE(list);
  EXPECT_THAT(journal.with("library: "), IsEmpty());
}

TEST_F(Groups, TheMediaLibraryIsEverythingWhateverTheName) {
  EXPECT_EQ(group("media library", "ignored"), 0);
  EXPECT_EQ(list->count(), 3);
}

TEST_F(Groups, AGroupIsAskedForByItsLibraryName) {
  std::string key;
  xref.AddNameXref("Album", "\"Heroes\"", key);
  EXPECT_EQ(group("Album", "Heroes"), 0);
  EXPECT_TRUE(journal.has("library: getByAttribute Album=\"\"Heroes\"\""));
}

TEST_F(Groups, TheTitlesOfAGroupLeadBackFromTheirKeys) {
  EXPECT_EQ(group("album", "Blue"), 0);
  EXPECT_EQ(lookup("Media Library", "Carey"), "Carey?");
  EXPECT_THAT(progress.fractions, ElementsAre(0.5F, 1.0F));
  EXPECT_THAT(progress.calls, ElementsAre("show GetGroupItems", "hide GetGroupItems"));
  EXPECT_EQ(journal.count("WaitEvents()"), 0U);
}

TEST_F(Groups, AnUnknownAttributeValueIsAnEmptyGroup) {
  EXPECT_EQ(group("Artist", "Nobody"), 0);
  EXPECT_EQ(list->count(), 0);
}

TEST_F(Groups, APlaylistIsFoundByNameAndTheFirstOfTwoCounts) {
  const auto first = library.addPlaylist("Road Trip", {all});
  library.addPlaylist("Road Trip");
  EXPECT_EQ(group("playlist", "Road Trip"), 0);
  EXPECT_EQ(list, first);
  EXPECT_EQ(group("PlayList", "Nothing"), -1);
  EXPECT_FALSE(list);
  EXPECT_EQ(group("PlayList", ""), -1);
}

TEST_F(Groups, ThePlayersFailureIsTheStatus) {
  library.failing = {"getByAttribute", "getPlaylistByName", "getAllMedia"};
  EXPECT_EQ(group("Genre", "Folk"), base::number::kDeviceIo);
  EXPECT_EQ(group("PlayList", "x"), base::number::kDeviceIo);
  EXPECT_EQ(catalogue.GetPlayListByName("x", list), base::number::kDeviceIo);
  EXPECT_EQ(catalogue.GetAllMedia(list), base::number::kDeviceIo);
}

TEST_F(Groups, AFailingWholeLibraryIsNotFound) {
  library.failing = {"getAllMedia"};
  EXPECT_EQ(group("Media Library", ""), -1);
}

TEST_F(Groups, AMemberThatCantBeReadCostsOnlyItself) {
  library.addPlaylist("Gaps", {all, nullptr, carey});
  EXPECT_EQ(group("PlayList", "Gaps"), 0);
  EXPECT_EQ(lookup("Media Library", "Carey"), "Carey?");
}

TEST_F(Groups, TheWalkEndsWhereItsCounterOverflowsAndTheGroupIsHandedOutInFull) {
  host->silent.insert("SaveINISetting");
  std::vector<player::MediaRef> members(32768, all);
  members.push_back(carey);
  library.addPlaylist("Long", std::move(members));
  EXPECT_EQ(group("PlayList", "Long"), 0);
  EXPECT_EQ(list->count(), 32769);
  EXPECT_EQ(progress.fractions.size(), 32768U);
  EXPECT_EQ(lookup("Media Library", "Carey"), "Carey");
}

TEST_F(Groups, ATitleIsFoundInAListWithoutRegardToCase) {
  list = library.addPlaylist("Mine", {carey, all, all});
  EXPECT_EQ(media("ALL i want"), 0);
  EXPECT_EQ(item, all);
  EXPECT_THAT(journal.with("library: getByName"), IsEmpty());
  EXPECT_EQ(media("All I Wanted"), -1);
  EXPECT_FALSE(item);
}

TEST_F(Groups, ATitleGivenByItsKeyIsReplacedByTheLibrarysName) {
  EXPECT_EQ(group("Album", "Blue"), 0);
  EXPECT_EQ(media("Carey"), 0);
  EXPECT_EQ(item, carey);
  EXPECT_EQ(titleAfterwards, "Carey?");
}

TEST_F(Groups, ADoubleQuoteInATitleIsLookedForDoubled) {
  group("Artist", "David Bowie");
  list.reset();
  EXPECT_EQ(media("Heroes"), -1);
  EXPECT_TRUE(journal.has("library: getByName \"\"Heroes\"\""));
  EXPECT_EQ(titleAfterwards, "\"\"Heroes\"\"");
}

TEST_F(Groups, AnEmptyListIsGivenTheSearchResult) {
  EXPECT_EQ(media("All I Want"), 0);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->count(), 1);
  EXPECT_EQ(item, all);
  journal.clear();
  EXPECT_EQ(media("All I Want"), 0);
  EXPECT_THAT(journal.with("library: getByName"), IsEmpty());
}

TEST_F(Groups, AnItemsTitleIsEnteredAndAFailureIsTheStatus) {
  EXPECT_EQ(media("Carey?"), 0);
  EXPECT_EQ(lookup("Media Library", "Carey"), "Carey?");
  list.reset();
  library.failing = {"getByName"};
  EXPECT_EQ(media("x"), base::number::kDeviceIo);
  library.failing.clear();
  list = library.addPlaylist("Gaps", {nullptr, all});
  EXPECT_EQ(media("All I Want"), base::number::kObjectMissing);
  EXPECT_EQ(item, all) << "found all the same, behind the member that can't be read";
  EXPECT_THAT(progress.calls, ElementsAre("show GetMediaItem", "hide GetMediaItem", "show GetMediaItem",
                                          "hide GetMediaItem", "show GetMediaItem", "hide GetMediaItem"));
}

TEST_F(Groups, ANewPlaylistIsEnteredAndMakesTheListStale) {
  EXPECT_EQ(catalogue.CreatePlayList("Road/Trip", list), 0);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->name(), "Road/Trip");
  EXPECT_TRUE(plugin.stale.PlayListsStale);
  EXPECT_EQ(lookup("PlayList", "Road Trip"), "Road/Trip");
}

TEST_F(Groups, APlaylistThatCouldNotBeMadeIsTold) {
  EXPECT_EQ(catalogue.CreatePlayList("", list), -1);
  library.makesPlaylists = false;
  EXPECT_EQ(catalogue.CreatePlayList("x", list), -2);
  library.failing = {"newPlaylist"};
  EXPECT_EQ(catalogue.CreatePlayList("x", list), base::number::kDeviceIo);
  EXPECT_FALSE(plugin.stale.PlayListsStale);
}
