#include "support/PagesHouse.hpp"

using base::Value;
using support::Body;
using support::PagesHouse;
using support::WholeSetupPage;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class SetupPost : public PagesHouse {
 protected:
  void SetUp() override {
    PagesHouse::SetUp();
    host->settings["housecodeset"] = "81";
  }
  [[nodiscard]] std::vector<std::string> saved() const {
    std::vector<std::string> all;
    for (const std::string& line : journal.with("SaveINISetting(\"Settings\", "))
      all.push_back(line.substr(line.find(", ") + 2));
    return all;
  }
  /// The page that a GET gets now.
  std::string page() { return plugin.setupForm->GenPage(""); }
};

const std::initializer_list<std::pair<std::string, std::string>> kEverything = {
    {"ref_page", "WMP_Setup"},      {"wmp_page", "Setup_Page"},  {"WhileSpeaking", "Mute"},
    {"AlwaysOnTop", "TRUE"},        {"RecreateDevices", "TRUE"}, {"UpdateQuickPlay", "TRUE"},
    {"SpeakErrors", "TRUE"},        {"CoverArt", "TRUE"},        {"Visualizations", "TRUE"},
    {"FullScreenVideo", "TRUE"},    {"TrayIcon", "TRUE"},        {"RefreshActions", "TRUE"},
    {"VRCategoryRequired", "TRUE"}, {"DebugMessages", "TRUE"},   {"button", "Update"}};

}  // namespace

TEST_F(SetupPost, StoresAndAppliesEveryOptionInOrder) {
  const std::string answer = post(kEverything);
  EXPECT_THAT(
      journal.lines(),
      ElementsAre("SaveINISetting(\"Settings\", \"WhileSpeaking\", \"Mute\", \"vxif_WMP.ini\")",
                  "SaveINISetting(\"Settings\", \"AlwaysOnTop\", True, \"vxif_WMP.ini\")",
                  "popup: AlwaysOnTop checked",
                  "SaveINISetting(\"Settings\", \"HouseCodeSet\", \"-1\", \"vxif_WMP.ini\")",
                  "SaveINISetting(\"Settings\", \"UpdateMediaEvents\", True, \"vxif_WMP.ini\")",
                  "SaveINISetting(\"Settings\", \"SpeakPlaybackErrors\", True, \"vxif_WMP.ini\")",
                  "SaveINISetting(\"Settings\", \"TrayIcon\", True, \"vxif_WMP.ini\")", "ShowTrayIcon",
                  "SaveINISetting(\"Settings\", \"RefreshActions\", True, \"vxif_WMP.ini\")",
                  "SaveINISetting(\"Settings\", \"FullScreenVideo\", True, \"vxif_WMP.ini\")",
                  "popup: ShowFullScreenVideo checked", "popup: layout",
                  "SaveINISetting(\"Settings\", \"ShowCoverArt\", True, \"vxif_WMP.ini\")",
                  "popup: ShowCoverArt checked", "popup: layout",
                  "SaveINISetting(\"Settings\", \"ShowVisualizations\", True, \"vxif_WMP.ini\")",
                  "popup: ShowVisualizations checked", "popup: layout",
                  "SaveINISetting(\"Settings\", \"VRCategoryRequired\", True, \"vxif_WMP.ini\")",
                  "SaveINISetting(\"Settings\", \"DebugMessages\", True, \"vxif_WMP.ini\")"));
  const plugin::PluginState& state = plugin.state;
  EXPECT_EQ(state.WhileSpeaking, "Mute");
  EXPECT_TRUE(state.AlwaysOnTop && state.ShowCoverArt && state.ShowVisualizations && state.FullScreenVideo);
  EXPECT_TRUE(state.TrayIcon && state.RefreshActions && state.VRCategoryRequired && state.DebugMessages);
  EXPECT_EQ(answer, page());
  EXPECT_THAT(answer, HasSubstr("name=\"RecreateDevices\" value=\"TRUE\" DISABLED CHECKED>"));
}

TEST_F(SetupPost, WithAllBoxesUntickedTurnsEveryOptionOff) {
  plugin.state.ShowVisualizations = plugin.state.FullScreenVideo = true;
  plugin.state.VRCategoryRequired = plugin.state.DebugMessages = true;
  const std::string answer =
      post({{"wmp_page", "Setup_Page"}, {"WhileSpeaking", "No Action"}, {"button", "Update"}});
  const plugin::PluginState& state = plugin.state;
  EXPECT_EQ(state.WhileSpeaking, "No Action");
  EXPECT_FALSE(state.AlwaysOnTop || state.ShowCoverArt || state.ShowVisualizations || state.FullScreenVideo);
  EXPECT_FALSE(state.TrayIcon || state.RefreshActions || state.VRCategoryRequired || state.DebugMessages);
  EXPECT_THAT(
      saved(),
      ElementsAre(
          "\"WhileSpeaking\", \"No Action\", \"vxif_WMP.ini\")", "\"AlwaysOnTop\", False, \"vxif_WMP.ini\")",
          "\"UpdateMediaEvents\", False, \"vxif_WMP.ini\")",
          "\"SpeakPlaybackErrors\", False, \"vxif_WMP.ini\")", "\"TrayIcon\", False, \"vxif_WMP.ini\")",
          "\"RefreshActions\", False, \"vxif_WMP.ini\")", "\"FullScreenVideo\", False, \"vxif_WMP.ini\")",
          "\"ShowCoverArt\", False, \"vxif_WMP.ini\")", "\"ShowVisualizations\", False, \"vxif_WMP.ini\")",
          "\"VRCategoryRequired\", False, \"vxif_WMP.ini\")", "\"DebugMessages\", False, \"vxif_WMP.ini\")"));
  EXPECT_TRUE(journal.has("HideTrayIcon"));
  EXPECT_EQ(answer, WholeSetupPage("No Action", {}));
}

TEST_F(SetupPost, WithoutAChoiceSetsPause) {
  plugin.state.WhileSpeaking = "Mute";
  EXPECT_EQ(post({{"wmp_page", "Setup_Page"}, {"button", "Update"}}), WholeSetupPage("Pause", {}));
  EXPECT_EQ(plugin.state.WhileSpeaking, "Pause");
  EXPECT_EQ(host->settings["whilespeaking"], "Pause");
}

TEST_F(SetupPost, WithoutRecreateDevicesDoesntUndoAnEarlierTick) {
  host->settings["housecodeset"] = "-1";
  post({{"wmp_page", "Setup_Page"}, {"button", "Update"}});
  EXPECT_EQ(host->settings["housecodeset"], "-1");
}

TEST_F(SetupPost, ChangesCoverArtAndVisualizationsTogetherOrNotAtAll) {
  const auto windowKeys = [this] {
    std::vector<std::string> keys;
    for (const std::string& line : saved())
      if (line.rfind("\"Show", 0) == 0) keys.push_back(line.substr(1, line.find('"', 1) - 1));
    journal.clear();
    return keys;
  };
  plugin.state.ShowCoverArt = true;
  plugin.state.ShowVisualizations = false;
  post({{"wmp_page", "Setup_Page"}, {"CoverArt", "TRUE"}, {"button", "Update"}});
  EXPECT_THAT(windowKeys(), IsEmpty());
  post({{"wmp_page", "Setup_Page"}, {"button", "Update"}});
  EXPECT_THAT(windowKeys(), ElementsAre("ShowCoverArt", "ShowVisualizations"));
  post({{"wmp_page", "Setup_Page"}, {"Visualizations", "TRUE"}, {"button", "Update"}});
  EXPECT_THAT(windowKeys(), ElementsAre("ShowCoverArt", "ShowVisualizations"));
  post({{"wmp_page", "Setup_Page"}, {"Visualizations", "TRUE"}, {"button", "Update"}});
  EXPECT_THAT(windowKeys(), IsEmpty());
}

TEST_F(SetupPost, PutsAVisibleWindowInItsPlaceAtOnce) {
  popup.isVisible = true;
  post({{"wmp_page", "Setup_Page"}, {"button", "Update"}});
  EXPECT_TRUE(journal.has("popup: SetWindowPos -2 83"));
  post({{"wmp_page", "Setup_Page"}, {"AlwaysOnTop", "TRUE"}, {"button", "Update"}});
  EXPECT_TRUE(journal.has("popup: SetWindowPos -1 83"));
}

TEST_F(SetupPost, VerboseLoggingActsAtOnce) {
  post({{"wmp_page", "Setup_Page"}, {"DebugMessages", "TRUE"}, {"button", "Update"}});
  plugin.loggers.Debug("heard");
  EXPECT_TRUE(logged("Debug", "heard"));
}

TEST_F(SetupPost, TakesNamesPagesButtonsAndBooleansInAnyCase) {
  EXPECT_EQ(
      post("WMP_PAGE=SETUP_PAGE&BUTTON=UPDATE&WHILESPEAKING=Mute&alwaysontop=true&vrcategoryrequired=1"),
      WholeSetupPage("Mute", {"AlwaysOnTop", "VRCategoryRequired"}));
  EXPECT_EQ(plugin.state.WhileSpeaking, "Mute");
  EXPECT_TRUE(plugin.state.AlwaysOnTop);
  EXPECT_TRUE(plugin.state.VRCategoryRequired);
  EXPECT_TRUE(journal.with("WriteLog").empty());
}

TEST_F(SetupPost, AnUnknownFieldIsLoggedAndDoesntStopTheUpdate) {
  const std::string answer =
      post("wmp_page=Setup_Page&Colour=light+blue&button=Update&TrayIcon=TRUE&Dummy=x");
  EXPECT_THAT(
      journal.with("WriteLog"),
      ElementsAre("WriteLog(\"Error\", \"Media Player Unknown argument submitted to web server: Colour=light "
                  "blue\")"));
  EXPECT_TRUE(journal.has("ShowTrayIcon"));
  EXPECT_EQ(answer, WholeSetupPage("Pause", {"TrayIcon"}));
}

TEST_F(SetupPost, WithTheButtonMissingShowsThePageAndChangesNothing) {
  for (const char* body : {"wmp_page=setup_page", "wmp_page=setup_page&button=None",
                           "wmp_page=setup_page&TrayIcon=TRUE&button=none"}) {
    EXPECT_EQ(post(body), WholeSetupPage("Pause", support::kTickedAtFirst));
    EXPECT_THAT(saved(), IsEmpty());
  }
  EXPECT_EQ(post("wmp_page=setup_page&button=Delete"), "");
  EXPECT_EQ(post("wmp_page=setup_page&button="), "");
  EXPECT_THAT(saved(), IsEmpty());
}

TEST_F(SetupPost, OfAnotherPageShowsThisOneAndChangesNothing) {
  for (const char* body :
       {"button=Update", "button=Update&wmp_page=Main_Page", "button=Update&wmp_page=setup_page2"}) {
    EXPECT_EQ(base::ToText(plugin.setupForm->invoke("PagePut", body)), page());
    EXPECT_THAT(saved(), IsEmpty());
  }
}

TEST_F(SetupPost, ComesThroughItsOwnObjectAsWell) {
  const base::Value answer = plugin.setupForm->invoke("PagePut", Body(kEverything));
  EXPECT_EQ(base::ToText(answer), page());
  EXPECT_EQ(plugin.state.WhileSpeaking, "Mute");
}

TEST_F(SetupPost, IsNotAskedWhoSendsIt) {
  host->webUser = "guest";
  post({{"wmp_page", "Setup_Page"}, {"WhileSpeaking", "Mute"}, {"button", "Update"}});
  EXPECT_EQ(plugin.state.WhileSpeaking, "Mute");
  EXPECT_TRUE(journal.with("WEBLoggedInUser").empty());
}

TEST_F(SetupPost, WithABoxThatIsNoBooleanLeavesALineInTheLogAndAnEmptyAnswer) {
  EXPECT_EQ(post("wmp_page=setup_page&button=Update&TrayIcon=maybe"), "");
  EXPECT_THAT(journal.lines(), ElementsAre("WriteLog(\"Error\", \"Media Player: Could not complete procedure "
                                           "WebSetupForm/MyPagePut Error # 13: Type mismatch\")"));
}

TEST_F(SetupPost, SkipsWhatCantBeStoredStatementByStatement) {
  host->failing = {"SaveINISetting"};
  const std::string answer = post(kEverything);
  EXPECT_EQ(answer, page());
  EXPECT_EQ(saved().size(), 12U);
  const plugin::PluginState& state = plugin.state;
  EXPECT_EQ(state.WhileSpeaking, "Mute");
  EXPECT_TRUE(state.ShowVisualizations && state.FullScreenVideo && state.VRCategoryRequired);
  EXPECT_TRUE(journal.has("ShowTrayIcon"));
  EXPECT_TRUE(journal.with("WriteLog").empty());
}

TEST_F(SetupPost, StoresEverythingEvenWhenThePageBehindItFails) {
  host->failing = {"GetINISetting"};
  EXPECT_EQ(post(kEverything), "");
  EXPECT_EQ(host->settings["debugmessages"], "True");
  EXPECT_THAT(journal.lines().back(), HasSubstr("WebSetupForm/BuildSetupPage Error # 57"));
}

TEST_F(SetupPost, ReadsItsOwnDefaultsAnewEachTime) {
  post(kEverything);
  post({{"wmp_page", "Setup_Page"}, {"button", "Update"}});
  EXPECT_FALSE(plugin.state.TrayIcon);
  EXPECT_EQ(plugin.state.WhileSpeaking, "Pause");
}

TEST_F(SetupPost, ABrokenPercentCodeIsLoggedAndTakenAsItCame) {
  post("wmp_page=setup_page&button=Update&WhileSpeaking=%zz");
  EXPECT_EQ(plugin.state.WhileSpeaking, "%zz");
  EXPECT_TRUE(
      logged("Error",
             "Media Player: Could not complete procedure WebSetupForm/UrlDecode Error # 13: Type mismatch"));
}

TEST_F(SetupPost, OfTenThousandPairsIsRead) {
  std::string body = "wmp_page=setup_page";
  for (int i = 0; i < 5000; ++i)
    body += "&WhileSpeaking=w" + std::to_string(i) + "&u" + std::to_string(i) + "=1";
  EXPECT_EQ(post(body + "&WhileSpeaking=Mute&TrayIcon=TRUE&button=Update"),
            WholeSetupPage("Mute", {"TrayIcon"}));
  const std::vector<std::string> unknown = journal.with("WriteLog");
  ASSERT_EQ(unknown.size(), 5000U);
  EXPECT_EQ(unknown.back(),
            "WriteLog(\"Error\", \"Media Player Unknown argument submitted to web server: u4999=1\")");
}

TEST_F(SetupPost, ACharacterOfCodeZeroIsOneAmongOthers) {
  const std::string zero("Mute\0", 5);
  const std::string update = "wmp_page=setup_page&button=Update&WhileSpeaking=";
  for (const std::string& value : {std::string("Mute%00"), zero}) {
    // No choice of that name is there to be shown.
    EXPECT_EQ(post(update + value), WholeSetupPage("", {}));
    EXPECT_EQ(plugin.state.WhileSpeaking, zero);
    EXPECT_EQ(host->settings["whilespeaking"], zero);
    plugin.state.WhileSpeaking = "Pause";
  }
}

TEST_F(SetupPost, WithoutAnyPairShowsThePageAndChangesNothing) {
  for (const std::string& body : std::vector<std::string>{"", "nonsense", "&&&", "%", std::string(3, '\0')}) {
    EXPECT_EQ(base::ToText(plugin.setupForm->invoke("PagePut", body)),
              WholeSetupPage("Pause", support::kTickedAtFirst));
    EXPECT_THAT(journal.lines(), IsEmpty());
  }
}
