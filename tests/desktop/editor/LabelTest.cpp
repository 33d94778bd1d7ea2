// The edit of a label: it is reported before whatever has ended it.
#include "EditorScene.hpp"

using support::Control;
using ::testing::ElementsAre;
using ::testing::SizeIs;
using ui::editor::MessageKind;

namespace {

class Labels : public support::EditorScene {
 protected:
  QLineEdit* labelEdit() { return pane().tree().findChild<QLineEdit*>(); }
  /// All that is reported, but for keys that are let go: nobody waits for these.
  std::vector<std::string> said() {
    std::vector<std::string> found;
    for (const std::string& line : journal.lines())
      if (line.find(" key up ") == std::string::npos) found.push_back(line);
    return found;
  }
  /// "Autumn" is being renamed, and "Spring" is typed.
  void renameToSpring() {
    open();
    typeSpring();
  }
  void typeSpring() {
    models.TreeView1.selectedItem(models.TreeView1.find("PlayListAutumn"));
    window->startLabelEdit();
    ASSERT_TRUE(until([&] { return labelEdit() != nullptr && labelEdit()->hasFocus(); }));
    type("Spring");
    ASSERT_TRUE(until([&] { return labelEdit()->text() == "Spring"; }));
    journal.clear();
  }
  std::string label() { return models.TreeView1.find("PlayListAutumn")->text(); }
};

}  // namespace

TEST_F(Labels, AClickInTheListComesBehind) {
  renameToSpring();
  clickAt(item("One"));
  ASSERT_TRUE(reported("click One"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "list focus", "list press One 1", "click One"));
  EXPECT_EQ(label(), "Spring!");
}

TEST_F(Labels, AClickOnAnotherNodeComesBehind) {
  renameToSpring();
  clickAt(node("Green"));
  ASSERT_TRUE(reported("click Green"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "tree focus", "tree press Green 1", "click Green"));
  EXPECT_EQ(models.TreeView1.selectedItem()->text(), "Green");
}

TEST_F(Labels, TheNodeThatWasPressedIsMeantThoughTheNewNamePutsItElsewhere) {
  fill();
  ui::editor::KeyedTree& tree = models.TreeView1;
  tree.sorted(tree.find("PlayList"), true);
  tree.add("PlayList", "PlayListBirds", "Birds", "List");
  tree.add("PlayList", "PlayListClouds", "Clouds", "List");
  show();
  typeSpring();
  clickAt(node("Birds"));
  ASSERT_TRUE(reported("click Birds"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "tree focus", "tree press Birds 1", "click Birds"));
}

TEST_F(Labels, AButtonComesBehind) {
  renameToSpring();
  clickAt(middleOf(Control::kMoveUp_Button));
  ASSERT_TRUE(reported("up"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "up"));
}

TEST_F(Labels, AButtonThatTheNewNameDisablesIsNotPressed) {
  renameToSpring();
  reports.onLabel = [&] { window->enabled(Control::kDelete_Button, false); };
  clickAt(middleOf(Control::kDelete_Button));
  ASSERT_TRUE(reported("after edit Spring"));
  clickAt(middleOf(Control::kMoveUp_Button));
  ASSERT_TRUE(reported("up"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "up"));
}

TEST_F(Labels, AnAccessKeyComesBehind) {
  renameToSpring();
  key("alt+u");
  ASSERT_TRUE(reported("up"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "up"));
  EXPECT_EQ(label(), "Spring!");
}

TEST_F(Labels, TheKeyBehindTheOneThatEndsItComesBehind) {
  renameToSpring();
  key("Return");
  key("Insert");
  ASSERT_TRUE(reported("tree key 45"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "tree focus", "tree key 45"));
}

TEST_F(Labels, ClosingComesBehind) {
  renameToSpring();
  key("alt+F4");
  ASSERT_TRUE(reported("unload"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "unload"));
}

TEST_F(Labels, TheProgramsOwnClosingComesBehind) {
  renameToSpring();
  window->close();
  EXPECT_THAT(said(), ElementsAre("after edit Spring", "unload"));
}

TEST_F(Labels, TheTabulatorEndsItAndBeginsNoOther) {
  renameToSpring();
  key("Tab");
  ASSERT_TRUE(until([&] { return pane().tree().hasFocus(); }));
  ASSERT_TRUE(reported("after edit Spring"));
  EXPECT_THAT(said(), ElementsAre("after edit Spring"));
  EXPECT_EQ(models.TreeView1.selectedItem()->text(), "Spring!");
}

TEST_F(Labels, WhatIsAskedAboutItIsAnsweredBeforeTheClickComes) {
  renameToSpring();
  reports.acceptsLabel = false;
  reports.onLabel = [&] {
    then([](QWidget&) { key("Return"); });
    window->message(MessageKind::kPlain, "Error: PlayList \"Spring\" already exists");
    journal.add("answered");
  };
  clickAt(item("Two"));
  ASSERT_TRUE(reported("click Two"));
  EXPECT_THAT(said(),
              ElementsAre("after edit Spring", "answered", "list focus", "list press Two 1", "click Two"));
  EXPECT_EQ(label(), "Autumn");
}

TEST_F(Labels, ADragOutOfANodeWhosePressHasBegunTheEditComesBehind) {
  open();
  reports.onTreePress = [&] { window->startLabelEdit(); };
  const QPoint from = node("Green");
  mouseTo(from);
  tool({"mousedown", "1"});
  ASSERT_TRUE(until([&] { return labelEdit() != nullptr; }));
  mouseTo(from + QPoint(40, 0));
  mouseTo(middleOf(Control::kListView1));
  ASSERT_TRUE(reported("list over TreeView1 enter"));
  EXPECT_THAT(journal.lines(), SizeIs(testing::Ge(5)));
  EXPECT_THAT(
      std::vector(journal.lines().begin(), journal.lines().begin() + 5),
      ElementsAre("tree focus", "tree press Green 1", "before edit", "click Green", "after edit Green"));
  tool({"mouseup", "1"});
  ASSERT_TRUE(until([&] { return journal.lines().back().rfind("list drop TreeView1", 0) == 0; }));
}

TEST_F(Labels, AnEditThatNobodyIsServedOfAnyMoreIsForgotten) {
  renameToSpring();
  window->serve(nullptr, nullptr);
  window->serve(&reports, &models);
  loop.pump();
  EXPECT_THAT(said(), SizeIs(0));
  EXPECT_EQ(label(), "Autumn");
}
