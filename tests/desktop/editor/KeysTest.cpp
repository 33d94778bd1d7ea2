// The playlist editor by keyboard: commands, choices, type-ahead, access keys and the edit of a label.
#include "EditorScene.hpp"

using support::Control;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Keyboard : public support::EditorScene {
 protected:
  QLineEdit* labelEdit() { return pane().tree().findChild<QLineEdit*>(); }
  /// All that is reported, but for keys that are let go: nobody waits for these.
  std::vector<std::string> presses() {
    std::vector<std::string> found;
    for (const std::string& line : journal.lines())
      if (line.find(" key up ") == std::string::npos) found.push_back(line);
    return found;
  }
  void beginEdit(const char* nodeKey) {
    models.TreeView1.selectedItem(models.TreeView1.find(nodeKey));
    window->startLabelEdit();
  }
};

}  // namespace

TEST_F(Keyboard, TheFirstKeyInATreeThatHasTheFocusTellsOfTheFocus) {
  open();
  key("Delete");
  ASSERT_TRUE(reported("tree key 46"));
  EXPECT_THAT(presses(), ElementsAre("tree focus", "tree key 46"));
}

TEST_F(Keyboard, CommandsComeByTheirCodes) {
  open();
  for (const auto& [name, report] :
       {std::pair("Insert", "tree key 45"), std::pair("ctrl+c", "tree key 67 2"),
        std::pair("ctrl+x", "tree key 88 2"), std::pair("Return", "tree key 13")}) {
    key(name);
    EXPECT_TRUE(reported(report)) << name;
  }
  EXPECT_TRUE(journal.has("tree key up 17"));
  clickAt(item("Two"));
  ASSERT_TRUE(reported("click Two"));
  for (const auto& [name, report] : {std::pair("ctrl+v", "list key 86 2"), std::pair("F1", "list key 112")}) {
    key(name);
    EXPECT_TRUE(reported(report)) << name;
  }
}

TEST_F(Keyboard, WhatIsChosenByArrowsIsPressedAndClicked) {
  open();
  models.TreeView1.selectedItem(models.TreeView1.find("AlbumBlue"));
  key("Down");
  ASSERT_TRUE(reported("click Sky"));
  EXPECT_THAT(journal.lines(), ElementsAre("tree focus", "tree press Sky 1", "click Sky"));
  EXPECT_EQ(models.TreeView1.selectedItem()->text(), "Sky");
  key("Left");
  ASSERT_TRUE(reported("click Blue"));
  key("Left");
  ASSERT_TRUE(until([&] { return !models.TreeView1.find("AlbumBlue")->expanded(); }));
  key("Right");
  EXPECT_TRUE(reported("expand Blue"));
}

TEST_F(Keyboard, TypingFindsAName) {
  open();
  type("gr");
  ASSERT_TRUE(reported("click Green"));
  EXPECT_EQ(models.TreeView1.selectedItem()->text(), "Green");
}

TEST_F(Keyboard, TheListGoesByArrowsToo) {
  open();
  pane().list().setFocus();
  ASSERT_TRUE(reported("list focus"));
  key("Down");
  ASSERT_TRUE(reported("click One"));
  key("End");
  ASSERT_TRUE(reported("click Three"));
  EXPECT_EQ(models.ListView1.selectedItem()->text(), "Three");
  EXPECT_TRUE(journal.has("list press Three 1"));
}

TEST_F(Keyboard, AccessKeysPressButtons) {
  open();
  for (const auto& [name, report] :
       {std::pair("alt+r", "rename"), std::pair("alt+d", "delete"), std::pair("alt+u", "up")}) {
    key(name);
    EXPECT_TRUE(reported(report)) << name;
  }
  window->enabled(Control::kMoveDown_Button, false);
  key("alt+n");
  EXPECT_TRUE(reported("new")) << "two bear the same, but one is disabled";
}

TEST_F(Keyboard, AnAccessKeyOfTwoButtonsGoesFromOneToTheOther) {
  open();
  key("alt+n");
  ASSERT_TRUE(until([&] { return pane().control(Control::kNew_PlayList).hasFocus(); }));
  key("alt+n");
  ASSERT_TRUE(until([&] { return pane().control(Control::kMoveDown_Button).hasFocus(); }));
  EXPECT_FALSE(journal.has("new") || journal.has("down"))
      << "neither is pressed by a key that may mean the other";
  key("alt+n");
  ASSERT_TRUE(until([&] { return pane().control(Control::kNew_PlayList).hasFocus(); }));
  key("space");
  EXPECT_TRUE(reported("new"));
}

TEST_F(Keyboard, TheFocusIsToldWhenItComesFromAnotherControl) {
  open();
  clickAt(item("One"));
  ASSERT_TRUE(reported("click One"));
  EXPECT_EQ(journal.count("list focus"), 1U);
  window->focus(Control::kTreeView1);
  EXPECT_EQ(journal.count("tree focus"), 1U);
  window->focus(Control::kTreeView1);
  EXPECT_EQ(journal.count("tree focus"), 1U) << "it has it";
}

TEST_F(Keyboard, ALabelIsEditedInItsPlace) {
  open();
  beginEdit("PlayListAutumn");
  ASSERT_NE(labelEdit(), nullptr);
  ASSERT_TRUE(until([&] { return labelEdit()->hasFocus(); }));
  EXPECT_EQ(labelEdit()->selectedText(), "Autumn");
  support::ScreenShot("editor-label");
  type("Spring");
  key("Return");
  ASSERT_TRUE(reported("after edit Spring"));
  EXPECT_THAT(presses(), ElementsAre("before edit", "after edit Spring"))
      << "what is typed there is nothing to the tree";
  EXPECT_EQ(models.TreeView1.find("PlayListAutumn")->text(), "Spring!");
}

TEST_F(Keyboard, EscapeLeavesALabelAsItWas) {
  open();
  beginEdit("PlayListAutumn");
  ASSERT_TRUE(until([&] { return labelEdit() != nullptr && labelEdit()->hasFocus(); }));
  type("Spring");
  key("Escape");
  ASSERT_TRUE(until([&] { return pane().tree().hasFocus(); }));
  EXPECT_THAT(presses(), ElementsAre("before edit"));
  EXPECT_EQ(models.TreeView1.find("PlayListAutumn")->text(), "Autumn");
}

TEST_F(Keyboard, ALabelThatMayNotBeEditedIsNot) {
  open();
  reports.editable = false;
  beginEdit("AlbumBlue");
  EXPECT_EQ(labelEdit(), nullptr);
  EXPECT_TRUE(journal.has("before edit"));
}

TEST_F(Keyboard, ARefusedLabelStaysAsItWas) {
  open();
  reports.acceptsLabel = false;
  beginEdit("PlayListAutumn");
  ASSERT_TRUE(until([&] { return labelEdit() != nullptr && labelEdit()->hasFocus(); }));
  type("Spring");
  clickAt(node("Green"));
  ASSERT_TRUE(reported("after edit Spring")) << "an edit ends with its focus";
  EXPECT_EQ(models.TreeView1.find("PlayListAutumn")->text(), "Autumn");
}

TEST_F(Keyboard, AnUnchangedLabelKeepsBytesThatNobodyCanType) {
  open();
  const std::string odd = "Au\xfftumn";
  models.TreeView1.text(models.TreeView1.find("PlayListAutumn"), odd);
  beginEdit("PlayListAutumn");
  ASSERT_TRUE(until([&] { return labelEdit() != nullptr && labelEdit()->hasFocus(); }));
  key("Return");
  EXPECT_TRUE(reported("after edit " + odd));
}
