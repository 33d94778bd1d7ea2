// The playlist editor when its playlists can't be written, and when others change them under its hands.
#include "WholeEditor.hpp"

using support::Control;
using support::WholeEditor;
using ::testing::ElementsAre;
using ::testing::StartsWith;

namespace {

constexpr const char* kPermissionDenied =
    "Error: Permission Denied, check Windows Media Player \"Tools-->Options-->Media Library-->Internet Site "
    "Rights\"";

/// Every file refuses to be written: for want of a right, or of room.
class NothingCanBeWritten : public WholeEditor, public ::testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    open();
    denied = GetParam();
  }
  /// The report of a failure that has no words of its own here.
  [[nodiscard]] std::string reportOf(const std::string& procedure) const {
    const int number = denied == EACCES ? 70 : 61;
    return "Error in procedure PlayListEditor/" + procedure + " Error # " + std::to_string(number) + ": ";
  }
  bool hasSaid() {
    return until([&] { return !said.empty(); });
  }
  void expectAllThere() {
    EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea"));
    EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
  }
};

/// Others change playlists while the user is in the midst of something.
class UnderItsHands : public WholeEditor {
 protected:
  void SetUp() override { open(); }
  void take(QPoint from) {
    mouseTo(from);
    tool({"mousedown", "1"});
    mouseTo(from + QPoint(30, 2));
    ASSERT_TRUE(until([&] { return editor->state().Dragging; }));
  }
  void letGo(QPoint at) {
    mouseTo(at);
    tool({"mouseup", "1"});
    ASSERT_TRUE(until([&] { return !editor->state().Dragging; }));
  }
};

}  // namespace

TEST_P(NothingCanBeWritten, AMoveIsToldAndLosesNothing) {
  answer("Return");
  drag(item("Sea"), item("Sky"));
  ASSERT_TRUE(hasSaid());
  EXPECT_THAT(said, StartsWith(reportOf("MoveNode")));
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));
  expectAllThere();
}

TEST_P(NothingCanBeWritten, ATitleThatIsMovedToAnotherPlaylistStaysWhereItIs) {
  clickNode("Winter");
  const QPoint sun = node("Sun");
  answer("Return");
  drag(sun, item("Sky"));
  ASSERT_TRUE(hasSaid());
  EXPECT_THAT(said, StartsWith(reportOf("Add_Media_Item")));
  expectAllThere();
}

TEST_P(NothingCanBeWritten, ARenamedPlaylistKeepsItsName) {
  editLabelOf("Winter", "Frost");
  answer("Return");
  key("Return");
  ASSERT_TRUE(hasSaid());
  if (denied == EACCES)
    EXPECT_EQ(said, kPermissionDenied);
  else
    EXPECT_THAT(said, StartsWith(reportOf("AfterLabelEdit")));
  EXPECT_EQ(named("Frost"), nullptr);
  expectAllThere();
}

TEST_P(NothingCanBeWritten, ATitleThatIsTakenOutStays) {
  clickItem("Sea");
  then([this](QWidget&) {
    answer("Return");
    key("alt+y");
  });
  key("Delete");
  ASSERT_TRUE(hasSaid());
  if (denied == EACCES)
    EXPECT_EQ(said, kPermissionDenied);
  else
    EXPECT_THAT(said, StartsWith(reportOf("Delete_Button_Click")));
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));
  expectAllThere();
}

TEST_P(NothingCanBeWritten, ANewPlaylistIsNotStored) {
  then([](QWidget&) {
    type("Spring");
    key("Return");
  });
  key("alt+n");
  // Whether it has been made is not looked at.
  ASSERT_TRUE(until([&] { return current() == "Spring"; }));
  EXPECT_THAT(members("Spring"), ElementsAre("no playlist Spring"));
  expectAllThere();
}

INSTANTIATE_TEST_SUITE_P(TheEditor, NothingCanBeWritten, ::testing::Values(EACCES, ENOSPC));

TEST_F(UnderItsHands, AListThatIsDeletedWhileItsLabelIsEditedStaysDeleted) {
  editLabelOf("Winter", "Frost");
  stored.remove(named("Winter"));
  answer("Return");
  key("Return");
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_EQ(said, "Error: PlayList \"Winter\" does not exist");
  EXPECT_THAT(members("Frost"), ElementsAre("no playlist Frost"));
  EXPECT_THAT(members("Winter"), ElementsAre("no playlist Winter"));
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea"));
}

TEST_F(UnderItsHands, AListThatIsRenamedWhileItsLabelIsEditedKeepsWhatItHolds) {
  editLabelOf("Winter", "Frost");
  named("Winter")->name("Snow");
  answer("Return");
  key("Return");
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_EQ(said, "Error: PlayList \"Winter\" does not exist");
  EXPECT_THAT(members("Snow"), ElementsAre("Sun"));
  EXPECT_THAT(members("Frost"), ElementsAre("no playlist Frost"));
}

TEST_F(UnderItsHands, ATitleIsDraggedFromAListThatIsDeletedMeanwhile) {
  choose("Autumn");
  clickNode("Winter");
  const QPoint sun = node("Sun");
  take(sun);
  stored.remove(named("Winter"));
  answer("Return");
  letGo(item("Sea"));
  EXPECT_THAT(members("Winter"), ElementsAre("no playlist Winter"));
  EXPECT_THAT(members("Autumn"), ElementsAre("Sky", "Sea", "Sun")) << "the library has it still";
}

TEST_F(UnderItsHands, ATitleIsDroppedOnAListThatIsRenamedMeanwhile) {
  const QPoint sun = ofBlue("Sun");
  take(sun);
  named("Autumn")->name("Fall");
  letGo(item("Sea"));
  EXPECT_THAT(members("Autumn"), ElementsAre("no playlist Autumn"));
  EXPECT_THAT(members("Fall"), ElementsAre("Sky", "Sea"));
  EXPECT_THAT(members("Winter"), ElementsAre("Sun"));
}

TEST_F(UnderItsHands, AnItemIsDroppedInAListThatIsDeletedMeanwhile) {
  take(item("Sea"));
  stored.remove(named("Autumn"));
  answer("Return");
  letGo(item("Sky"));
  ASSERT_TRUE(until([&] { return !said.empty(); }));
  EXPECT_THAT(said, StartsWith("Error in procedure PlayListEditor/MoveNode Error # 53: "));
  EXPECT_THAT(members("Autumn"), ElementsAre("no playlist Autumn"));
}
