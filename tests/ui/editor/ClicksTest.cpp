// Clicks, keys and the focus in the tree.
#include <sys/stat.h>

#include <fstream>

#include "support/TempFolder.hpp"
#include "ui/editor/EditorHouse.hpp"

using support::Control;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::editor::kCtrlDown;
using ui::editor::kShiftDown;

namespace {

class Clicks : public support::EditorHouse {
 protected:
  void SetUp() override {
    EditorHouse::SetUp();
    open();
  }
  void treeKey(std::int16_t code, std::int16_t shift = 0) { window.events->TreeView1_KeyDown(code, shift); }
};

}  // namespace

TEST_F(Clicks, OnlyAPlaylistEnablesDeleteAndRename) {
  click("PlayListWinter");
  EXPECT_EQ(buttons(), "Delete Rename ");
  click("AlbumBlue");
  EXPECT_EQ(buttons(), "");
  click("PlayListWinter");
  click("PlayListWinterMoss");
  EXPECT_EQ(buttons(), "");
  click("PlayListWinter");
  click("PlayList");
  EXPECT_EQ(buttons(), "");
}

TEST_F(Clicks, TheAddressEntryOpensForTyping) {
  click("URLURL");
  EXPECT_EQ(journal.count("window: label edit"), 2U) << "the press and the click";
  EXPECT_EQ(state().CurrentNode, node("URLURL"));
}

TEST_F(Clicks, ABrowseThatIsCancelledLeavesTheAddressEntrySelected) {
  window.node = node("URLBrowse");
  tree().selectedItem(node("URLBrowse"));
  window.events->TreeView1_MouseDown(1, 0, 0, 0);
  EXPECT_EQ(tree().selectedItem(), node("URLURL"));
  EXPECT_EQ(node("URLURL")->text(), "Enter URL Here");
  EXPECT_EQ(node("URLURL")->tag, "");
  EXPECT_TRUE(journal.has("window: brings into sight URLURL"));
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Clicks, ABrowseThatIsCancelledKeepsTheAddressThatWasTyped) {
  click("URLURL");
  editLabel(node("URLURL"), "http://station");
  click("URLBrowse");
  EXPECT_EQ(tree().selectedItem(), node("URLURL"));
  EXPECT_EQ(node("URLURL")->text(), "http://station");
  EXPECT_EQ(node("URLURL")->tag, "http://station");
}

TEST_F(Clicks, AMissingFileIsMarkedAtTheClick) {
  const support::TempFolder folder;
  const std::string there = folder.path().string() + "/a b.mp3";
  std::ofstream(there) << "sound";
  track("Sky")->url = there;
  track("Sea")->url = "FILE://" + there;
  track("Leaf")->url = "file://" + folder.path().string() + "/gone.mp3";
  track("Moss")->url = "http://station";
  for (const char* key : {"AlbumBlue", "AlbumGreen"}) click(key);
  for (const char* key : {"AlbumBlueSky", "AlbumBlueSea", "AlbumGreenMoss"}) {
    const std::string text = node(key)->text();
    click(key);
    EXPECT_EQ(node(key)->text(), text);
  }
  click("AlbumGreenLeaf");
  EXPECT_EQ(node("AlbumGreenLeaf")->text(), "File not found: " + track("Leaf")->url);
  EXPECT_STREQ(node("AlbumGreenLeaf")->image(), "Deleted");
  EXPECT_TRUE(form().SourceExists(node("AlbumBlueSea")));
  EXPECT_FALSE(form().SourceExists(node("AlbumGreenLeaf")));
}

TEST_F(Clicks, APipeOrAFolderIsNoFileAndIsNotWaitedFor) {
  const support::TempFolder folder;
  const std::string pipe = folder.path().string() + "/pipe.mp3";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  track("Sky")->url = pipe;
  track("Sea")->url = "file://" + folder.path().string();
  click("AlbumBlue");
  EXPECT_FALSE(form().SourceExists(node("AlbumBlueSky")));
  EXPECT_FALSE(form().SourceExists(node("AlbumBlueSea")));
}

TEST_F(Clicks, AnAddressOfTheSecureWebSchemeIsNotFound) {
  track("Sky")->url = "https://station";
  click("AlbumBlue");
  click("AlbumBlueSky");
  EXPECT_EQ(node("AlbumBlueSky")->text(), "File not found: https://station");
}

TEST_F(Clicks, AnAddressMayTellItsPathByNumbers) {
  const support::TempFolder folder;
  std::ofstream(folder.path().string() + "/\xE4.mp3") << "sound";
  track("Sky")->url = "file://" + folder.path().string() + "/%E4.mp3";
  click("AlbumBlue");
  EXPECT_TRUE(form().SourceExists(node("AlbumBlueSky")));
}

TEST_F(Clicks, MembersOfTheWholeLibraryAreNotLookedFor) {
  click("All Audio");
  click("All AudioSky");
  EXPECT_EQ(node("All AudioSky")->text(), "Sky");
}

TEST_F(Clicks, AMarkedTitleIsLookedForByItsNewText) {
  track("Sky")->url = "file:///nowhere/sky.mp3";
  click("AlbumBlue");
  click("AlbumBlueSky");
  choose("Winter");
  window.messages.clear();
  drag(Control::kTreeView1, nullptr);
  EXPECT_TRUE(journal.has("library: getByName File not found: file:///nowhere/sky.mp3"));
  EXPECT_THAT(window.messages, ElementsAre("Error, could not find media: file:///nowhere/sky.mp3"));
}

TEST_F(Clicks, AtAPressShiftCountsAndCtrlDoesNot) {
  click(node("AlbumBlue"), kShiftDown);
  EXPECT_EQ(state().CopyMode, 1);
  click(node("AlbumBlue"), kCtrlDown);
  EXPECT_EQ(state().CopyMode, 0);
  treeKey(ui::editor::kCtrlKey, kCtrlDown);
  EXPECT_EQ(state().CopyMode, 1);
  window.events->TreeView1_KeyUp(ui::editor::kCtrlKey, 0);
  EXPECT_EQ(state().CopyMode, 0);
}

TEST_F(Clicks, APressBesideTheNodesDoesNothing) {
  click("AlbumBlue");
  journal.clear();
  window.node = nullptr;
  window.events->TreeView1_MouseDown(1, kShiftDown, 0, 0);
  EXPECT_EQ(state().CurrentNode, node("AlbumBlue"));
  EXPECT_EQ(state().CopyMode, 0);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Clicks, TheFocusIsRememberedAndClicksTheCurrentNode) {
  click("PlayListWinter");
  click(item(1));
  EXPECT_EQ(state().LastFocus, "ListView1");
  EXPECT_EQ(buttons(), "Delete Down ");
  window.events->TreeView1_GotFocus();
  EXPECT_EQ(state().LastFocus, "TreeView1");
  EXPECT_EQ(buttons(), "Delete Rename ");
}

TEST_F(Clicks, AWindowThatIsNotFilledForgetsTheFocus) {
  form().Close_Button_Click();
  window.events->TreeView1_GotFocus();
  EXPECT_EQ(state().LastFocus, "");
}

TEST_F(Clicks, EnterOpensTheLabelAndCtrlCPicksUp) {
  click("AlbumBlue");
  click("AlbumBlueSky");
  journal.clear();
  treeKey(ui::editor::kEnterKey);
  EXPECT_TRUE(journal.has("window: label edit"));
  treeKey(ui::editor::kCKey);
  EXPECT_EQ(state().ClipItem, nullptr) << "without Ctrl";
  treeKey(ui::editor::kCKey, kCtrlDown);
  EXPECT_EQ(state().ClipItem, node("AlbumBlueSky"));
  EXPECT_EQ(state().ClipIsCopy, 1);
  treeKey(ui::editor::kXKey, kCtrlDown);
  EXPECT_EQ(state().ClipIsCopy, 0);
  EXPECT_EQ(state().ClipSource, Control::kTreeView1);
  click("PlayListWinter");
  treeKey(ui::editor::kCKey, kCtrlDown);
  EXPECT_EQ(state().ClipItem, node("AlbumBlueSky")) << "a whole playlist is not picked up";
}

TEST_F(Clicks, TheTreeHasNoKeyThatPastes) {
  click("AlbumBlue");
  click("AlbumBlueSky");
  treeKey(ui::editor::kCKey, kCtrlDown);
  journal.clear();
  treeKey(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Clicks, AMissingFileIsMarkedInEachKindOfGroup) {
  for (const std::string group : {"AlbumBlue", "ArtistAnn", "GenreFolk", "PlayListAutumn"}) {
    click(group);
    const auto member = node(group + "Sky");
    click(member);
    EXPECT_EQ(member->text(), "File not found: file:Sky") << group;
  }
}

TEST_F(Clicks, InsertAsksForANewPlaylistAndDeleteDeletes) {
  click("PlayListWinter");
  window.events->TreeView1_GotFocus();
  journal.clear();
  treeKey(ui::editor::kInsertKey);
  EXPECT_TRUE(journal.has("window: asks \"New PlayList\": Enter the new PlayList name: []"));
  treeKey(ui::editor::kDeleteKey);
  EXPECT_TRUE(
      journal.has("window: confirmation: Are you sure you want to delete the entire playlist: Winter?"));
  for (const char* key : {"Album", "PlayList", "AlbumBlue"}) {
    click(key);
    journal.clear();
    treeKey(ui::editor::kDeleteKey);
    EXPECT_THAT(journal.lines(), IsEmpty()) << key << ": the button is disabled";
  }
}
