// The tree of sources: what stands in it and when it is read.
#include "ui/editor/EditorHouse.hpp"

using support::MessageAnswer;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ui::editor::IsURL;
using ui::editor::KeyedTree;

namespace {

class Tree : public support::EditorHouse {
 protected:
  std::vector<std::string> roots() {
    std::vector<std::string> found;
    for (std::size_t row = 0; row < tree().rowCount(nullptr); ++row)
      found.push_back(tree().nodeAt(nullptr, row)->key());
    return found;
  }
};

std::string Duplicate(const std::string& name, const std::string& category) {
  return "Warning: \"" + name + "\" is a duplicate " + category + " name and will be skipped";
}

}  // namespace

TEST_F(Tree, SixBoldRootsStandInTheirOrder) {
  open();
  EXPECT_THAT(roots(), ElementsAre("All Audio", "Album", "Artist", "Genre", "PlayList", "URL"));
  for (const std::string& key : roots()) {
    EXPECT_TRUE(node(key)->bold()) << key;
    EXPECT_EQ(node(key)->text(), key);
    EXPECT_EQ(node(key)->sorted(), key != "URL") << key;
    EXPECT_EQ(node(key)->tag, "") << key;
  }
  EXPECT_STREQ(node("All Audio")->image(), "Drive");
  EXPECT_STREQ(node("Album")->image(), "Music CD");
  EXPECT_STREQ(node("Artist")->image(), "People");
  EXPECT_STREQ(node("Genre")->image(), "Music2");
  EXPECT_STREQ(node("PlayList")->image(), "List");
  EXPECT_STREQ(node("URL")->image(), "Globe");
}

TEST_F(Tree, NamesStandBelowTheirRootsInOrderAndAreNotReadYet) {
  open();
  EXPECT_THAT(below("Album"), ElementsAre("Blue", "Green"));
  EXPECT_THAT(below("Artist"), ElementsAre("Ann", "Bob"));
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn", "Winter"));
  EXPECT_THAT(below("URL"), ElementsAre("Enter URL Here", "Browse"));
  EXPECT_THAT(below("All Audio"), IsEmpty());
  EXPECT_THAT(below("AlbumBlue"), IsEmpty());
  EXPECT_FALSE(node("AlbumBlue")->sorted()) << "its members keep the player's order";
  EXPECT_TRUE(node("ArtistAnn")->sorted());
  EXPECT_TRUE(node("GenreFolk")->sorted());
  EXPECT_FALSE(node("PlayListAutumn")->sorted());
  EXPECT_STREQ(node("ArtistAnn")->image(), "People");
  EXPECT_STREQ(node("URLBrowse")->image(), "ClosedFolder");
}

TEST_F(Tree, ADuplicateNameIsWarnedOfAndSkippedInEachBranch) {
  library.attributes["album"] = {"Blue", "BLUE", "Green"};
  library.attributes["artist"] = {"Ann", "ann"};
  library.attributes["genre"] = {"Folk", "folk"};
  library.addPlaylist("winter");
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(window.messages, ElementsAre(Duplicate("BLUE", "Album"), Duplicate("ann", "Artist"),
                                           Duplicate("folk", "Genre"), Duplicate("winter", "PlayList")));
  EXPECT_TRUE(journal.has("window: warning: " + Duplicate("BLUE", "Album")));
  EXPECT_THAT(below("Album"), ElementsAre("Blue", "Green"));
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Winter")) << "the name does not go into the drop box";
}

TEST_F(Tree, CancelSilencesAllWarningsUntilTheWindowIsLoadedAgain) {
  library.attributes["album"] = {"Blue", "BLUE", "Green", "green"};
  library.attributes["artist"] = {"Ann", "ann"};
  playlist("Autumn")->members.push_back(track("Sky"));
  window.answers = {MessageAnswer::kCancel};
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(window.messages, SizeIs(1)) << "neither in the tree nor in the list";
  EXPECT_THAT(below("Album"), ElementsAre("Blue", "Green"));
  choose("Winter");
  choose("Autumn");
  EXPECT_THAT(window.messages, SizeIs(1));
  callVxif("SelectMenu", "PlayList Editor");
  choose("Winter");
  choose("Autumn");
  EXPECT_THAT(window.messages, SizeIs(2));
}

TEST_F(Tree, AFailedListOfACategoryIsAnEmptyBranch) {
  library.failing = {"getAttributeStringCollection"};
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(below("Album"), IsEmpty());
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn", "Winter"));
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Tree, NoPlaylistsAtAllAreNothingToTellOf) {
  library.playlists.clear();
  plugin.stale.PlayListsStale = true;
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_THAT(below("PlayList"), IsEmpty());
  EXPECT_THAT(boxed(), IsEmpty());
  EXPECT_THAT(below("URL"), SizeIs(2));
}

TEST_F(Tree, PlaylistsThatCanNotBeReadAreReportedAndTheFillGoesOn) {
  library.failing = {"getAllPlaylists"};
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(window.messages, ElementsAre("Error in procedure PlayListEditor/GetPlayLists Error # 57: "));
  EXPECT_THAT(below("URL"), SizeIs(2));
  EXPECT_TRUE(state().FormReady);
}

TEST_F(Tree, AFailureEndsTheFillWhereItStands) {
  for (int i = 0; i < 60; ++i) library.addPlaylist("List " + std::to_string(100 + i));
  // The catalogue's own walk skips a failed turn.
  host->answers["WaitEvents"] = [&](base::Args&) -> base::Value {
    if (plugin.playListEditor && !window.isEnabled && tree().size() > 40) throw base::Failure(462);
    return {};
  };
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(window.messages, ElementsAre(report("FillTreeView", 462)));
  EXPECT_THAT(roots(), ElementsAre("All Audio", "Album", "Artist", "Genre", "PlayList"))
      << "the address root is missing";
  EXPECT_THAT(below("PlayList"), SizeIs(49));
}

TEST_F(Tree, TheHouseGetsATurnAtEveryFiftiethPlaylist) {
  for (int i = 0; i < 100; ++i) library.addPlaylist("List " + std::to_string(100 + i));
  std::vector<std::size_t> turns;
  host->answers["WaitEvents"] = [&](base::Args&) {
    if (node("PlayList") != nullptr) turns.push_back(KeyedTree::childCount(node("PlayList")));
    return base::Value();
  };
  plugin.catalogue.GetGroupList("PlayList", *std::make_unique<base::TextListRef>(), "");
  for (const char* each : {"Album", "Artist", "Genre"})
    plugin.catalogue.GetGroupList(each, *std::make_unique<base::TextListRef>(), "");
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(turns, ElementsAre(49, 99));
}

TEST_F(Tree, AGroupIsFilledAtItsFirstClickAndOnce) {
  open();
  click("AlbumBlue");
  EXPECT_THAT(below("AlbumBlue"), ElementsAre("Sky", "Sea"));
  EXPECT_EQ(node("AlbumBlue")->tag, "OK");
  EXPECT_TRUE(node("AlbumBlue")->expanded());
  EXPECT_EQ(node("AlbumBlueSky")->tag, "file:Sky");
  EXPECT_STREQ(node("AlbumBlueSky")->image(), "Sound");
  EXPECT_EQ(journal.count("library: getByAttribute Album=Blue"), 1U);
  EXPECT_EQ(state().CurrentNode, node("AlbumBlue")) << "the fill's own nodes do not stay the current one";
  tree().expanded(node("AlbumBlue"), false);
  click("AlbumBlue");
  EXPECT_EQ(journal.count("library: getByAttribute Album=Blue"), 1U);
  click("ArtistBob");
  EXPECT_THAT(below("ArtistBob"), ElementsAre("Moss", "Sea")) << "sorted";
}

TEST_F(Tree, AnAddressHasAGlobe) {
  track("Sky")->url = "MMS://radio";
  track("Sea")->url = "https://radio";
  open();
  click("AlbumBlue");
  EXPECT_STREQ(node("AlbumBlueSky")->image(), "Globe");
  EXPECT_STREQ(node("AlbumBlueSea")->image(), "Sound");
}

TEST_F(Tree, APlaylistIsReadAnewAtEachClickWhileItIsCollapsed) {
  open();
  click("PlayListWinter");
  EXPECT_THAT(below("PlayListWinter"), ElementsAre("Moss"));
  playlist("Winter")->members.push_back(track("Sea"));
  click("PlayListWinter");
  EXPECT_THAT(below("PlayListWinter"), ElementsAre("Moss")) << "it is open";
  tree().expanded(node("PlayListWinter"), false);
  click("PlayListWinter");
  EXPECT_THAT(below("PlayListWinter"), ElementsAre("Moss", "Sea"));
  EXPECT_EQ(state().TreePlayList, playlist("Winter"));
}

TEST_F(Tree, APlaylistIsReadAnewWhenItIsExpanded) {
  open();
  click("PlayListWinter");
  tree().expanded(node("PlayListWinter"), false);
  playlist("Winter")->members.clear();
  playlist("Winter")->members.push_back(track("Leaf"));
  tree().expanded(node("PlayListWinter"), true);
  window.events->TreeView1_Expand(node("PlayListWinter"));
  EXPECT_THAT(below("PlayListWinter"), ElementsAre("Leaf"));
  EXPECT_EQ(buttons(), "Delete Rename ");
  journal.clear();
  window.events->TreeView1_Expand(node("AlbumBlue"));
  window.events->TreeView1_Expand(node("PlayList"));
  EXPECT_THAT(journal.with("library: "), IsEmpty()) << "nothing else is";
}

TEST_F(Tree, TheLibraryIsReadOnceBehindTheLongRead) {
  open();
  click("All Audio");
  EXPECT_THAT(below("All Audio"), ElementsAre("Leaf", "Moss", "Sea", "Sky"));
  EXPECT_EQ(node("All Audio")->tag, "OK");
  EXPECT_EQ(node("All AudioSky")->tag, "file:Sky");
  EXPECT_LT(journal.find("window: screen pointer 11"), journal.find("library: getAllMedia"));
  EXPECT_LT(journal.find("library: getAllMedia"), journal.find("window: screen pointer 0"));
  EXPECT_EQ(journal.count("library: getAllMedia"), 1U);
  EXPECT_EQ(state().LibraryPlayList->name(), "All Audio");
  EXPECT_TRUE(window.isEnabled);
}

TEST_F(Tree, AnEmptyLibraryIsReadAndHasNothingInIt) {
  library.tracks.clear();
  open();
  click("All Audio");
  EXPECT_EQ(node("All Audio")->tag, "OK");
  EXPECT_THAT(below("All Audio"), IsEmpty());
}

TEST_F(Tree, ALibraryThatCanNotBeReadLeavesAWindowThatCanBeUsed) {
  open();
  library.failing = {"getAllMedia"};
  click("All Audio");
  EXPECT_EQ(node("All Audio")->tag, "OK");
  EXPECT_THAT(below("All Audio"), IsEmpty());
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_TRUE(window.isEnabled);
}

TEST_F(Tree, AGroupThatCanNotBeReadIsEmptyAndItsNameCanNotBeWritten) {
  open();
  library.failing = {"getByAttribute"};
  click("AlbumBlue");
  EXPECT_EQ(node("AlbumBlue")->tag, "OK");
  EXPECT_THAT(window.messages, ElementsAre(report("ExpandNode: Blue", 91)));
  library.failing = {"getPlaylistByName"};
  click("PlayListWinter");
  EXPECT_EQ(node("PlayListWinter")->tag, "OK");
  EXPECT_THAT(window.messages, SizeIs(1)) << "nothing is said of a playlist";
  library.failing.clear();
  click("AlbumBlue");
  EXPECT_THAT(below("AlbumBlue"), IsEmpty()) << "an album is read only once";
}

TEST_F(Tree, ATitleThatStandsTwiceInAPlaylistShowsOnce) {
  playlist("Winter")->members.push_back(track("Moss"));
  open();
  click("PlayListWinter");
  EXPECT_THAT(below("PlayListWinter"), ElementsAre("Moss"));
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Tree, AMemberThatCanNotBeAddedIsReportedWithFiveLines) {
  // The list of names has one blank where the playlist has two, so that its node is under another key.
  library.addPlaylist("Road  Trip", {track("Sky"), track("Sea")});
  plugin.stale.PlayListsStale = true;
  open();
  click("PlayListRoad Trip");
  EXPECT_THAT(window.messages, ElementsAre(report("FillTreeBranch-2 Road  Trip", 35601),
                                           report("FillTreeBranch-2 Road  Trip", 35601)));
  EXPECT_TRUE(logged("Error", "Media Player Parent: 'PlayListRoad  Trip'"));
  EXPECT_TRUE(logged("Error", "Media Player Child:  'PlayListRoad  TripSea'"));
  EXPECT_TRUE(logged("Error", "Media Player Text:  'Sea'"));
  EXPECT_TRUE(logged("Error", "Media Player Index: 1 Count: 2"));
  EXPECT_TRUE(logged("Error", "Media Player Playlist: 'Road  Trip'"));
}

TEST_F(Tree, AnUnnamedBranchIsReportedUnderItsBareName) {
  open();
  playlist("Winter")->nameFails = true;
  click("PlayListWinter");
  EXPECT_EQ(window.messages.front(), report("FillTreeBranch ", 57));
}

TEST_F(Tree, APlaylistMayBeNamedPlayList) {
  library.addPlaylist("PlayList", {track("Sky")});
  plugin.stale.PlayListsStale = true;
  open();
  click("PlayListPlayList");
  EXPECT_THAT(below("PlayListPlayList"), ElementsAre("Sky"));
  window.messages.clear();
  click("PlayListPlayListSky");
  EXPECT_THAT(window.messages, ElementsAre("ERROR Unknown parent:PlayListPlayList"));
  EXPECT_EQ(node("PlayListPlayListSky")->tag, "OK") << "its source is forgotten";
}

TEST_F(Tree, RootsAndAddressEntriesAreNeverFilled) {
  open();
  for (const char* key : {"Album", "Artist", "Genre", "URL", "URLURL"}) {
    click(key);
    EXPECT_EQ(node(key)->tag, "") << key;
    EXPECT_FALSE(node(key)->expanded()) << key;
  }
  EXPECT_THAT(journal.with("library: "), IsEmpty());
}

TEST(Addresses, AreToldByTheirBeginning) {
  for (const char* text : {"http://x", "HTTP:", "mms:x", "MMSU:x", "mmst:x", "msbs:x", "url:x"})
    EXPECT_TRUE(IsURL(text)) << text;
  for (const char* text : {"https://x", "", "http", "mmsx:", "ftp:x", " http:x", "/music/http:.mp3"})
    EXPECT_FALSE(IsURL(text)) << text;
}
