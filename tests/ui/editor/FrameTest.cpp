// The playlist editor's window: how it opens and closes, and the long read.
#include "ui/editor/EditorHouse.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::editor::EditorWindow;

namespace {

class Frame : public support::EditorHouse {};

}  // namespace

TEST_F(Frame, TheHousesMenuOpensItAtTheTopLeftTheFirstTime) {
  plugin.state.ProgressWindowAllowed = false;
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_TRUE(window.isShown);
  EXPECT_TRUE(window.isEnabled);
  EXPECT_EQ(window.top(), 0);
  EXPECT_EQ(window.left(), 0);
  EXPECT_TRUE(plugin.state.ProgressWindowAllowed);
  EXPECT_TRUE(state().FormReady);
  EXPECT_EQ(state().CurrentNode, node("PlayList"));
  EXPECT_EQ(tree().selectedItem(), node("PlayList"));
  EXPECT_TRUE(node("PlayList")->expanded());
  EXPECT_TRUE(journal.has("window: brings into sight PlayList"));
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Frame, ItIsSeenBeforeTheLibraryIsRead) {
  callVxif("SelectMenu", "PlayList Editor");
  const auto at = [&](const std::string& line) { return journal.find(line); };
  EXPECT_LT(at("window: top 0"), at("window: screen pointer 11"));
  EXPECT_LT(at("window: screen pointer 11"), at("window: disabled"));
  EXPECT_LT(at("window: disabled"), at("window: hides TreeView1"));
  EXPECT_LT(at("window: hides PlayListDropBox"), at("window: shows WaitBox"));
  EXPECT_LT(at("window: shows WaitBox"), at("window: repaint"));
  EXPECT_LT(at("window: repaint"), at("window: show"));
  EXPECT_LT(at("window: show"), at("forcefront(77)"));
  EXPECT_LT(at("forcefront(77)"), at("library: getAttributeStringCollection Album audio"));
  EXPECT_LT(at("library: getPlaylistByName Autumn"), at("window: shows TreeView1"));
  EXPECT_LT(at("window: shows TreeView1"), at("window: hides WaitBox"));
  EXPECT_LT(at("window: hides WaitBox"), at("window: enabled"));
  EXPECT_LT(at("window: enabled"), at("window: screen pointer 0"));
  EXPECT_LT(at("window: screen pointer 0"), journal.lines().size());
  EXPECT_EQ(window.hidden, std::set<support::Control>{support::Control::kWaitBox});
}

TEST_F(Frame, AStoredPlaceIsANumberInFront) {
  host->settings["playlisteditortop"] = "1200 twips";
  host->settings["playlisteditorleft"] = "-30";
  open();
  EXPECT_EQ(window.top(), 1200);
  EXPECT_EQ(window.left(), 0) << "nothing but a place below 0 is mended";
  host->settings["playlisteditortop"] = "none";
  form().Form_Load();
  EXPECT_EQ(window.top(), 0);
}

TEST_F(Frame, AWindowWithoutAStoredPlaceOrWithANegativeOneStandsAtTheCorner) {
  window.topTwips = 700;
  window.leftTwips = 300;
  open();
  EXPECT_EQ(window.top(), 0);
  EXPECT_EQ(window.left(), 0);
  host->settings["playlisteditortop"] = "-30";
  window.topTwips = 700;
  form().Form_Load();
  EXPECT_EQ(window.top(), 0);
}

TEST_F(Frame, ThePlaceIsReadUnderTheOneSpelling) {
  host->silent.clear();
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(journal.with("GetINISetting(\"Settings\", \"PlaylistEditor"),
              ElementsAre("GetINISetting(\"Settings\", \"PlaylistEditorTop\", 0, \"vxif_WMP.ini\")",
                          "GetINISetting(\"Settings\", \"PlaylistEditorLeft\", 0, \"vxif_WMP.ini\")"));
}

TEST_F(Frame, TheLongReadBeginsAndEndsStepByStep) {
  open();
  journal.clear();
  form().Please_Wait(true);
  EXPECT_THAT(journal.with("window: "),
              ElementsAre("window: screen pointer 11", "window: disabled", "window: hides TreeView1",
                          "window: hides ListView1", "window: hides PlayListDropBox", "window: shows WaitBox",
                          "window: repaint"));
  journal.clear();
  form().Please_Wait(false);
  EXPECT_THAT(
      journal.with("window: "),
      ElementsAre("window: shows TreeView1", "window: shows ListView1", "window: shows PlayListDropBox",
                  "window: hides WaitBox", "window: enabled", "window: screen pointer 0", "window: repaint"));
  window.failing = {"disabled"};
  form().Please_Wait(true);
  window.failing = {"close"};
  form().Close_Button_Click();
  EXPECT_THAT(window.messages, ElementsAre(report("Please_Wait", 57), report("Close_Button_Click", 57)));
}

TEST_F(Frame, ClosingKeepsThePlaceUnderTheOtherSpelling) {
  open();
  window.topTwips = 330;
  window.leftTwips = 45;
  form().Close_Button_Click();
  EXPECT_THAT(journal.with("SaveINISetting"),
              ElementsAre("SaveINISetting(\"Settings\", \"PlayListEditorTop\", 330, \"vxif_WMP.ini\")",
                          "SaveINISetting(\"Settings\", \"PlayListEditorLeft\", 45, \"vxif_WMP.ini\")"));
  EXPECT_FALSE(state().FormReady);
  EXPECT_EQ(state().ListPlayList, nullptr);
  EXPECT_EQ(state().TreePlayList, nullptr);
  open();
  EXPECT_EQ(window.top(), 330);
  EXPECT_EQ(window.left(), 45);
}

TEST_F(Frame, ARefusedSaveDoesNotKeepItOpen) {
  open();
  host->failing = {"SaveINISetting"};
  form().Close_Button_Click();
  EXPECT_FALSE(window.isShown);
  EXPECT_FALSE(state().FormReady);
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Frame, AnOpenWindowOnlyComesToTheFront) {
  open();
  const auto kept = node("AlbumBlue");
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_TRUE(journal.has("forcefront(77)"));
  EXPECT_THAT(journal.with("library: "), IsEmpty());
  EXPECT_EQ(node("AlbumBlue"), kept);
}

TEST_F(Frame, OpenedAgainItReadsTheLibraryAnew) {
  open();
  form().Close_Button_Click();
  library.addPlaylist("Spring");
  plugin.stale.PlayListsStale = true;
  open();
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Spring", "Winter"));
  EXPECT_THAT(below("PlayList"), ElementsAre("Autumn", "Spring", "Winter"));
}

TEST_F(Frame, TheHouseMayAskForItWhileItIsBeingFilled) {
  for (int i = 0; i < 60; ++i) library.addPlaylist("List " + std::to_string(100 + i));
  host->answers["WaitEvents"] = [&](base::Args&) {
    callVxif("SelectMenu", "PlayList Editor");
    return base::Value();
  };
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_TRUE(state().FormReady);
  EXPECT_EQ(journal.count("window: show"), 1U);
  EXPECT_EQ(box().count(), 62U);
  EXPECT_THAT(window.messages, IsEmpty());
}

TEST_F(Frame, AFailureIsToldInTheLogAndInAMessage) {
  open();
  form().ReportEditorError(57, "Too much", "FillTreeView");
  EXPECT_TRUE(logged("Error",
                     "Media Player: Could not complete procedure PlayListEditor/FillTreeView Error # 57: Too "
                     "much"));
  EXPECT_TRUE(
      journal.has("window: report: Error in procedure PlayListEditor/FillTreeView Error # 57: Too much"));
  host->failing = {"WriteLog"};
  form().ReportEditorError(57, "", "Again");
  EXPECT_EQ(window.messages.back(), "Error in procedure PlayListEditor/Again Error # 57: ");
}

TEST_F(Frame, AFailedLoadLeavesAWindowThatCanBeClosed) {
  window.failing = {"brings into sight PlayList"};
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(window.messages, ElementsAre(report("Form_Load", 57)));
  EXPECT_FALSE(state().FormReady);
  EXPECT_TRUE(window.isEnabled);
  EXPECT_EQ(window.pointer, EditorWindow::kDefaultPointer);
  window.failing.clear();
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_TRUE(state().FormReady);
  EXPECT_THAT(boxed(), ElementsAre("Autumn", "Winter"));
}

TEST_F(Frame, ADeniedLoadHasWordsOfItsOwn) {
  host->answers["GetINISetting"] = [](base::Args&) -> base::Value {
    throw base::Failure(base::number::kPermissionDenied);
  };
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_THAT(window.messages,
              ElementsAre("Error: Permission Denied, check Windows Media Player \"Tools-->Options-->Media "
                          "Library-->Internet Site Rights\""));
}

TEST_F(Frame, MessagesHaveTheirForms) {
  using ui::editor::FormOf;
  using ui::editor::MessageAnswer;
  using ui::editor::MessageButtons;
  using ui::editor::MessageIcon;
  using ui::editor::MessageKind;
  EXPECT_STREQ(FormOf(MessageKind::kWarning).title, "Vantorix PlayList Editor");
  EXPECT_STREQ(FormOf(MessageKind::kErrorReport).title, "Media Player Error");
  EXPECT_STREQ(FormOf(MessageKind::kConfirmation).title, "Confirm PlayList Deletion");
  EXPECT_EQ(FormOf(MessageKind::kConfirmation).byDefault, MessageAnswer::kNo);
  EXPECT_EQ(FormOf(MessageKind::kWarning).byDefault, MessageAnswer::kOk);
  EXPECT_EQ(FormOf(MessageKind::kPlain).buttons, MessageButtons::kOk);
  EXPECT_EQ(FormOf(MessageKind::kPlain).icon, MessageIcon::kNone);
  EXPECT_EQ(FormOf(MessageKind::kWarning).buttons, MessageButtons::kOkCancel);
  EXPECT_EQ(FormOf(MessageKind::kWarning).icon, MessageIcon::kExclamation);
  EXPECT_EQ(FormOf(MessageKind::kConfirmation).buttons, MessageButtons::kYesNo);
  EXPECT_EQ(FormOf(MessageKind::kConfirmation).icon, MessageIcon::kNone);
  EXPECT_EQ(FormOf(MessageKind::kErrorReport).buttons, MessageButtons::kOk);
  EXPECT_EQ(FormOf(MessageKind::kErrorReport).icon, MessageIcon::kCritical);
}
