// New, rename, delete and the file dialog.
#include "ui/editor/CommandsHouse.hpp"

using support::Control;
using support::MessageAnswer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

constexpr const char* kDenied =
    "Error: Permission Denied, check Windows Media Player \"Tools-->Options-->Media Library-->Internet Site "
    "Rights\"";

class Commands : public support::CommandsHouse {
 protected:
  void deleteItem(std::size_t position) {
    click(item(position));
    journal.clear();
    window.messages.clear();
    window.answers = {MessageAnswer::kYes};
    window.events->Delete_Button_Click();
  }
};

}  // namespace

TEST_F(Commands, ANewPlaylistStandsInTheTreeAndInTheBox) {
  makeNew("Spring");
  EXPECT_THAT(changes(), ElementsAre("library: newPlaylist Spring"));
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn", "Spring", "Winter"));
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Spring", "Winter"));
  EXPECT_EQ(tree().selectedItem(), node("PlayListSpring"));
  EXPECT_EQ(state().CurrentNode, node("PlayListSpring"));
  EXPECT_EQ(box().text(), "Autumn");
  EXPECT_TRUE(plugin.stale.PlayListsStale);
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Commands, BlanksStayInTheNameAndGoAtTheBoxesEnd) {
  makeNew("  Spring  ");
  EXPECT_THAT(changes(), ElementsAre("library: newPlaylist   Spring  "));
  EXPECT_EQ(node("PlayList  Spring  ")->text(), "  Spring  ");
  EXPECT_THAT(boxed(), ElementsAre("  Spring", "Autumn", "Winter"));
}

TEST_F(Commands, ANameOfBlanksOrCancelIsNone) {
  makeNew("   ");
  makeNew("");
  const std::string asked = "window: asks \"New PlayList\": Enter the new PlayList name: []";
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_THAT(journal.lines(), ElementsAre(asked, asked)) << "nothing but the question";
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn", "Winter"));
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Winter"));
  EXPECT_EQ(tree().selectedItem(), node("PlayList"));
  EXPECT_EQ(state().CurrentNode, node("PlayList"));
}

TEST_F(Commands, ANameThatStandsInTheTreeIsAFailureOfItsKey) {
  makeNew("winter");
  EXPECT_THAT(window.messages, ElementsAre(report("New_PlayList_Click", 35602)));
  EXPECT_THAT(boxed(), SizeIs(2));
}

TEST_F(Commands, ThePlayersRefusalToMakeAPlaylistIsNotLookedAt) {
  library.failing = {"newPlaylist"};
  makeNew("Spring");
  EXPECT_THAT(window.messages, IsEmpty());
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Spring", "Winter"));
}

TEST_F(Commands, OnlyTheAddressAndPlaylistsMayBeRenamed) {
  click("AlbumBlue");
  click("PlayListWinter");
  for (const auto& [key, may] : std::map<std::string, bool>{{"URLURL", true},
                                                            {"PlayListAutumn", true},
                                                            {"PlayListWinterMoss", false},
                                                            {"AlbumBlue", false},
                                                            {"AlbumBlueSky", false},
                                                            {"PlayList", false},
                                                            {"URL", false}}) {
    click(key);
    std::int16_t cancel = 0;
    window.events->TreeView1_BeforeLabelEdit(cancel);
    EXPECT_EQ(cancel == 0, may) << key;
  }
}

TEST_F(Commands, TheRenameButtonOpensTheLabel) {
  window.events->Rename_Button_Click();
  EXPECT_TRUE(journal.has("window: label edit"));
  window.failing = {"label edit"};
  window.events->Rename_Button_Click();
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Commands, ARenamedPlaylistIsRenamedEverywhere) {
  choosePlayList("Winter");
  editLabel(node("PlayListWinter"), " Frost ");
  EXPECT_THAT(changes(), ElementsAre("library: rename Winter to Frost"));
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Frost"));
  EXPECT_EQ(box().text(), "Frost");
  EXPECT_THAT(listed(), ElementsAre("Moss")) << "it is the one that is shown";
  EXPECT_EQ(node("PlayListFrost")->text(), "Frost");
  EXPECT_EQ(node("PlayListFrostMoss")->text(), "Moss") << "its members' keys go with it";
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn", "Frost"));
}

TEST_F(Commands, AnEmptyLabelIsTakenBack) {
  choosePlayList("Winter");
  editLabel(node("PlayListWinter"), "  ");
  EXPECT_THAT(window.messages, ElementsAre("Error: PlayList \"Winter\" does not exist")) << "though it does";
  EXPECT_EQ(node("PlayListWinter")->text(), "Winter");
  EXPECT_THAT(changes(), IsEmpty());
}

TEST_F(Commands, APlaylistThatIsGoneIsNotRenamed) {
  choosePlayList("Winter");
  playlist("Winter")->title = "Gone";
  editLabel(node("PlayListWinter"), "Frost");
  EXPECT_THAT(window.messages, ElementsAre("Error: PlayList \"Winter\" does not exist"));
  EXPECT_EQ(node("PlayListWinter")->text(), "Winter");
}

TEST_F(Commands, ARefusedRenameLeavesWhatWasTyped) {
  choosePlayList("Winter");
  playlist("Winter")->refuses = true;
  editLabel(node("PlayListWinter"), "Frost");
  EXPECT_THAT(window.messages, ElementsAre(kDenied));
  EXPECT_EQ(node("PlayListWinter")->text(), "Frost") << "above the old key";
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Winter"));
}

TEST_F(Commands, ANameInUseHasItsWords) {
  choosePlayList("Winter");
  playlist("Winter")->refuses = true;
  playlist("Winter")->failure = base::number::kNameInUse;
  editLabel(node("PlayListWinter"), "Autumn");
  EXPECT_THAT(window.messages, ElementsAre("Error: PlayList \"Autumn\" already exists"));
}

TEST_F(Commands, AnEmptyAddressGoesBackToItsWordsAndKeepsItsTag) {
  click("URLURL");
  editLabel(node("URLURL"), "http://station");
  EXPECT_EQ(node("URLURL")->tag, "http://station");
  editLabel(node("URLURL"), " ");
  EXPECT_EQ(node("URLURL")->text(), "Enter URL Here");
  EXPECT_EQ(node("URLURL")->tag, "http://station");
}

TEST_F(Commands, APlaylistIsDeletedWhereItIsConfirmed) {
  choosePlayList("Winter");
  window.events->Delete_Button_Click();
  EXPECT_THAT(window.messages, ElementsAre("Are you sure you want to delete the entire playlist: Winter?"));
  EXPECT_THAT(changes(), IsEmpty()) << "No is the default";
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_THAT(changes(), ElementsAre("library: remove Winter"));
  EXPECT_THAT(boxed(), ElementsAre("Autumn"));
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn"));
  EXPECT_TRUE(plugin.stale.PlayListsStale);
  EXPECT_EQ(state().TreePlayList, nullptr);
  EXPECT_EQ(state().CurrentNode, node("PlayList"));
  EXPECT_EQ(tree().selectedItem(), node("PlayList"));
  EXPECT_TRUE(journal.has("window: focus TreeView1"));
  EXPECT_EQ(buttons(), "");
}

TEST_F(Commands, TheListIsNotFilledAnewWhenItsPlaylistIsDeleted) {
  choosePlayList("Autumn");
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_EQ(box().text(), "");
  EXPECT_THAT(listed(), ElementsAre("Sky", "Leaf"));
}

TEST_F(Commands, APlaylistThatThePlayerDoesNotKnowLeavesTheWindow) {
  choosePlayList("Winter");
  library.playlists.front()->title = "Gone";
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_THAT(changes(), IsEmpty());
  EXPECT_THAT(boxed(), ElementsAre("Autumn"));
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn"));
}

TEST_F(Commands, ARefusedDeletionLeavesThePlaylist) {
  choosePlayList("Winter");
  library.failing = {"remove"};
  window.answers = {MessageAnswer::kYes};
  window.events->Delete_Button_Click();
  EXPECT_EQ(window.messages.back(), report("Delete_Button_Click", 57));
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn", "Winter"));
}

TEST_F(Commands, ATitleIsDeletedWhereItIsConfirmed) {
  playlist("Autumn")->members.push_back(track("Sea"));
  choose("Autumn");
  click("PlayListAutumn");
  deleteItem(2);
  EXPECT_TRUE(journal.has("window: confirmation: Are you sure you want to delete Leaf from the playlist?"));
  EXPECT_TRUE(journal.has("window: focus ListView1"));
  EXPECT_THAT(changes(), ElementsAre("library: remove Leaf from Autumn"));
  EXPECT_THAT(listed(), ElementsAre("Sky", "Sea"));
  EXPECT_EQ(list().selectedItem(), item(1));
  EXPECT_EQ(state().CurrentListItem, item(1));
  EXPECT_EQ(buttons(), "Delete Down ");
  EXPECT_THAT(below("PlayListAutumn"), ElementsAre("Sky", "Leaf", "Sea")) << "until it is read anew there";
  deleteItem(1);
  EXPECT_THAT(listed(), ElementsAre("Sea"));
  EXPECT_EQ(state().CurrentListItem, item(1));
}

TEST_F(Commands, BehindTheLastTitleTheSelectionFallsBackToTheTree) {
  click("PlayListWinter");
  choose("Winter");
  deleteItem(1);
  EXPECT_THAT(listed(), IsEmpty());
  EXPECT_EQ(state().CurrentListItem, nullptr);
  EXPECT_EQ(state().CurrentNode, node("PlayListWinter"));
  EXPECT_EQ(buttons(), "Delete Rename ");
  EXPECT_TRUE(journal.has("window: brings into sight PlayListWinter"));
}

TEST_F(Commands, ATitleIsFoundByItsSourceAndOtherwiseNotAtAll) {
  track("Leaf")->url = "file:Leaf";
  track("Leaf")->title = "Leaves";
  deleteItem(2);
  EXPECT_THAT(changes(), ElementsAre("library: remove Leaves from Autumn"));
  playlist("Autumn")->members.clear();
  deleteItem(1);
  EXPECT_EQ(window.messages.back(), "Couldn't find: Sky in playlist: Autumn");
  EXPECT_THAT(listed(), ElementsAre("Sky"));
}

TEST_F(Commands, ADeniedDeletionHasItsWords) {
  playlist("Autumn")->refuses = true;
  deleteItem(1);
  EXPECT_EQ(window.messages.back(), kDenied);
  EXPECT_THAT(listed(), ElementsAre("Sky", "Leaf"));
}

TEST_F(Commands, DeleteActsOnThePaneThatHadTheFocusLast) {
  click("PlayListWinter");
  window.events->Delete_Button_Click();
  EXPECT_THAT(window.messages, ElementsAre("Failed: ")) << "none of them so far";
  deleteItem(1);
  EXPECT_EQ(window.messages.back(), "Are you sure you want to delete Sky from the playlist?");
}

TEST_F(Commands, AChosenFileIsTheAddress) {
  window.chosenFile = "/music/new.mp3";
  click("URLBrowse");
  EXPECT_EQ(node("URLURL")->text(), "/music/new.mp3");
  EXPECT_EQ(node("URLURL")->tag, "/music/new.mp3");
  EXPECT_EQ(tree().selectedItem(), node("URLURL"));
  EXPECT_TRUE(window.fileDialog.CancelError);
  EXPECT_EQ(window.fileDialog.flags, 0x81004);
  EXPECT_EQ(window.fileDialog.filterIndex, 1);
  EXPECT_EQ(window.fileDialog.filter,
            "Audio Files|*.wav;*.snd;*.au;*.aif;*.aifc;*.aiff;*.wma;*.mid;*.rmi;*.midi;*.wax;*.cda;*.mp3;*."
            "m3u|All Files (*.*)|*.*");
}

TEST_F(Commands, AFileThatTheLibraryKnowsShowsItsTitle) {
  track("Sea")->url = "/Music/SEA.mp3";
  window.chosenFile = "/music/sea.MP3";
  click("URLBrowse");
  EXPECT_EQ(node("URLURL")->text(), "Sea");
  EXPECT_EQ(node("URLURL")->tag, "/music/sea.MP3");
  EXPECT_EQ(journal.count("library: getAllMedia"), 1U) << "read once";
  EXPECT_LT(journal.find("window: disabled"), journal.find("library: getAllMedia"));
  EXPECT_TRUE(window.isEnabled);
}

TEST_F(Commands, ALibraryThatCanNotBeReadIsReported) {
  library.failing = {"getAllMedia"};
  window.chosenFile = "/music/new.mp3";
  window.node = node("URLBrowse");
  window.events->TreeView1_MouseDown(1, 0, 0, 0);
  EXPECT_THAT(window.messages, ElementsAre(report("Browse_Click", 91)));
  EXPECT_TRUE(window.isEnabled);
}

TEST_F(Commands, NamesAreTakenAsTheyAre) {
  const std::string longName(300, 'x');
  for (const std::string& name :
       {std::string("Rock & \"Roll\" 'n'"), longName, std::string("\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D"),
        std::string("\xEF\xBF\xBF"), std::string("<b>&amp;")}) {
    makeNew(name);
    EXPECT_EQ(node("PlayList" + name)->text(), name);
    choosePlayList(name);
    window.answers = {MessageAnswer::kYes};
    window.events->Delete_Button_Click();
    EXPECT_THAT(below("PlayList"), SizeIs(2)) << name;
  }
}
