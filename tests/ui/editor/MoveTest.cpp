// Titles moved and copied into the list: what becomes of the list and of the stored playlists.
#include "ui/editor/EditorHouse.hpp"

using support::Control;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ui::editor::kCtrlDown;
using ui::editor::kShiftDown;

namespace {

constexpr const char* kDuplicate = "Error: Cannot add duplicates within a PlayList";

class Move : public support::EditorHouse {
 protected:
  void SetUp() override {
    EditorHouse::SetUp();
    playlist("Winter")->members.clear();
    for (int i = 1; i <= 5; ++i) {
      const std::string title = "T" + std::to_string(i);
      playlist("Winter")->members.push_back(library.addTrack(title, "A", "B", "C"));
    }
    // A member whose file is gone would be marked by the press that begins a drag.
    for (const auto& each : library.tracks) each->url = "http:" + each->title;
    open();
    choose("Winter");
    journal.clear();
  }
  void dragItem(std::size_t from, std::size_t onto) {
    click(item(from));
    drag(Control::kListView1, item(onto));
  }
  /// Drags a member of a group onto the list, and begins a new journal before.
  void dragNode(const std::string& group, const std::string& title, const ui::editor::ItemRef& onto,
                std::int16_t shift = 0) {
    if (node(group)->tag != "OK") click(group);
    click(node(group + title), shift);
    journal.clear();
    window.messages.clear();
    drag(Control::kTreeView1, onto);
  }
  /// No item bears its temporary key, and each bears that of its title.
  void expectKeys() {
    for (std::size_t i = 1; i <= list().count(); ++i)
      EXPECT_EQ(item(i)->key(), "PlayList" + box().text() + item(i)->text());
  }
};

}  // namespace

TEST_F(Move, ForwardTheItemStandsBeforeTheOneItWasDroppedOn) {
  dragItem(3, 5);
  EXPECT_THAT(changes(), ElementsAre("library: move 2 to 3"));
  EXPECT_THAT(listed(), ElementsAre("T1", "T2", "T4", "T3", "T5"));
  EXPECT_EQ(stored("Winter"), listed());
  EXPECT_EQ(state().CurrentListItem, item(4));
  EXPECT_EQ(list().selectedItem(), item(4));
  EXPECT_EQ(buttons(), "Delete Up Down ");
  EXPECT_TRUE(journal.has("window: focus ListView1"));
  expectKeys();
}

TEST_F(Move, BackwardToo) {
  dragItem(5, 2);
  EXPECT_THAT(changes(), ElementsAre("library: move 4 to 1"));
  EXPECT_THAT(listed(), ElementsAre("T1", "T5", "T2", "T3", "T4"));
  EXPECT_EQ(stored("Winter"), listed());
  expectKeys();
}

TEST_F(Move, OntoItselfOrBesideTheItemsNothingChanges) {
  dragItem(3, 3);
  click(item(2));
  drag(Control::kListView1, nullptr);
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_THAT(listed(), ElementsAre("T1", "T2", "T3", "T4", "T5"));
  EXPECT_EQ(state().CurrentListItem, item(2)) << "not even the selection";
  EXPECT_EQ(list().selectedItem(), item(2));
  EXPECT_EQ(buttons(), "Delete Up Down ");
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Move, WithinTheListACopyIsRefused) {
  click(item(1), kShiftDown);
  drag(Control::kListView1, item(4));
  EXPECT_THAT(window.messages, ElementsAre(kDuplicate));
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_THAT(listed(), SizeIs(5));
}

TEST_F(Move, ACutWithCtrlStillDownReordersWhatIsStoredAndIsThenRefused) {
  click(item(1));
  key(ui::editor::kCtrlKey, kCtrlDown);
  key(ui::editor::kXKey, kCtrlDown);
  window.item = item(4);
  window.events->ListView1_ItemClick(item(4));
  key(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(window.messages, ElementsAre(kDuplicate));
  EXPECT_THAT(changes(), ElementsAre("library: move 0 to 2"));
  EXPECT_THAT(listed(), ElementsAre("T1", "T2", "T3", "T4", "T5")) << "out of step until the next fill";
  EXPECT_THAT(stored("Winter"), ElementsAre("T2", "T3", "T1", "T4", "T5"));
  choose("Winter");
  EXPECT_EQ(stored("Winter"), listed());
}

TEST_F(Move, ACutWithoutCtrlsOwnKeyMovesAndTheNextPasteIsACopy) {
  click(item(1));
  key(ui::editor::kXKey, kCtrlDown);
  window.events->ListView1_ItemClick(item(4));
  key(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(listed(), ElementsAre("T2", "T3", "T1", "T4", "T5"));
  EXPECT_EQ(stored("Winter"), listed());
  EXPECT_EQ(state().ClipItem, item(3));
  EXPECT_EQ(state().ClipIsCopy, 1);
  window.messages.clear();
  key(ui::editor::kVKey, kCtrlDown);
  // Nothing refuses it where Ctrl's own key was not told: it is stored twice, and the list can't show that.
  EXPECT_THAT(changes(), ElementsAre("library: move 0 to 2", "library: append T1 to Winter"));
  EXPECT_THAT(window.messages, ElementsAre(report("MoveNode", 35602)));
}

TEST_F(Move, ACutItemWhoseListIsGoneIsNotMoved) {
  click(item(2));
  key(ui::editor::kXKey, kCtrlDown);
  choose("Autumn");
  click(item(1));
  key(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(window.messages, ElementsAre(report("MoveNode", 35601)));
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Move, ACopiedItemIsLookedForInThePlaylistThatIsShown) {
  click(item(2));
  key(ui::editor::kCKey, kCtrlDown);
  choose("Autumn");
  click(item(1));
  key(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(window.messages, ElementsAre("Error: T2 is not on the playlist: Autumn"));
  EXPECT_THAT(listed(), ElementsAre("Sky", "Leaf")) << "the new item is gone again";
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Move, ATitleOfTheLibraryIsCopied) {
  dragNode("AlbumBlue", "Sky", item(2));
  EXPECT_THAT(changes(), ElementsAre("library: append Sky to Winter"));
  EXPECT_THAT(listed(), ElementsAre("T1", "Sky", "T2", "T3", "T4", "T5")) << "where it was dropped";
  EXPECT_THAT(stored("Winter"), ElementsAre("T1", "T2", "T3", "T4", "T5", "Sky")) << "and at the end";
  EXPECT_THAT(below("AlbumBlue"), ElementsAre("Sky", "Sea"));
  EXPECT_EQ(item(2)->tag, "http:Sky");
  expectKeys();
  choose("Winter");
  EXPECT_EQ(stored("Winter"), listed());
}

TEST_F(Move, DroppedBesideTheItemsItStandsAtTheEnd) {
  dragNode("GenreFolk", "Leaf", nullptr);
  EXPECT_EQ(listed().back(), "Leaf");
  EXPECT_EQ(state().CurrentListItem, item(6));
  click("All Audio");
  dragNode("All Audio", "Moss", nullptr);
  EXPECT_THAT(changes(), ElementsAre("library: append Moss to Winter"));
}

TEST_F(Move, IntoAnEmptyListTheItemIsTheFirst) {
  playlist("Winter")->members.clear();
  choose("Winter");
  dragNode("AlbumBlue", "Sky", nullptr);
  EXPECT_THAT(listed(), ElementsAre("Sky"));
  EXPECT_EQ(state().CurrentListItem, item(1));
  EXPECT_EQ(buttons(), "Delete ");
}

TEST_F(Move, AMemberOfAnotherPlaylistIsMoved) {
  dragNode("PlayListAutumn", "Leaf", item(1));
  EXPECT_THAT(journal.with("library: "),
              ElementsAre("library: append Leaf to Winter", "library: remove Leaf from Autumn"));
  EXPECT_THAT(stored("Autumn"), ElementsAre("Sky"));
  EXPECT_THAT(stored("Winter"), ElementsAre("T1", "T2", "T3", "T4", "T5", "Leaf"));
  EXPECT_THAT(below("PlayListAutumn"), ElementsAre("Sky"));
  EXPECT_THAT(listed(), ElementsAre("Leaf", "T1", "T2", "T3", "T4", "T5"));
  expectKeys();
}

TEST_F(Move, WithShiftItIsCopied) {
  dragNode("PlayListAutumn", "Leaf", item(1), kShiftDown);
  EXPECT_THAT(changes(), ElementsAre("library: append Leaf to Winter"));
  EXPECT_THAT(below("PlayListAutumn"), ElementsAre("Sky", "Leaf"));
}

TEST_F(Move, WithinOnePlaylistThroughTheTreeItIsADuplicateAndStays) {
  dragNode("PlayListWinter", "T3", item(1));
  EXPECT_THAT(window.messages, ElementsAre(kDuplicate));
  EXPECT_THAT(below("PlayListWinter"), SizeIs(5));
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Move, ATitleThatThePlaylistHoldsIsADuplicate) {
  playlist("Winter")->members.push_back(track("Sky"));
  choose("Winter");
  dragNode("AlbumBlue", "Sky", item(1));
  EXPECT_THAT(window.messages, ElementsAre(kDuplicate));
  EXPECT_THAT(listed(), SizeIs(6));
}

TEST_F(Move, AMemberWhoseTitleHasChangedIsFoundByItsSource) {
  click("PlayListAutumn");
  track("Leaf")->title = "Leaves";
  dragNode("PlayListAutumn", "Leaf", item(1), kShiftDown);
  EXPECT_THAT(changes(), ElementsAre("library: append Leaves to Winter"));
  EXPECT_EQ(item(1)->text(), "Leaf");
}

TEST_F(Move, AMemberThatHasGoneMeanwhileIsNotOnThePlaylist) {
  click("PlayListAutumn");
  playlist("Autumn")->members.pop_back();
  dragNode("PlayListAutumn", "Leaf", item(1));
  EXPECT_THAT(window.messages, ElementsAre("Error: Leaf is not on the playlist: Winter"));
  EXPECT_THAT(listed(), SizeIs(5));
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Move, ATitleThatTheLibraryHasLostIsNotFound) {
  click("AlbumBlue");
  track("Sky")->title = "Heaven";
  dragNode("AlbumBlue", "Sky", item(1));
  EXPECT_THAT(window.messages, ElementsAre("Error, could not find media: http:Sky"));
  EXPECT_THAT(listed(), SizeIs(5));
}

TEST_F(Move, ARefusedAdditionStaysUnderItsTemporaryKey) {
  playlist("Winter")->refuses = true;
  dragNode("AlbumBlue", "Sky", item(2));
  EXPECT_THAT(window.messages, ElementsAre(report("Add_Media_Item", 70)));
  EXPECT_EQ(item(2)->key(), "TEMPKEYPlayListWinterSky");
  EXPECT_EQ(state().CurrentListItem, nullptr);
  EXPECT_THAT(journal.with("window: focus"), IsEmpty()) << "the move stops there";
}

TEST_F(Move, APlaylistThatCanNotBeReadIsShownToHoldWhatIsNotStored) {
  dragNode("AlbumBlue", "Sea", nullptr);
  choose("Autumn");
  playlist("Autumn")->title = "Fall";
  dragNode("AlbumBlue", "Sea", nullptr);
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_EQ(listed().back(), "Sea");
}

TEST_F(Move, AGroupThatBearsThePlaylistsNameSendsItsTitleToWhatTheTreeHasReadLast) {
  library.attributes["album"].push_back("Winter");
  library.addTrack("Frost", "Ann", "Winter", "Folk")->url = "http:Frost";
  plugin.stale.markCategories();
  form().Close_Button_Click();
  open();
  choose("Winter");
  click("AlbumWinter");
  click("PlayListAutumn");
  dragNode("AlbumWinter", "Frost", item(1));
  EXPECT_THAT(changes(), ElementsAre("library: append Frost to Autumn"));
  EXPECT_EQ(state().ListPlayList, playlist("Autumn"));
}

TEST_F(Move, AnAddressIsAddedToTheLibraryUnderTheNameThatItTakes) {
  click("URLURL");
  editLabel(node("URLURL"), "  http://station ");
  click("URLURL");
  journal.clear();
  drag(Control::kTreeView1, item(1));
  EXPECT_THAT(changes(),
              ElementsAre("library: append http://station to Winter", "library: add http://station"));
  EXPECT_LT(journal.find("library: add http://station"),
            journal.find("library: append http://station to Winter"));
  EXPECT_EQ(item(1)->text(), "http://station");
  EXPECT_EQ(item(1)->tag, "http://station");
  expectKeys();
}

TEST_F(Move, AnAddressThatTheLibraryRefusesIsInvalid) {
  click("URLURL");
  editLabel(node("URLURL"), "nonsense");
  library.failing = {"add"};
  drag(Control::kTreeView1, item(1));
  EXPECT_THAT(window.messages, ElementsAre("Error: Could not add nonsense.  Invalid media item."));
  EXPECT_THAT(listed(), SizeIs(5));
}

TEST_F(Move, AKnownAddressIsNotAddedAgain) {
  library.addTrack("http://station", "", "", "");
  click("URLURL");
  editLabel(node("URLURL"), "http://station");
  drag(Control::kTreeView1, item(1));
  EXPECT_THAT(changes(), ElementsAre("library: append http://station to Winter"));
}

TEST_F(Move, WhatTheTreePickedUpIsPastedIntoTheList) {
  click("PlayListAutumn");
  click("PlayListAutumnSky");
  window.events->TreeView1_KeyDown(ui::editor::kXKey, kCtrlDown);
  click(item(2));
  key(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(changes(), ElementsAre("library: append Sky to Winter", "library: remove Sky from Autumn"));
  EXPECT_EQ(state().ClipItem, item(2));
}

TEST_F(Move, WhatWasCutMovesAlsoWhenItsPlaylistWasReadAnewSince) {
  click("PlayListAutumn");
  click("PlayListAutumnSky");
  window.events->TreeView1_KeyDown(ui::editor::kXKey, kCtrlDown);
  window.events->TreeView1_Expand(node("PlayListAutumn"));
  click(item(2));
  key(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_THAT(stored("Autumn"), ElementsAre("Leaf"));
}

TEST_F(Move, UpAndDownByTheButtons) {
  click(item(3));
  window.events->MoveUp_Button_Click();
  EXPECT_THAT(listed(), ElementsAre("T1", "T3", "T2", "T4", "T5"));
  window.events->MoveDown_Button_Click();
  window.events->MoveDown_Button_Click();
  EXPECT_THAT(listed(), ElementsAre("T1", "T2", "T4", "T3", "T5"));
  window.events->MoveDown_Button_Click();
  EXPECT_THAT(changes(), ElementsAre("library: move 2 to 1", "library: move 1 to 2", "library: move 2 to 3",
                                     "library: move 3 to 4"))
      << "the last step has no target";
  EXPECT_EQ(stored("Winter"), listed());
  EXPECT_EQ(state().CurrentListItem, item(5));
  window.events->MoveDown_Button_Click();
  click(item(1));
  window.events->MoveUp_Button_Click();
  EXPECT_THAT(changes(), SizeIs(4)) << "there is nothing beyond the ends";
  expectKeys();
}

TEST_F(Move, TheButtonsServeTheListOnly) {
  click(item(3));
  window.events->TreeView1_GotFocus();
  window.events->MoveUp_Button_Click();
  window.events->MoveDown_Button_Click();
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Move, WithATitleLeftOutTheWrongStoredItemMoves) {
  auto& members = playlist("Winter")->members;
  members.insert(members.begin(), members[0]);
  choose("Winter");
  window.messages.clear();
  click(item(3));
  window.events->MoveUp_Button_Click();
  EXPECT_THAT(changes(), ElementsAre("library: move 2 to 1"));
  EXPECT_THAT(stored("Winter"), ElementsAre("T1", "T2", "T1", "T3", "T4", "T5"));
}

TEST_F(Move, AReorderThatIsRefusedChangesNothing) {
  playlist("Winter")->refuses = true;
  dragItem(5, 2);
  EXPECT_THAT(window.messages, ElementsAre(report("MoveNode", 70)));
  EXPECT_THAT(listed(), ElementsAre("T1", "T2", "T3", "T4", "T5"));
}

TEST_F(Move, APlaylistRenamedElsewhereIsSoughtByItsOldName) {
  playlist("Winter")->title = "Frost";
  dragNode("AlbumBlue", "Sky", item(1));
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_EQ(state().ListPlayList, nullptr);
}

TEST_F(Move, TheMoveButtonsAndRenameDoNotAskWhetherADragIsUnderWay) {
  click(item(3));
  window.events->ListView1_MouseMove(ui::editor::kLeftButton, 0, 0, 0);
  ASSERT_TRUE(state().Dragging);
  window.events->MoveUp_Button_Click();
  EXPECT_THAT(changes(), ElementsAre("library: move 2 to 1"));
  window.events->Rename_Button_Click();
  EXPECT_TRUE(journal.has("window: label edit"));
}

TEST_F(Move, WithoutACurrentItemAMoveIsReported) {
  window.events->ListView1_GotFocus();
  window.events->MoveUp_Button_Click();
  window.events->MoveDown_Button_Click();
  EXPECT_THAT(window.messages,
              ElementsAre(report("MoveUp_Button_Click", 91), report("MoveDown_Button_Click", 91)));
}

TEST_F(Move, AnAddressShowsTheNameThatTheLibraryKeepsForIt) {
  click("URLURL");
  editLabel(node("URLURL"), "http://station");
  tree().text(node("URLURL"), "My station");
  journal.clear();
  drag(Control::kTreeView1, item(1));
  EXPECT_EQ(item(1)->text(), "http://station") << "the library has refused the other name";
  EXPECT_EQ(node("URLURL")->text(), "http://station");
  EXPECT_EQ(item(1)->key(), "PlayListWinterMy station");
  EXPECT_THAT(journal.with("SaveINISetting(\"Media Library\""), SizeIs(1));
}

TEST_F(Move, AMemberLeavesItsPlaylistAlsoWhereTheOtherCanNotBeRead) {
  playlist("Winter")->title = "Frost";
  dragNode("PlayListAutumn", "Leaf", item(1));
  EXPECT_THAT(changes(), ElementsAre("library: remove Leaf from Autumn"));
  EXPECT_EQ(item(1)->text(), "Leaf");
}
