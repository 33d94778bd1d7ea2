// What comes in between: gestures while the player is read, late edits, playlists that have gone.
#include "ui/editor/EditorHouse.hpp"

using support::Control;
using support::MessageAnswer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Meanwhile : public support::EditorHouse {
 protected:
  void SetUp() override {
    EditorHouse::SetUp();
    // Its key differs from its name, so that reading it is told to the host, which lets others in.
    library.addTrack("A/B", "Ann", "Green", "Folk");
    playlist("Winter")->members.push_back(track("A/B"));
    library.addPlaylist("Summer", {track("Sea")});
    for (const auto& each : library.tracks) each->url = "http:" + each->title;
    open();
  }
  /// Plays gestures once, in the midst of the next read.
  void whileItReads(const std::function<void()>& gestures) {
    host->answers["SaveINISetting"] = [this, gestures](base::Args& /*args*/) {
      if (!std::exchange(played_, true)) gestures();
      return base::Value();
    };
  }
  [[nodiscard]] bool played() const { return played_; }
  void makeNew(const std::string& name) {
    window.typed = name;
    window.events->New_PlayList_Click();
  }

 private:
  bool played_ = false;
};

}  // namespace

TEST_F(Meanwhile, AChoiceInTheMidstOfAReadIsRefusedAndShownBack) {
  int shown = 0;
  std::string choice;
  whileItReads([&] {
    box().changed = [&] { ++shown; };
    choose("Autumn");
    choice = box().text();
    box().changed = [] {};
  });
  choose("Winter");
  ASSERT_TRUE(played());
  EXPECT_EQ(choice, "Winter");
  EXPECT_EQ(shown, 1) << "the view shows the old choice again";
  EXPECT_EQ(box().text(), "Winter");
  EXPECT_THAT(listed(), ElementsAre("Moss", "A/B"));
  ASSERT_NE(state().ListPlayList, nullptr);
  EXPECT_EQ(state().ListPlayList->name(), "Winter");
}

TEST_F(Meanwhile, APressInTheMidstOfAReadSelectsNothing) {
  click("PlayListSummer");
  const auto summer = node("PlayListSummer");
  const auto winter = node("PlayListWinter");
  whileItReads([&] { click("PlayListAutumn"); });
  click(winter);
  ASSERT_TRUE(played());
  EXPECT_EQ(state().CurrentNode, winter);
  EXPECT_EQ(tree().selectedItem(), winter) << "what Delete would act on is what is seen";
}

TEST_F(Meanwhile, CommandsInTheMidstOfAReadDoNothing) {
  window.events->TreeView1_GotFocus();
  click("PlayListSummer");
  ASSERT_TRUE(state().Delete_Button);
  journal.clear();
  std::int16_t before = 0;
  std::int16_t after = 0;
  std::string label = "Fall";
  whileItReads([&] {
    window.answers = {MessageAnswer::kYes};
    window.typed = "Spring";
    window.events->Delete_Button_Click();
    window.events->New_PlayList_Click();
    window.events->Rename_Button_Click();
    window.events->TreeView1_BeforeLabelEdit(before);
    window.events->TreeView1_AfterLabelEdit(after, label);
    window.events->TreeView1_Expand(node("PlayListAutumn"));
    window.events->ListView1_DragDrop(Control::kTreeView1, 0, 1000);
    callVxif("SelectMenu", "PlayList Editor");
  });
  choose("Winter");
  ASSERT_TRUE(played());
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_THAT(journal.with("window: label edit"), IsEmpty());
  EXPECT_EQ(before, 1);
  EXPECT_EQ(after, 1);
  EXPECT_NE(node("PlayListAutumn")->tag, "Refresh");
}

TEST_F(Meanwhile, ADropIsNotInterruptedByAChoice) {
  choose("Summer");
  click("PlayListWinter");
  click("PlayListWinterMoss");
  // Only a read that is not served from the handle in hand lets others in.
  click("PlayListAutumn");
  tree().selectedItem(node("PlayListWinterMoss"));
  window.node = node("PlayListWinterMoss");
  window.events->TreeView1_MouseDown(ui::editor::kLeftButton, 0, 0, 0);
  whileItReads([&] { choose("Autumn"); });
  playlist("Winter")->members.push_back(library.addTrack("C/D", "Ann", "Green", "Folk"));
  drag(Control::kTreeView1, nullptr);
  ASSERT_TRUE(played());
  EXPECT_THAT(listed(), ElementsAre("Sea", "Moss"));
  EXPECT_EQ(box().text(), "Summer");
  EXPECT_THAT(stored("Summer"), ElementsAre("Sea", "Moss"));
  EXPECT_THAT(stored("Winter"), ElementsAre("A/B", "C/D"));
  EXPECT_THAT(stored("Autumn"), ElementsAre("Sky", "Leaf"));
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Meanwhile, AWindowThatGoesInTheMidstOfAReadStaysEmpty) {
  whileItReads([&] { window.close(); });
  choose("Winter");
  ASSERT_TRUE(played());
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_EQ(state().ListPlayList, nullptr);
}

TEST_F(Meanwhile, AWindowThatGoesWhileAGroupIsReadHasNothingToTell) {
  whileItReads([&] { window.close(); });
  click("PlayListWinter");
  ASSERT_TRUE(played());
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_EQ(state().TreePlayList, nullptr);
  EXPECT_EQ(state().CurrentNode, nullptr);
}

TEST_F(Meanwhile, AWindowThatGoesWhileTheLibraryIsReadHasNothingToTell) {
  bool gone = false;
  window.onRepaint = [&] {
    if (!std::exchange(gone, true)) window.close();
  };
  click("All Audio");
  EXPECT_FALSE(window.isShown);
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_EQ(state().LibraryPlayList, nullptr);
  EXPECT_TRUE(window.isEnabled);
}

TEST_F(Meanwhile, AnEditThatEndsBehindAPressElsewhereRenamesNothing) {
  click("PlayListWinter");
  std::int16_t cancel = 0;
  window.events->TreeView1_BeforeLabelEdit(cancel);
  ASSERT_EQ(cancel, 0);
  click("PlayListAutumn");
  journal.clear();
  std::string label = "Frost";
  window.events->TreeView1_AfterLabelEdit(cancel, label);
  EXPECT_NE(cancel, 0);
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_THAT(stored("Autumn"), ElementsAre("Sky", "Leaf"));
  EXPECT_THAT(stored("Winter"), ElementsAre("Moss", "A/B"));
}

TEST_F(Meanwhile, ALateEndOfAnEditIsNoAddressEither) {
  click("PlayListWinter");
  std::int16_t cancel = 0;
  window.events->TreeView1_BeforeLabelEdit(cancel);
  click("URLURL");
  const std::string tag = node("URLURL")->tag;
  std::string label = "Frost";
  window.events->TreeView1_AfterLabelEdit(cancel, label);
  EXPECT_NE(cancel, 0);
  EXPECT_EQ(node("URLURL")->tag, tag);
}

TEST_F(Meanwhile, BehindAChoiceThatCanNotBeReadTheListHasNoCurrentItem) {
  click(item(1));
  ASSERT_EQ(buttons(), "Delete Down ");
  library.failing = {"getPlaylistByName"};
  choose("Winter");
  EXPECT_EQ(buttons(), "");
  window.events->ListView1_GotFocus();
  EXPECT_EQ(buttons(), "");
  key(ui::editor::kDeleteKey);
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Meanwhile, F1WhereTheListCouldNotBeReadHasNoItemToTell) {
  click(item(1));
  library.failing = {"getPlaylistByName"};
  choose("Winter");
  key(ui::editor::kF1Key);
  EXPECT_THAT(window.messages, ElementsAre(report("ListView1_KeyDown", base::number::kObjectMissing)))
      << "there is no current item";
}

TEST_F(Meanwhile, ATitleWhoseListGoesBehindTheQuestionIsNotDeleted) {
  click(item(1));
  window.onMessage = [&] { list().clear(); };
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_THAT(stored("Autumn"), ElementsAre("Sky", "Leaf"));
  EXPECT_EQ(buttons(), "");
  EXPECT_EQ(window.messages.back(), "index not > 1 in delete_button click");
}

TEST_F(Meanwhile, WhatThePlayerTellsReachesTheMarksAndNotThePanes) {
  library.addPlaylist("Spring");
  plugin.stale.PlayListsStale = false;
  const auto before = below("PlayList");
  const auto inTheBox = boxed();
  journal.clear();
  wmp9->events().PlaylistCollectionChange();
  EXPECT_TRUE(plugin.stale.PlayListsStale);
  EXPECT_EQ(below("PlayList"), before);
  EXPECT_EQ(boxed(), inTheBox);
  EXPECT_THAT(journal.with("library: "), IsEmpty());
}

TEST_F(Meanwhile, ADeletedPlaylistsHandleIsNotTakenForANewOneOfItsName) {
  window.events->TreeView1_GotFocus();
  click("PlayListAutumn");
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  makeNew("Autumn");
  choose("Autumn");
  EXPECT_THAT(listed(), IsEmpty());
  click("AlbumBlue");
  click("AlbumBlueSea");
  drag(Control::kTreeView1, nullptr);
  EXPECT_THAT(stored("Autumn"), ElementsAre("Sea"));
}

TEST_F(Meanwhile, APlaylistThatOthersMadeAnewUnderItsNameIsReadAtTheNextChoice) {
  choose("Winter");
  library.removePlaylist(playlist("Winter"));
  library.addPlaylist("Winter", {track("Sea")});
  choose("Winter");
  EXPECT_THAT(listed(), ElementsAre("Sea"));
  click("AlbumBlue");
  click("AlbumBlueSky");
  drag(Control::kTreeView1, nullptr);
  EXPECT_THAT(stored("Winter"), ElementsAre("Sea", "Sky"));
}

TEST_F(Meanwhile, ATitleGoesIntoThePlaylistThatOthersHaveMadeAnew) {
  choose("Winter");
  library.removePlaylist(playlist("Winter"));
  library.addPlaylist("Winter", {track("Leaf")});
  click("AlbumBlue");
  click("AlbumBlueSky");
  drag(Control::kTreeView1, nullptr);
  EXPECT_THAT(stored("Winter"), ElementsAre("Leaf", "Sky")) << "and not into the old one, which is nowhere";
}

TEST_F(Meanwhile, WhatOthersHaveRemovedIsNotReordered) {
  choose("Winter");
  const auto removed = playlist("Winter");
  library.removePlaylist(removed);
  click(item(2));
  window.events->MoveUp_Button_Click();
  EXPECT_THAT(window.messages, ElementsAre(report("MoveNode", base::number::kFileNotFound)));
  EXPECT_THAT(titles(*removed), ElementsAre("Moss", "A/B"));
  EXPECT_THAT(listed(), ElementsAre("Moss", "A/B"));
  choose("Winter");
  EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(Meanwhile, ATitleIsDeletedFromThePlaylistThatOthersHaveMadeAnew) {
  choose("Winter");
  click(item(1));
  library.removePlaylist(playlist("Winter"));
  library.addPlaylist("Winter", {track("Moss"), track("Sea")});
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_THAT(stored("Winter"), ElementsAre("Sea"));
}

TEST_F(Meanwhile, AMemberIsDraggedOutOfThePlaylistThatOthersHaveMadeAnew) {
  choose("Summer");
  click("PlayListWinter");
  click("PlayListWinterMoss");
  library.removePlaylist(playlist("Winter"));
  library.addPlaylist("Winter", {track("Leaf"), track("Moss")});
  drag(Control::kTreeView1, nullptr);
  EXPECT_THAT(stored("Summer"), ElementsAre("Sea", "Moss"));
  EXPECT_THAT(stored("Winter"), ElementsAre("Leaf"));
}

TEST_F(Meanwhile, APlaylistThatOthersHaveRenamedIsFoundNoMoreUnderItsOldName) {
  choose("Winter");
  click(item(1));
  playlist("Winter")->title = "Frost";
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_THAT(stored("Frost"), ElementsAre("Moss", "A/B"));
  choose("Winter");
  EXPECT_THAT(listed(), IsEmpty());
}
