// What the editor's commands leave behind: in the box, in the cross-reference of names, of what was read.
#include "ui/editor/CommandsHouse.hpp"

using support::MessageAnswer;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

class Aftermath : public support::CommandsHouse {};

}  // namespace

TEST_F(Aftermath, NamesLeadBackFromTheirKeys) {
  const auto known = [&](const char* key) { return plugin.nameXref.LookupNameXref("PlayList", key); };
  library.failing = {"newPlaylist"};
  makeNew("AC/DC");
  EXPECT_EQ(known("AC DC"), "AC/DC") << "also where the player has made none";
  library.failing.clear();
  choosePlayList("Winter");
  editLabel(node("PlayListWinter"), "Snow!");
  EXPECT_EQ(known("Snow"), "Snow!");
  editLabel(node("PlayListSnow!"), "Frost?");
  EXPECT_EQ(known("Snow"), "Snow") << "forgotten";
  EXPECT_EQ(known("Frost"), "Frost?");
  choosePlayList("Frost?");
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_EQ(known("Frost"), "Frost");
}

TEST_F(Aftermath, BehindARenameTheListIsFilledTwice) {
  playlist("Winter")->members.push_back(track("Moss"));
  choosePlayList("Winter");
  editLabel(node("PlayListWinter"), "Frost");
  EXPECT_THAT(window.messages, SizeIs(2));
  EXPECT_THAT(window.messages,
              Each(StartsWith("Warning: \"Moss\" appears multiple times in PlayList \"Frost\".")));
}

TEST_F(Aftermath, EveryEntryOfTheNameLeavesTheBox) {
  makeNew("Spring");
  makeNew("Spring ");
  ASSERT_THAT(boxed(), ElementsAre("Autumn", "Spring", "Spring", "Winter"));
  choosePlayList("Spring");
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Winter"));
}

TEST_F(Aftermath, WhatIsNoPlaylistIsNotDeletedFromTheTree) {
  click("PlayListWinter");
  for (const char* key : {"AlbumBlue", "PlayListWinterMoss"}) {
    window.events->TreeView1_GotFocus();
    click(key);
    window.item = item(1);
    window.events->ListView1_MouseDown(ui::editor::kLeftButton, 0, 0, 0);
    ASSERT_TRUE(state().Delete_Button);
    window.messages.clear();
    window.events->Delete_Button_Click();
    EXPECT_THAT(window.messages, IsEmpty()) << key;
  }
}

TEST_F(Aftermath, TheTreeAndTheFileDialogShareOneReadOfTheLibrary) {
  click("All Audio");
  window.chosenFile = "/music/new.mp3";
  click("URLBrowse");
  EXPECT_EQ(journal.count("library: getAllMedia"), 1U);
  form().Close_Button_Click();
  EXPECT_EQ(state().LibraryPlayList, nullptr);
  open();
  journal.clear();
  click("All Audio");
  EXPECT_EQ(journal.count("library: getAllMedia"), 1U) << "anew in a new window";
}
