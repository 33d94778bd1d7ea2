#include "support/EventHouse.hpp"

using support::EventHouse;
using support::FakeControls;
using ::testing::ElementsAre;
using ::testing::FloatEq;

namespace {

class ActionDropLists : public EventHouse {
 protected:
  void SetUp() override {
    EventHouse::SetUp();
    library.attributes["album"] = {"Blue", "abbey  Road", "a&b", "Blue"};
    library.addTrack("Carey", "Joni", "Blue", "Folk");
    library.addTrack("All <I> Want", "Joni", "Blue", "Folk");
  }
  std::string titles(const std::string& action) {
    std::string text;
    lists.FileDropList(automation::ActionString(action), text);
    return text;
  }

  automation::OpenActionDialog dialog;
  automation::ActionDropLists lists{catalogue, progress, plugin.loggers, dialog};
};

}  // namespace

TEST_F(ActionDropLists, NamesAreFilteredAndSortedWithoutRegardToCase) {
  EXPECT_EQ(lists.GetActionDropList("Album"), "\ta b\tabbey Road\tBlue\tBlue");
}

TEST_F(ActionDropLists, TheirTwoWalksShareTheProgress) {
  lists.GetActionDropList("Album");
  progress.fractions.clear();
  progress.calls.clear();
  lists.GetActionDropList("Album");
  EXPECT_THAT(progress.calls, ElementsAre("show GetGroupList", "hide GetGroupList", "show GetActionDropList",
                                          "hide GetActionDropList"));
  EXPECT_THAT(progress.fractions,
              ElementsAre(FloatEq(0.125F), FloatEq(0.25F), FloatEq(0.375F), FloatEq(0.5F), FloatEq(0.625F),
                          FloatEq(0.75F), FloatEq(0.875F), FloatEq(1.0F)));
}

TEST_F(ActionDropLists, AnEmptyCategoryHasOneLineThatSaysSoAndPassesTheJudgement) {
  library.attributes["album"].clear();
  EXPECT_EQ(lists.GetActionDropList("Album"), "\tNo Albums found");
  plugin.openActionDialog.ActionDialogState = "Not Initialized";
  EXPECT_EQ(text("ValidateActionUI", Action("Play: Album", "", "No Albums found")), "");
  callVxif("TriggerAction", Action("Play: Album", "", "No Albums found"));
  EXPECT_EQ(plugin.playRequests.WMPPlay("Album", "No Albums found", ""), -1);
  EXPECT_TRUE(logged("Error", "Media Player: Cannot 'Play': Album 'No Albums found' does not exist"));
}

TEST_F(ActionDropLists, ACategoryThatThePlayerRefusesIsLoggedAndEmpty) {
  library.failing = {"getAttributeStringCollection"};
  EXPECT_EQ(lists.GetActionDropList("Album"), "");
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure CommonModule/GetActionDropList Error # "
                     "57: Unable to retrieve: Album"));
}

TEST_F(ActionDropLists, AnUnexpectedFailureIsTheOnlyLine) {
  plugin.state.DebugMessages = true;
  host->failing = {"WriteLog"};
  EXPECT_EQ(lists.GetActionDropList("Album"), "\tUnable to access Album");
}

TEST_F(ActionDropLists, TellTheirStepsToTheDebugLog) {
  plugin.state.DebugMessages = true;
  lists.GetActionDropList("Album");
  EXPECT_TRUE(debugged("Loading Album action drop list"));
  EXPECT_TRUE(debugged("Loading Album sorted list"));
  EXPECT_TRUE(debugged("Finished loading Album action drop list"));
}

TEST_F(ActionDropLists, TitlesOfAGroupComeInItsOrderBehindTheWholeList) {
  EXPECT_EQ(titles(Action("Play: Album", "", "Blue")), "\t(Play entire list)\tCarey\tAll I Want");
  EXPECT_EQ(dialog.ActionDialogState, "Play: AlbumBlue");
}

TEST_F(ActionDropLists, AnEmptyGroupHasTheWholeListAlone) {
  EXPECT_EQ(titles(Action("Play: Genre", "", "", "", "Nothing")), "\t(Play entire list)");
}

TEST_F(ActionDropLists, TypedTextHasAPromptAndOtherActionsHaveNoTitles) {
  EXPECT_EQ(titles(Action("Play: URL")), "\tPlease enter URL below...");
  EXPECT_EQ(titles(Action("Play: Media Library")), "\tPlease enter title below...");
  EXPECT_EQ(titles(Action("Stop")), "");
  EXPECT_EQ(dialog.ActionDialogState, "");
}

TEST_F(ActionDropLists, AGroupThatIsNotFoundSaysSoWithItsStatus) {
  EXPECT_EQ(titles(Action("Play: PlayList", "None")), "\t-1: Unable to find any titles");
  EXPECT_EQ(dialog.ActionDialogState, "");
}

TEST_F(ActionDropLists, AFieldThatIsMissingLeavesTheTextEmptyWithALineInTheLog) {
  EXPECT_EQ(titles(Joined({"H0", "H1", "Play: Genre", "", ""})), "");
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure CommonModule/FileDropList Error # 9: "
                     "Index out of range"));
}

TEST_F(ActionDropLists, AGroupWithTwoBlanksInARowIsListedWithOneAndStillFound) {
  library.addTrack("Come Together", "Beatles", "abbey  Road", "Rock");
  lists.GetActionDropList("Album");
  EXPECT_EQ(titles(Action("Play: Album", "", "abbey Road")), "\t(Play entire list)\tCome Together");
}

namespace {

class RefreshedTitles : public EventHouse {
 protected:
  void SetUp() override {
    EventHouse::SetUp();
    library.addTrack("Carey", "Joni", "Blue", "Folk");
    library.addTrack("A & B", "Joni", "Blue", "Folk");
    library.addTrack("CAREY", "Joni", "Blue", "Folk");
    callVxif("ModifyActionUI", controls);
    journal.clear();
    (*controls)[2].show("Play: Album");
    (*controls)[6].show("Blue");
  }
  /// The Titles list behind a press of "Refresh Titles".
  support::FakeControl& pressed() {
    callVxif("CustomActionDialogUI");
    return (*controls)[12];
  }
  std::shared_ptr<FakeControls> controls = std::make_shared<FakeControls>(journal);
  const std::string& state = plugin.openActionDialog.ActionDialogState;
};

}  // namespace

TEST_F(RefreshedTitles, AreThoseOfTheGroupThatTheDialogShowsNow) {
  (*controls)[8].show("Somebody");
  EXPECT_THAT(pressed().lines, ElementsAre("", "(Play entire list)", "Carey", "A & B", "CAREY"));
  EXPECT_EQ((*controls)[12].selected, 0);
  EXPECT_EQ((*controls)[8].text(), "") << "the other lists show their empty line";
  EXPECT_EQ((*controls)[6].text(), "Blue");
  EXPECT_EQ(state, "Play: AlbumBlue");
  EXPECT_EQ(text("ValidateActionUI", Action("Play: Album", "", "Blue")), "");
}

TEST_F(RefreshedTitles, KeepTheSelectedTitleWhateverItsCaseAndTheLaterOneOfTwo) {
  (*controls)[12].show("carey");
  EXPECT_EQ(pressed().selected, 4);
}

TEST_F(RefreshedTitles, KeepTheWholeListAndLetAPromptGo) {
  (*controls)[12].show("(Play entire list)");
  EXPECT_EQ(pressed().selected, 1);
  (*controls)[12].show("Please enter title below...");
  EXPECT_EQ(pressed().selected, 0);
}

TEST_F(RefreshedTitles, GoOutByTheThousandWhereTheHostsListTakesThemSo) {
  for (int i = 0; i < 2500; ++i) library.addTrack("T" + std::to_string(i), "Many", "Large", "Folk");
  (*controls)[6].show("Large");
  (*controls)[12].show("T1800");
  const std::vector<std::string> oneByOne = pressed().lines;
  EXPECT_EQ(oneByOne.size(), 2502U);
  EXPECT_EQ((*controls)[12].asked, 1 + 1 + 2502) << "the list is cleared, refuses AddItems, and is filled";
  (*controls)[12].show("T1800");
  (*controls)[12].takesMany = true;
  (*controls)[12].asked = 0;
  EXPECT_EQ(pressed().lines, oneByOne);
  EXPECT_EQ((*controls)[12].selected, 1802);
  EXPECT_EQ((*controls)[12].asked, 1 + 1 + 3) << "cut where the chosen title is";
}

TEST_F(RefreshedTitles, AreAPromptForTypedText) {
  (*controls)[2].show("Play: URL");
  EXPECT_THAT(pressed().lines, ElementsAre("Please enter URL below..."));
  EXPECT_EQ((*controls)[12].selected, 0);
  EXPECT_EQ((*controls)[6].text(), "");
  (*controls)[2].show("Play: Media Library");
  EXPECT_THAT(pressed().lines, ElementsAre("Please enter title below..."));
}

TEST_F(RefreshedTitles, StayAsTheyAreForOtherActionsAndForAGroupThatIsNotFound) {
  (*controls)[12].show("Carey");
  (*controls)[2].show("Stop");
  EXPECT_THAT(pressed().lines, ElementsAre("", "Carey"));
  EXPECT_EQ(state, "");
  (*controls)[2].show("Play: PlayList");
  (*controls)[4].show("None");
  EXPECT_THAT(pressed().lines, ElementsAre("", "Carey"));
  EXPECT_EQ(state, "Play: PlayListNone");
  EXPECT_EQ(plugin.actionDropLists.FileDropListModify(), -1);
}

TEST_F(RefreshedTitles, AreNotAskedForBehindADialogWithoutListsNorBeforeStartUpIsOver) {
  plugin.openActionDialog.ActionDialogState = "Not Initialized";
  EXPECT_TRUE(pressed().lines.empty());
  plugin.openActionDialog.ActionDialogState.clear();
  plugin.state.Initialized = false;
  EXPECT_TRUE(pressed().lines.empty());
}

TEST_F(RefreshedTitles, AFailingControlIsLoggedAndTheListsStayAsTheyAreThen) {
  (*controls)[12].fails = true;
  pressed();
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure CommonModule/FileDropListModify Error # "
                     "57: Input or output failed"));
  EXPECT_EQ(state, "Play: AlbumBlue");
}
