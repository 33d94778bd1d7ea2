// What may be dragged, how a drag looks, and where it ends.
#include "ui/editor/EditorHouse.hpp"

using support::Control;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::editor::DragState;
using ui::editor::kLeftButton;
using ui::editor::kRightButton;

namespace {

class Drag : public support::EditorHouse {
 protected:
  void SetUp() override {
    EditorHouse::SetUp();
    for (int i = 1; i <= 5; ++i) {
      const std::string title = "T" + std::to_string(i);
      playlist("Winter")->members.push_back(library.addTrack(title, "A", "B", "C"));
    }
    open();
  }
  void dragOver(const ui::editor::ItemRef& hit, float y, DragState state = DragState::kOver) {
    journal.clear();
    window.item = hit;
    window.events->ListView1_DragOver(Control::kTreeView1, 0, y, state);
  }
  void startInTree(const std::string& key) {
    click(key);
    journal.clear();
    window.events->TreeView1_MouseMove(kLeftButton, 0, 0, 0);
  }
};

}  // namespace

TEST_F(Drag, ATitleCanBeDraggedAndAGroupOrARootCanNot) {
  click("AlbumBlue");
  click("PlayListWinter");
  click("All Audio");
  for (const char* key : {"AlbumBlueSky", "PlayListWinterMoss", "All AudioSky"}) {
    startInTree(key);
    EXPECT_THAT(journal.lines(), Contains("window: drag begins in TreeView1")) << key;
  }
  for (const char* key : {"AlbumBlue", "Album", "PlayListWinter", "PlayListAutumn", "PlayList", "All Audio",
                          "URLURL", "URLBrowse", "URL"}) {
    startInTree(key);
    EXPECT_THAT(journal.with("window: drag"), IsEmpty()) << key;
  }
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Drag, AnAddressEntryInWhichSomethingWasTypedCanBeDragged) {
  click("URLURL");
  editLabel(node("URLURL"), "http://station");
  EXPECT_TRUE(form().IsCopyable(node("URLURL")));
  EXPECT_FALSE(form().IsCopyable(nullptr));
  editLabel(node("URLURL"), " ");
  ASSERT_EQ(node("URLURL")->text(), "Enter URL Here");
  ASSERT_EQ(node("URLURL")->tag, "http://station");
  EXPECT_FALSE(form().IsCopyable(node("URLURL"))) << "its text counts, and not its tag";
}

TEST_F(Drag, ADragBeginsWithTheLeftButtonOverSomething) {
  click("AlbumBlue");
  click("AlbumBlueSky");
  journal.clear();
  window.events->TreeView1_MouseMove(kRightButton, 0, 0, 0);
  window.events->TreeView1_MouseMove(0, 0, 0, 0);
  window.node = nullptr;
  window.events->TreeView1_MouseMove(kLeftButton, 0, 0, 0);
  EXPECT_THAT(journal.lines(), IsEmpty());
  EXPECT_FALSE(state().Dragging);
  window.node = node("AlbumBlueSky");
  window.events->TreeView1_MouseMove(kLeftButton, 0, 0, 0);
  EXPECT_THAT(journal.lines(), ElementsAre("window: TreeView1 drags No", "window: drag begins in TreeView1"));
  EXPECT_TRUE(state().Dragging);
}

TEST_F(Drag, AListItemIsDraggedWithTheOtherImage) {
  click(item(1));
  journal.clear();
  window.events->ListView1_MouseMove(kRightButton, 0, 0, 0);
  window.item = nullptr;
  window.events->ListView1_MouseMove(kLeftButton, 0, 0, 0);
  EXPECT_THAT(journal.lines(), IsEmpty());
  window.item = item(1);
  window.events->ListView1_MouseMove(kLeftButton, 0, 0, 0);
  EXPECT_THAT(journal.lines(),
              ElementsAre("window: ListView1 drags Drag", "window: drag begins in ListView1"));
}

TEST_F(Drag, OverTheTreeNoDropIsPossible) {
  tree().dropHighlight(node("Album"));
  window.events->TreeView1_DragOver(Control::kListView1, 0, 0, DragState::kOver);
  EXPECT_EQ(tree().dropHighlight(), node("Album")) << "nothing is being dragged";
  click(item(1));
  window.events->ListView1_MouseMove(kLeftButton, 0, 0, 0);
  journal.clear();
  window.events->TreeView1_DragOver(Control::kListView1, 0, 0, DragState::kOver);
  EXPECT_EQ(tree().dropHighlight(), nullptr);
  EXPECT_THAT(journal.lines(), ElementsAre("window: ListView1 drags No"));
  window.events->TreeView1_DragDrop(Control::kListView1, 0, 0);
  EXPECT_FALSE(state().Dragging);
  EXPECT_TRUE(journal.has("window: ListView1 pointer 0"));
  EXPECT_TRUE(journal.has("window: drag ends in ListView1"));
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Drag, OverTheListTheItemIsMarked) {
  click("AlbumBlue");
  dragOver(item(1), 1000);
  EXPECT_EQ(list().dropHighlight(), nullptr) << "nothing is being dragged";
  startInTree("AlbumBlueSky");
  dragOver(item(1), 1000, DragState::kEnter);
  EXPECT_EQ(list().dropHighlight(), item(1));
  EXPECT_THAT(journal.lines(), ElementsAre("window: TreeView1 drags Drag"));
  dragOver(item(2), 1000);
  EXPECT_EQ(list().dropHighlight(), item(2));
  dragOver(item(2), 1000, DragState::kLeave);
  EXPECT_EQ(list().dropHighlight(), nullptr);
  EXPECT_THAT(journal.lines(), ElementsAre("window: TreeView1 drags No"));
  dragOver(item(2), 1000);
  dragOver(nullptr, 1000);
  EXPECT_EQ(list().dropHighlight(), nullptr);
  EXPECT_THAT(journal.lines(), ElementsAre("window: TreeView1 drags Drag"));
}

TEST_F(Drag, AtItsEdgesTheListScrolls) {
  choose("Winter");
  click("AlbumBlue");
  startInTree("AlbumBlueSky");
  dragOver(item(3), 4335 - 375);
  EXPECT_THAT(journal.with("window: brings"), IsEmpty());
  dragOver(item(3), 4335 - 374);
  EXPECT_THAT(journal.with("window: brings"), ElementsAre("window: brings into sight T3"));
  dragOver(item(6), 4335 - 374);
  EXPECT_THAT(journal.with("window: brings"), IsEmpty());
  dragOver(item(3), 375);
  EXPECT_THAT(journal.with("window: brings"), IsEmpty());
  dragOver(item(3), 374);
  EXPECT_THAT(journal.with("window: brings"), ElementsAre("window: brings into sight T1"));
  dragOver(item(1), 374);
  EXPECT_THAT(journal.with("window: brings"), IsEmpty());
}

TEST_F(Drag, OverAnEmptyListADropIsPossible) {
  playlist("Winter")->members.clear();
  choose("Winter");
  click("AlbumBlue");
  startInTree("AlbumBlueSky");
  dragOver(nullptr, 1000, DragState::kLeave);
  EXPECT_THAT(journal.lines(), ElementsAre("window: TreeView1 drags Drag"));
}

TEST_F(Drag, ADropEndsTheDragInAnyCase) {
  click("AlbumBlue");
  click("AlbumBlueSea");
  drag(Control::kTreeView1, item(1));
  EXPECT_FALSE(state().Dragging);
  EXPECT_EQ(list().dropHighlight(), nullptr);
  EXPECT_TRUE(journal.has("window: drag ends in TreeView1"));
  EXPECT_TRUE(journal.has("window: TreeView1 pointer 1"));
}

TEST_F(Drag, OneThatEndsElsewhereIsStillUnderWay) {
  click(item(1));
  window.events->ListView1_MouseMove(kLeftButton, 0, 0, 0);
  window.messages.clear();
  window.events->New_PlayList_Click();
  EXPECT_THAT(window.messages, ElementsAre("Sorry, can't add a new PlayList while dragging"));
  window.events->Delete_Button_Click();
  EXPECT_THAT(window.messages, ElementsAre("Sorry, can't add a new PlayList while dragging"));
  drag(Control::kListView1, nullptr);
  window.events->Delete_Button_Click();
  EXPECT_EQ(window.messages.back(), "Are you sure you want to delete Sky from the playlist?");
}

TEST_F(Drag, OpenedAnewNothingIsUnderWay) {
  click(item(1));
  window.events->ListView1_MouseMove(kLeftButton, 0, 0, 0);
  form().Close_Button_Click();
  open();
  EXPECT_FALSE(state().Dragging);
}

TEST_F(Drag, EachFailureIsToldUnderTheNameOfWhatFailed) {
  click("AlbumBlue");
  click("AlbumBlueSky");
  window.item = item(1);
  auto& events = *window.events;
  const auto told = [&](const char* call, const char* name, const std::function<void()>& event) {
    window.messages.clear();
    window.failing = {call};
    event();
    window.failing.clear();
    EXPECT_THAT(window.messages, ElementsAre(report(name, 57))) << call;
  };
  told("hit test", "TreeView1 MouseDown", [&] { events.TreeView1_MouseDown(kLeftButton, 0, 0, 0); });
  told("hit test", "ListView1 MouseDown", [&] { events.ListView1_MouseDown(kLeftButton, 0, 0, 0); });
  told("label edit", "TreeView1_KeyDown", [&] { events.TreeView1_KeyDown(ui::editor::kEnterKey, 0); });
  told("drag begins in TreeView1", "Treeview1 MouseMove",
       [&] { events.TreeView1_MouseMove(kLeftButton, 0, 0, 0); });
  told("drag begins in ListView1", "Listview1 MouseMove",
       [&] { events.ListView1_MouseMove(kLeftButton, 0, 0, 0); });
  told("ListView1 drags No", "TreeView1_DragOver",
       [&] { events.TreeView1_DragOver(Control::kListView1, 0, 0, DragState::kOver); });
  told("TreeView1 drags Drag", "ListView1_DragOver",
       [&] { events.ListView1_DragOver(Control::kTreeView1, 0, 1000, DragState::kOver); });
  told("hit test", "ListView1_DragDrop", [&] { events.ListView1_DragDrop(Control::kTreeView1, 0, 1000); });
  EXPECT_FALSE(state().Dragging) << "the drag has ended all the same";
  told("ListView1 pointer 0", "TreeView1_DragDrop",
       [&] { events.TreeView1_DragDrop(Control::kListView1, 0, 0); });
  told("label edit", "TreeView1_NodeClick", [&] { events.TreeView1_NodeClick(node("URLURL")); });
}

TEST_F(Drag, WhatNoBranchHoldsIsReportedWhenItIsAskedWhetherItCanBeCopied) {
  click("AlbumBlue");
  const auto sky = node("AlbumBlueSky");
  click("PlayList");  // a root has no parent
  window.messages.clear();
  EXPECT_FALSE(form().IsCopyable(sky));
  EXPECT_THAT(window.messages, ElementsAre(report("IsCopyable", 91)));
}
