// Clicks and drags in the playlist editor's panes, with a real mouse.
#include "EditorScene.hpp"

using support::Control;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class Mouse : public support::EditorScene {
 protected:
  static void press(QPoint at) {
    mouseTo(at);
    tool({"mousedown", "1"});
  }
  static void release() { tool({"mouseup", "1"}); }
  QPoint beside() { return pane().mapToGlobal(QPoint(480, 335)); }
  std::vector<std::string> drops() {
    auto found = journal.with("list drop");
    for (const std::string& line : journal.with("tree drop")) found.push_back(line);
    return found;
  }
};

}  // namespace

TEST_F(Mouse, APressIsReportedBeforeTheClickAndTheNodeIsSelectedByThen) {
  open();
  reports.onTreePress = [&] { journal.add("selected " + models.TreeView1.selectedItem()->text()); };
  clickAt(node("Green"));
  ASSERT_TRUE(reported("click Green"));
  EXPECT_THAT(journal.lines(),
              ElementsAre("tree focus", "tree press Green 1", "selected Green", "click Green"));
  journal.clear();
  tool({"keydown", "shift"});
  clickAt(node("Sky"));
  tool({"keyup", "shift"});
  ASSERT_TRUE(reported("click Sky"));
  EXPECT_TRUE(journal.has("tree press Sky 1 1"));
}

TEST_F(Mouse, WhatAnyButtonSelectsIsToldAsPressed) {
  open();
  clickAt(node("Sky"), "2");
  ASSERT_TRUE(reported("tree press Sky 4"));
  EXPECT_EQ(models.TreeView1.selectedItem()->text(), "Sky");
  clickAt(item("Two"), "2");
  ASSERT_TRUE(reported("list press Two 4"));
  EXPECT_EQ(models.ListView1.selectedItem()->text(), "Two");
  clickAt(node("Green"), "8");
  clickAt(item("Three"), "8");
  key("F1");
  ASSERT_TRUE(reported("list key 112"));
  EXPECT_EQ(models.TreeView1.selectedItem()->text(), "Sky") << "nobody was told of another";
  EXPECT_EQ(models.ListView1.selectedItem()->text(), "Two");
}

TEST_F(Mouse, APressedRowStaysUnderTheMouse) {
  fill();
  addItems(60);
  show();
  const QListView& list = pane().list();
  const QModelIndex last = list.indexAt(QPoint(60, list.viewport()->height() - 1));
  ASSERT_TRUE(last.isValid());
  const std::string name = last.data().toString().toStdString();
  const QRect before = list.visualRect(last);
  clickAt(list.viewport()->mapToGlobal(QPoint(60, list.viewport()->height() - 1)));
  ASSERT_TRUE(reported("click " + name));
  EXPECT_TRUE(journal.has("list press " + name + " 1"));
  EXPECT_EQ(list.visualRect(last), before);
}

TEST_F(Mouse, APressThatLeadsToAQuestionIsNoClick) {
  open();
  reports.onTreePress = [&] { window->message(ui::editor::MessageKind::kPlain, "Well?"); };
  then([&](QWidget&) { key("Return"); });
  clickAt(node("Green"));
  ASSERT_TRUE(reported("tree press Green 1"));
  ASSERT_TRUE(until([&] { return pane().isActiveWindow() && QApplication::activeModalWidget() == nullptr; }));
  EXPECT_FALSE(journal.has("click Green"));
}

TEST_F(Mouse, ABranchOpensAndClosesWithoutAClick) {
  open();
  const QPoint label = node("Blue");
  const int step = pane().tree().indentation();
  const QPoint arrow(label.x() - 30 - step / 2, label.y());
  clickAt(arrow);
  ASSERT_TRUE(until([&] { return !models.TreeView1.find("AlbumBlue")->expanded(); }));
  EXPECT_FALSE(journal.has("expand Blue")) << "that it closes is told to nobody";
  clickAt(arrow);
  ASSERT_TRUE(reported("expand Blue"));
  EXPECT_TRUE(models.TreeView1.find("AlbumBlue")->expanded());
  EXPECT_FALSE(journal.has("click Blue"));
}

TEST_F(Mouse, ATitleIsDraggedOntoAnItemOfTheList) {
  open();
  press(node("Sky"));
  mouseTo(item("Two"));
  ASSERT_TRUE(reported("list over TreeView1 enter"));
  EXPECT_EQ(models.ListView1.dropHighlight()->text(), "Two");
  ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_FALSE(QGuiApplication::overrideCursor()->pixmap().isNull()) << "the drag has its picture";
  support::ScreenShot("editor-drag");
  release();
  ASSERT_TRUE(reported("list drop TreeView1 on Two"));
  EXPECT_TRUE(journal.has("tree move Sky 1")) << "however far the mouse had gone by then";
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(models.ListView1.dropHighlight(), nullptr);
}

TEST_F(Mouse, AnItemIsDraggedWithinTheListAndPastIt) {
  open();
  press(item("Three"));
  mouseTo(item("One"));
  ASSERT_TRUE(reported("list over ListView1 enter"));
  mouseTo(node("Green"));
  ASSERT_TRUE(reported("tree over ListView1 enter"));
  EXPECT_TRUE(journal.has("list over ListView1 leave"));
  mouseTo(middleOf(Control::kListView1));
  release();
  EXPECT_TRUE(reported("list drop ListView1 on nothing"));
}

TEST_F(Mouse, DroppedBesideThePanesItIsNobodys) {
  open();
  press(node("Sky"));
  mouseTo(item("Two"));
  ASSERT_TRUE(reported("list over TreeView1 enter"));
  mouseTo(beside());
  ASSERT_TRUE(reported("list over TreeView1 leave"));
  release();
  ASSERT_TRUE(until([&] { return QGuiApplication::overrideCursor() == nullptr; }));
  EXPECT_THAT(drops(), IsEmpty());
}

TEST_F(Mouse, ADragThatAQuestionCutsOffDropsNothingLater) {
  open();
  press(node("Sky"));
  mouseTo(item("Two"));
  ASSERT_TRUE(reported("list over TreeView1 enter"));
  then([&](QWidget&) {
    release();
    key("Return");
  });
  window->message(ui::editor::MessageKind::kPlain, "Well?");
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(models.ListView1.dropHighlight(), nullptr);
  ASSERT_TRUE(until([&] { return pane().isActiveWindow(); }));
  clickAt(item("Three"));
  ASSERT_TRUE(reported("click Three"));
  clickAt(node("Green"));
  ASSERT_TRUE(reported("click Green"));
  EXPECT_THAT(drops(), IsEmpty());
}

TEST_F(Mouse, AnotherWindowThatCoversAPaneIsNoTarget) {
  open();
  QLabel cover("In the way", nullptr, Qt::Window | Qt::BypassWindowManagerHint);
  const QPoint two = item("Two");
  cover.setGeometry(QRect(two - QPoint(20, 20), QSize(80, 60)));
  cover.show();
  cover.raise();
  ASSERT_TRUE(until([&] { return QApplication::widgetAt(two) == &cover; }));
  press(node("Sky"));
  mouseTo(item("One") + QPoint(100, 0));
  ASSERT_TRUE(reported("list over TreeView1 enter"));
  mouseTo(two);
  ASSERT_TRUE(reported("list over TreeView1 leave"));
  release();
  ASSERT_TRUE(until([&] { return QGuiApplication::overrideCursor() == nullptr; }));
  EXPECT_THAT(drops(), IsEmpty());
}

TEST_F(Mouse, EscapeEndsADragAsIfOnTheTree) {
  open();
  press(node("Sky"));
  mouseTo(item("Two"));
  ASSERT_TRUE(reported("list over TreeView1 enter"));
  key("Escape");
  ASSERT_TRUE(reported("tree drop TreeView1"));
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  release();
  clickAt(node("Green"));
  ASSERT_TRUE(reported("click Green"));
  EXPECT_THAT(journal.with("list drop"), IsEmpty());
}

TEST_F(Mouse, CtrlCountsDuringADrag) {
  open();
  press(node("Sky"));
  mouseTo(item("Two"));
  ASSERT_TRUE(reported("list over TreeView1 enter"));
  tool({"keydown", "ctrl"});
  EXPECT_TRUE(reported("tree key 17 2"));
  tool({"keyup", "ctrl"});
  EXPECT_TRUE(reported("tree key up 17"));
  release();
  EXPECT_TRUE(reported("list drop TreeView1 on Two"));
}

TEST_F(Mouse, ATremblingHandDragsNothing) {
  open();
  const QPoint at = node("Sky");
  press(at);
  ASSERT_TRUE(reported("click Sky"));
  mouseTo(at + QPoint(2, 1));
  release();
  clickAt(node("Green"));
  ASSERT_TRUE(reported("click Green"));
  EXPECT_THAT(journal.with("tree move"), IsEmpty());
}

TEST_F(Mouse, ALongListScrollsWhileTheMouseRestsAtItsEdge) {
  fill();
  addItems(60);
  show();
  press(item("One"));
  mouseTo(pane().list().mapToGlobal(QPoint(60, pane().list().height() - 8)));
  ASSERT_TRUE(until([&] {
    const auto marked = models.ListView1.dropHighlight();
    return marked && marked->text() == "n59";
  })) << "without the mouse moving";
  release();
  EXPECT_TRUE(reported("list drop ListView1 on n59"));
}

TEST_F(Mouse, AModelThatChangesUnderTheMouseIsFollowed) {
  open();
  reports.onTreePress = [&] {
    models.TreeView1.removeChildren(models.TreeView1.find("AlbumBlue"));
    models.TreeView1.add("AlbumBlue", "AlbumBlueFog", "Fog", "Sound");
  };
  clickAt(node("Blue"));
  ASSERT_TRUE(reported("click Blue"));
  reports.onTreePress = [] {};
  clickAt(node("Fog"));
  EXPECT_TRUE(reported("click Fog"));
  models.TreeView1.remove(models.TreeView1.find("AlbumBlueFog"));
  EXPECT_EQ(models.TreeView1.selectedItem()->text(), "Blue");
  EXPECT_EQ(pane().tree().currentIndex().data().toString(), "Blue");
}
