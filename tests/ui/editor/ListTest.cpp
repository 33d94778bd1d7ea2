// The list of the playlist that is chosen in the drop box.
#include "ui/editor/EditorHouse.hpp"

using support::Control;
using support::MessageAnswer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ui::editor::kCtrlDown;
using ui::editor::kShiftDown;

namespace {

class List : public support::EditorHouse {
 protected:
  void SetUp() override {
    EditorHouse::SetUp();
    for (const char* title : {"One", "Two", "Three"}) {
      library.addTrack(title, "A", "B", "C");
      playlist("Winter")->members.push_back(track(title));
    }
    open();
  }
};

/// Counts how often its source is asked for.
class Counted : public support::FakeMedia {
 public:
  using FakeMedia::FakeMedia;
  [[nodiscard]] std::string sourceURL() const override {
    ++asked;
    return FakeMedia::sourceURL();
  }
  mutable int asked = 0;
};

std::string Multiple(const std::string& title, const std::string& name) {
  return "Warning: \"" + title + "\" appears multiple times in PlayList \"" + name +
         "\".  Multiple appearances do not appear, and are not supported in this editor.   Reordering items "
         "within that PlayList will leave items in an unpredictable sequence.";
}

}  // namespace

TEST_F(List, TheFirstPlaylistOfTheAlphabetShowsAtFirst) {
  EXPECT_EQ(box().text(), "Autumn");
  EXPECT_THAT(listed(), ElementsAre("Sky", "Leaf"));
  EXPECT_EQ(item(1)->key(), "PlayListAutumnSky");
  EXPECT_EQ(item(1)->tag, "file:Sky");
  EXPECT_STREQ(item(1)->image(), "Sound");
  EXPECT_EQ(list().columnCaption(), "Autumn");
  EXPECT_TRUE(list().HideColumnHeaders);
  EXPECT_EQ(list().columnWidth(), 5055 - 300);
  EXPECT_EQ(buttons(), "");
}

TEST_F(List, AChoiceInTheBoxReadsTheOtherPlaylist) {
  click(item(1));
  choose("Winter");
  EXPECT_THAT(listed(), ElementsAre("Moss", "One", "Two", "Three"));
  EXPECT_EQ(state().CurrentListItem, nullptr);
  EXPECT_EQ(list().selectedItem(), nullptr);
  EXPECT_EQ(buttons(), "");
}

TEST_F(List, ThePlaylistThatIsShownAlreadyIsNotReadAnew) {
  journal.clear();
  playlist("Autumn")->members.push_back(track("Sea"));
  choose("Autumn");
  EXPECT_THAT(listed(), ElementsAre("Sky", "Leaf", "Sea")) << "the handle's present content";
  EXPECT_THAT(journal.with("library: "), IsEmpty());
}

TEST_F(List, WhatThisWindowHasAddedShowsWithoutANewRead) {
  track("Sea")->url = "http:Sea";
  click("AlbumBlue");
  click("AlbumBlueSea");
  drag(Control::kTreeView1, item(1));
  ASSERT_THAT(listed(), ElementsAre("Sea", "Sky", "Leaf"));
  journal.clear();
  choose("Autumn");
  EXPECT_THAT(listed(), ElementsAre("Sky", "Leaf", "Sea")) << "the stored order";
  EXPECT_THAT(journal.with("library: "), IsEmpty());
}

TEST_F(List, APlaylistWithNoItemsIsAnEmptyList) {
  click(item(1));
  ASSERT_EQ(buttons(), "Delete Down ");
  playlist("Winter")->members.clear();
  choose("Winter");
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_EQ(buttons(), "");
}

TEST_F(List, AnEmptyListTurnsOffWhicheverButtonsWereOn) {
  playlist("Autumn")->members.clear();
  choose("Winter");
  click(item(2));
  ASSERT_EQ(buttons(), "Delete Up Down ");
  choose("Autumn");
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_EQ(buttons(), "");
  click("PlayListWinter");
  ASSERT_EQ(buttons(), "Delete Rename ");
  choose("Autumn");
  EXPECT_EQ(buttons(), "");
}

TEST_F(List, APlaylistThatCanNotBeReadIsAnEmptyListWithoutAWord) {
  const auto kept = item(1);
  click(kept);
  library.failing = {"getPlaylistByName"};
  choose("Winter");
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_EQ(state().CurrentListItem, kept) << "it is left as it was";
}

TEST_F(List, ATitleThreeTimesIsTwoWarningsAndOneItem) {
  auto again = std::make_shared<Counted>("Moss", "", "", "");
  again->url = "elsewhere";
  auto& members = playlist("Winter")->members;
  members = {track("Moss"), again, again, track("Two")};
  window.answers = {MessageAnswer::kOk, MessageAnswer::kOk};
  choose("Winter");
  EXPECT_THAT(window.messages, ElementsAre(Multiple("Moss", "Winter"), Multiple("Moss", "Winter")));
  EXPECT_THAT(listed(), ElementsAre("Moss", "Two"));
  EXPECT_EQ(item(1)->tag, "file:Moss") << "the first appearance's";
  EXPECT_EQ(again->asked, 0) << "a skipped one is not asked for its source";
}

TEST_F(List, TheClipNeedsCtrl) {
  click(item(1));
  key(ui::editor::kCKey);
  key(ui::editor::kXKey, kShiftDown);
  EXPECT_EQ(state().ClipItem, nullptr);
  key(ui::editor::kCKey, kCtrlDown);
  EXPECT_EQ(state().ClipItem, item(1));
  EXPECT_EQ(state().ClipSource, Control::kListView1);
  EXPECT_EQ(state().ClipIsCopy, 1);
  key(ui::editor::kXKey, kCtrlDown);
  EXPECT_EQ(state().ClipIsCopy, 0);
  journal.clear();
  key(ui::editor::kVKey);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(List, CancelSilencesTheWarningOfDuplicates) {
  playlist("Winter")->members = {track("Moss"), track("Moss"), track("Moss")};
  window.answers = {MessageAnswer::kCancel};
  choose("Winter");
  EXPECT_THAT(window.messages, SizeIs(1));
  EXPECT_EQ(state().WarnAnswer, MessageAnswer::kCancel);
}

TEST_F(List, AWarningWithinAFillMayLetOtherEventsIn) {
  playlist("Winter")->members = {track("Moss"), track("Moss"), track("Two")};
  window.onMessage = [&] {
    playlist("Winter")->members.pop_back();
    callVxif("SelectMenu", "PlayList Editor");
  };
  choose("Winter");
  EXPECT_THAT(listed(), ElementsAre("Moss"));
  EXPECT_EQ(window.messages.back(), report("PlayListDropBox_Click", 9)) << "an item less than there was";
}

TEST_F(List, AFailureGivesUpTheRestOfTheFill) {
  const auto kept = item(1);
  click(kept);
  playlist("Winter")->members = {track("One"), nullptr, track("Two")};
  choose("Winter");
  EXPECT_THAT(listed(), ElementsAre("One"));
  EXPECT_THAT(window.messages, ElementsAre(report("PlayListDropBox_Click", 91)));
  EXPECT_EQ(state().CurrentListItem, kept) << "it is left as it was";
}

TEST_F(List, ALongTitleWidensTheColumn) {
  // Characters, not bytes.
  std::string title;
  for (int i = 0; i < 80; ++i) title += "\xC3\xA9";
  playlist("Winter")->members = {library.addTrack(title, "", "", ""), track("One")};
  choose("Winter");
  EXPECT_EQ(list().columnWidth(), 9600);
  choose("Autumn");
  EXPECT_EQ(list().columnWidth(), 4755);
}

TEST_F(List, TheButtonsFollowTheSelection) {
  choose("Winter");
  click(item(1));
  EXPECT_EQ(buttons(), "Delete Down ");
  click(item(2));
  EXPECT_EQ(buttons(), "Delete Up Down ");
  click(item(4));
  EXPECT_EQ(buttons(), "Delete Up ");
  click(item(1));
  EXPECT_EQ(buttons(), "Delete Down ");
  playlist("Autumn")->members = {track("Sky")};
  choose("Autumn");
  click(item(1));
  EXPECT_EQ(buttons(), "Delete ");
}

TEST_F(List, AnItemClickAsksTheStateAndNotItsArgument) {
  window.events->ListView1_ItemClick(item(1));
  EXPECT_EQ(state().CurrentListItem, nullptr) << "as long as no item is current";
  click(item(1));
  window.events->ListView1_ItemClick(item(2));
  EXPECT_EQ(state().CurrentListItem, item(2));
  window.events->ListView1_ItemClick(nullptr);
  EXPECT_THAT(window.messages, ElementsAre(report("ListView1_ItemClick", 91)));
}

TEST_F(List, AColumnClickClearsTheSelection) {
  click(item(2));
  window.events->ListView1_ColumnClick();
  EXPECT_EQ(state().CurrentListItem, nullptr);
  EXPECT_EQ(list().selectedItem(), nullptr);
  EXPECT_EQ(buttons(), "");
  EXPECT_THAT(listed(), ElementsAre("Sky", "Leaf")) << "nothing is sorted";
  window.events->ListView1_ColumnClick();
  EXPECT_THAT(window.messages, ElementsAre(report("ListView1_ColumnClick", 91)));
}

TEST_F(List, AtAPressShiftCountsAndCtrlDoesNot) {
  click(item(1), kShiftDown);
  EXPECT_EQ(state().CopyMode, 1);
  click(item(1), kCtrlDown);
  EXPECT_EQ(state().CopyMode, 0);
  key(ui::editor::kCtrlKey, kCtrlDown);
  EXPECT_EQ(state().CopyMode, 1);
  window.events->ListView1_KeyUp(ui::editor::kCtrlKey, 0);
  EXPECT_EQ(state().CopyMode, 0);
}

TEST_F(List, F1ShowsThePosition) {
  key(ui::editor::kF1Key);
  EXPECT_THAT(window.messages, ElementsAre(report("ListView1_KeyDown", 91)));
  click(item(2));
  key(ui::editor::kF1Key);
  EXPECT_TRUE(journal.has("window: plain: 2"));
}

TEST_F(List, WithNothingPickedUpCtrlVDoesNothing) {
  click(item(1));
  journal.clear();
  key(ui::editor::kVKey, kCtrlDown);
  EXPECT_THAT(journal.lines(), IsEmpty());
  EXPECT_EQ(state().ClipIsCopy, 0);
}

TEST_F(List, InsertAsksForANewPlaylistAndDeleteDeletes) {
  click(item(1));
  key(ui::editor::kInsertKey);
  EXPECT_TRUE(journal.has("window: asks \"New PlayList\": Enter the new PlayList name: []"));
  key(ui::editor::kDeleteKey);
  EXPECT_TRUE(journal.has("window: confirmation: Are you sure you want to delete Sky from the playlist?"));
}
