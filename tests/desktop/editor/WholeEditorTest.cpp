// The playlist editor as a whole: its window, its logic and playlists in files.
#include "WholeEditor.hpp"

using support::Control;
using support::WholeEditor;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(WholeEditor, APlaylistIsMadeRenamedAndDeleted) {
  open();
  then([](QWidget&) {
    type("Spring");
    key("Return");
  });
  key("alt+n");
  ASSERT_TRUE(becomes("Spring", {}));
  ASSERT_TRUE(until([&] { return current() == "Spring"; }));

  editLabelOf("Winter", "Frost");
  clickNode("Autumn");
  ASSERT_TRUE(becomes("Frost", {"Sun"})) << "a click elsewhere ends the edit";
  EXPECT_EQ(named("Winter"), nullptr);
  EXPECT_THAT(listed(), ElementsAre("Sun"));

  clickNode("Frost");
  answer("alt+y");
  key("Delete");
  ASSERT_TRUE(until([&] { return named("Frost") == nullptr; }));
  EXPECT_EQ(said, "Are you sure you want to delete the entire playlist: Frost?");
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea"));
}

TEST_F(WholeEditor, TheDeleteButtonServesThePaneThatHadTheFocusLast) {
  open();
  clickItem("Sea");
  answer("alt+y");
  clickAt(middleOf(Control::kDelete_Button));
  ASSERT_TRUE(becomes("Autumn", {"Sky"}));
  EXPECT_EQ(said, "Are you sure you want to delete Sea from the playlist?");
  clickNode("Winter");
  answer("alt+y");
  clickAt(middleOf(Control::kDelete_Button));
  ASSERT_TRUE(until([&] { return named("Winter") == nullptr; }));
  EXPECT_EQ(said, "Are you sure you want to delete the entire playlist: Winter?");
}

TEST_F(WholeEditor, WhatIsDroppedIsInTheFile) {
  open();
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));
  drag(ofBlue("Sun"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sky", "Sea", "Sun"})) << "at the end, wherever it was dropped";
  EXPECT_THAT(listed(), ElementsAre("Sun", "Sky", "Sea"));
}

TEST_F(WholeEditor, ANewPlaylistIsRefusedDuringADragWhichIsOverByThat) {
  open();
  const QPoint sun = ofBlue("Sun");
  mouseTo(sun);
  tool({"mousedown", "1"});
  mouseTo(sun + QPoint(30, 2));
  ASSERT_TRUE(until([&] { return editor->state().Dragging; }));
  mouseTo(item("Sky"));
  then([&](QWidget& asked) {
    said = dynamic_cast<QMessageBox&>(asked).text().toStdString();
    tool({"mouseup", "1"});
    key("Return");
  });
  key("alt+n");
  ASSERT_TRUE(until([&] { return !said.empty() && pane().isActiveWindow(); }));
  EXPECT_EQ(said, "Sorry, can't add a new PlayList while dragging");
  clickItem("Sea");
  clickNode("Winter");
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea"));
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));
  EXPECT_TRUE(editor->state().Dragging) << "until a later drag ends on a pane";
}

TEST_F(WholeEditor, AnItemMovesByMouseByButtonAndByKeys) {
  open();
  drag(item("Sea"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sea", "Sky"}));
  EXPECT_THAT(listed(), ElementsAre("Sea", "Sky"));
  clickItem("Sky");
  clickAt(middleOf(Control::kMoveUp_Button));
  ASSERT_TRUE(becomes("Autumn", {"Sky", "Sea"}));
  clickItem("Sea");
  key("alt+u");
  ASSERT_TRUE(becomes("Autumn", {"Sea", "Sky"}));
  EXPECT_THAT(listed(), ElementsAre("Sea", "Sky"));
}

TEST_F(WholeEditor, WhatIsCopiedInTheSourcesIsPastedIntoTheList) {
  open();
  clickAt(ofBlue("Sun"));
  ASSERT_TRUE(until([&] { return current() == "Sun"; }));
  key("ctrl+c");
  clickItem("Sky");
  key("ctrl+v");
  ASSERT_TRUE(becomes("Autumn", {"Sky", "Sea", "Sun"}));
  EXPECT_THAT(listed(), ElementsAre("Sun", "Sky", "Sea")) << "before the item that was chosen";
}

TEST_F(WholeEditor, AnItemThatMovesFarStaysInSight) {
  for (int i = 0; i < 60; ++i) {
    const std::string title = "n" + std::to_string(i);
    titles.addTrack(title, "Ann", "Blue", "Folk")->url = "http://house/" + title;
    named("Autumn")->appendItem(titles.getByName(title)->item(0));
  }
  open();
  clickItem("Sea");
  const auto inSight = [&] {
    const QListView& list = pane().list();
    const QRect row = list.visualRect(list.currentIndex());
    return list.currentIndex().data().toString() == "Sea" && !row.isEmpty() && row.top() >= 0 &&
           row.bottom() <= list.viewport()->height();
  };
  for (int i = 0; i < 30; ++i) editor->MoveDown_Button_Click();
  EXPECT_EQ(listed().at(31), "Sea");
  EXPECT_TRUE(inSight()) << "downwards";
  for (int i = 0; i < 31; ++i) editor->MoveUp_Button_Click();
  EXPECT_EQ(listed().front(), "Sea");
  EXPECT_TRUE(inSight()) << "upwards";
}

TEST_F(WholeEditor, APlaylistThatIsMadeComesInSight) {
  for (int i = 0; i < 60; ++i) make("List " + std::to_string(i), {});
  open();
  then([](QWidget&) {
    type("Zenith");
    key("Return");
  });
  key("alt+n");
  ASSERT_TRUE(until([&] { return current() == "Zenith"; }));
  node("Zenith");  // which wants to see it
}

TEST_F(WholeEditor, ADropIsOneDurableWrite) {
  open();
  int writes = 0;
  onWrite = [&](int file, const void* bytes, std::size_t size) {
    ++writes;
    return files::WriteBytes(file, bytes, size);
  };
  clickNode("Winter");
  drag(node("Sun"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sky", "Sea", "Sun"}));
  ASSERT_TRUE(becomes("Winter", {}));
  EXPECT_EQ(writes, 2) << "a move between two playlists is one in each";

  choose("Autumn");
  writes = 0;
  drag(item("Sea"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sea", "Sky", "Sun"}));
  EXPECT_EQ(writes, 1) << "reordered";

  choose("Winter");
  writes = 0;
  drag(ofBlue("Sun"), middleOf(Control::kListView1));
  ASSERT_TRUE(becomes("Winter", {"Sun"}));
  EXPECT_EQ(writes, 1) << "added";
}

TEST_F(WholeEditor, AFolderThatCanNotBeWrittenIsToldInWordsOfItsOwn) {
  open();
  denied = EACCES;
  clickItem("Sea");
  answer("Return");
  clickAt(middleOf(Control::kMoveUp_Button));
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_EQ(said.substr(0, 55), "Error in procedure PlayListEditor/MoveNode Error # 70: ")
      << "a move has no words for it";
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea"));
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));

  said.clear();
  editLabelOf("Winter", "Frost");
  answer("Return");
  key("Return");
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_EQ(
      said,
      "Error: Permission Denied, check Windows Media Player \"Tools-->Options-->Media Library-->Internet "
      "Site Rights\"");
  EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
}

TEST_F(WholeEditor, APlaylistThatOthersHaveMadeAnewGetsWhatIsDropped) {
  open();
  stored.remove(named("Autumn"));
  make("Autumn", {"Sea"});
  drag(ofBlue("Sun"), item("Sky"));
  ASSERT_TRUE(becomes("Autumn", {"Sea", "Sun"}));
  choose("Autumn");
  EXPECT_THAT(listed(), ElementsAre("Sea", "Sun"));
}

TEST_F(WholeEditor, WhatIsDroppedOnAPlaylistThatOthersHaveDeletedIsNotStored) {
  open();
  const QPoint sun = ofBlue("Sun");
  stored.remove(named("Autumn"));
  drag(sun, item("Sky"));
  EXPECT_THAT(members("Autumn"), ElementsAre("no playlist Autumn"));
  EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
  choose("Winter");
  choose("Autumn");
  EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(WholeEditor, APlaylistThatOthersHaveRenamedKeepsWhatItHolds) {
  open();
  named("Autumn")->name("Fall");
  clickItem("Sea");
  answer("alt+y");
  key("Delete");
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_THAT(members("Fall"), ElementsAre("Sky", "Sea"));
  EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
}

TEST_F(WholeEditor, AMemberIsMovedOutOfAPlaylistThatOthersMakeAnewMeanwhile) {
  open();
  choose("Autumn");
  clickNode("Winter");
  const QPoint sun = node("Sun");
  mouseTo(sun);
  tool({"mousedown", "1"});
  mouseTo(sun + QPoint(30, 2));
  ASSERT_TRUE(until([&] { return editor->state().Dragging; }));
  stored.remove(named("Winter"));
  make("Winter", {"Sky", "Sun"});
  mouseTo(item("Sea"));
  tool({"mouseup", "1"});
  ASSERT_TRUE(becomes("Winter", {"Sky"}));
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea", "Sun"));
}
