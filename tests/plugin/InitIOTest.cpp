#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;

namespace {

constexpr const char* kRequired =
    "Error: Media Player plug-in requires Windows Media Player version 9.0 or higher";

class RegisterCallback : public House {};
class InitIO : public House {};

}  // namespace

TEST_F(RegisterCallback, ConnectsWithTheHostAndMakesTheScriptObject) {
  connect();
  EXPECT_THAT(journal.lines(),
              ElementsAre("GetVXIface()", "WriteLog(\"Info\", \"Media Player plug-in version: 1.0.23\")",
                          "create vxif_WMP9.scriptclass"));
  EXPECT_NE(base::ToObject(plugin.vxif()->get("Scripting")), nullptr);
}

TEST_F(RegisterCallback, AHostWithoutAnInterfaceIsToldOfAndStillGetsAScriptObject) {
  host->hasInterface = false;
  connect();
  EXPECT_THAT(journal.lines(), ElementsAre("GetVXIface()", "box Media Player: Unable to access VX interface",
                                           "create vxif_WMP9.scriptclass"));
  journal.clear();
  callVxif("SelectMenu", "no such item");  // failures are skipped: a host call fails silently
  EXPECT_TRUE(journal.lines().empty());
}

TEST_F(RegisterCallback, AHostThatFailsToGiveItsInterfaceIsToldOfToo) {
  host->failing = {"GetVXIface"};
  connect();
  EXPECT_TRUE(journal.has("box Media Player: Unable to access VX interface"));
  EXPECT_NE(plugin.host.HostCallback, nullptr);
}

TEST_F(InitIO, DoesItsStepsInOrder) {
  connect();
  journal.clear();
  EXPECT_EQ(initIO(), "");
  EXPECT_THAT(
      journal.lines(),
      ElementsAre("GetINISetting(\"Settings\", \"Version\", \"\", \"vxif_WMP.ini\")",
                  "writesplash(\"Media Player version: 1.0.23\r\nVantorix Media Player, published under the "
                  "MIT licence\")",
                  "SaveINISetting(\"Settings\", \"Version\", \"1.0.23\", \"vxif_WMP.ini\")",
                  "popup: Visibility enabled", "player: autoStart off",
                  "WriteLog(\"Info\", \"Windows Media Player version: 9.0.1\")", "Version()",
                  "RegisterEventCB(8, <object>)", "RegisterLink(<object>)", "load WebSetupForm",
                  "load WebEditorForm",
                  "WriteLog(\"Startup\", \"Media Player foreground initialization completed\")"));
  EXPECT_TRUE(plugin.lifecycle.StartInitialization().enabled());
  EXPECT_EQ(plugin.vxif()->get("Link"), base::Value("WMP_PListEdit"));
  EXPECT_EQ(plugin.vxif()->get("LinkText"), base::Value("PlayList Editor"));
  EXPECT_EQ(plugin.vxif()->get("Page_Title"), base::Value("Vantorix Media Player"));
  EXPECT_EQ(plugin.state.OsMajorVersion, 6);
}

TEST_F(InitIO, TheSameVersionAsLastTimeIsNotSavedAndShowsNoWindow) {
  host->settings["version"] = "1.0.23";
  connect();
  initIO();
  EXPECT_TRUE(journal.with("SaveINISetting").empty());
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
}

TEST_F(InitIO, AnUpgradeFromTheFirstReleaseHasTheDevicesMadeAgain) {
  host->settings["version"] = "1.0.0";
  connect();
  initIO();
  EXPECT_THAT(journal.with("SaveINISetting"),
              ElementsAre("SaveINISetting(\"Settings\", \"Version\", \"1.0.23\", \"vxif_WMP.ini\")",
                          "SaveINISetting(\"Settings\", \"HouseCodeSet\", \"-1\", \"vxif_WMP.ini\")"));
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
}

TEST_F(InitIO, AFirstRunSavesTheVersionOnlyAndShowsTheControls) {
  connect();
  initIO();
  EXPECT_THAT(journal.with("SaveINISetting"),
              ElementsAre("SaveINISetting(\"Settings\", \"Version\", \"1.0.23\", \"vxif_WMP.ini\")"));
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
}

TEST_F(InitIO, APlayerThatCannotBeCreatedIsRefused) {
  playerCanBeCreated = false;
  connect();
  journal.clear();
  EXPECT_EQ(initIO(), kRequired);
  EXPECT_TRUE(logged("Error", "Unable to connect to Windows Media Player, reinstallation may be necessary"));
  EXPECT_TRUE(
      journal.has("ShowTimedMessage(Error!, Media Player plug-in requires Windows Media Player "
                  "version 9.0 or higher.  Unable to connect to Windows Media Player, 15)"));
  EXPECT_FALSE(plugin.lifecycle.StartInitialization().enabled());
  EXPECT_TRUE(journal.with("RegisterEventCB").empty());
}

TEST_F(InitIO, APlayerWhoseAutoStartFailsIsRefusedTheSameWay) {
  preparePlayer = [](support::FakePlayer& player) { player.failing = {"autoStart off"}; };
  connect();
  EXPECT_EQ(initIO(), kRequired);
}

class PlayerVersion : public House, public ::testing::WithParamInterface<const char*> {};

TEST_P(PlayerVersion, WhoseFirstDigitIsBelowNineIsRefused) {
  preparePlayer = [](support::FakePlayer& player) { player.version = GetParam(); };
  connect();
  EXPECT_EQ(initIO(), kRequired);
  EXPECT_TRUE(journal.has(std::string("ShowTimedMessage(Error!, Media Player plug-in requires Windows Media "
                                      "Player version 9.0 or higher.  You have version: ") +
                          GetParam() + ", 15)"));
  EXPECT_TRUE(journal.with("RegisterLink").empty());
}
INSTANTIATE_TEST_SUITE_P(Old, PlayerVersion, ::testing::Values("8.1.2", "10.0.0", "", "x"));

TEST_F(InitIO, AsksForMediaRightsOnlyWhenTheyAreNotFull) {
  connect();
  initIO();
  EXPECT_FALSE(journal.has("player: requestMediaAccessRights full"));
}

TEST_F(InitIO, RefusedMediaRightsEndTheStart) {
  preparePlayer = [](support::FakePlayer& player) {
    player.rights = "read";
    player.grantsRights = false;
  };
  connect();
  EXPECT_EQ(initIO(), "Windows Media Player - Media Library, permission denied");
  EXPECT_TRUE(journal.has("player: requestMediaAccessRights full"));
  EXPECT_TRUE(journal.with("RegisterEventCB").empty());
}

TEST_F(InitIO, GrantedMediaRightsLetTheStartGoOn) {
  preparePlayer = [](support::FakePlayer& player) { player.rights = "none"; };
  connect();
  EXPECT_EQ(initIO(), "");
}

struct VersionCase {
  const char* version;
  bool enough;
};
class HostVersion : public House, public ::testing::WithParamInterface<VersionCase> {};

TEST_P(HostVersion, IsComparedPartByPart) {
  host->version = GetParam().version;
  connect();
  journal.clear();
  const std::string result = initIO();
  if (GetParam().enough) {
    EXPECT_EQ(result, "");
    EXPECT_TRUE(plugin.lifecycle.StartInitialization().enabled());
  } else {
    EXPECT_EQ(result, "Vantorix version 1.6.51 or higher required to run Media Player");
    EXPECT_TRUE(journal.has(
        "critical box Media Player: Sorry, you need Vantorix version 1.6.51 or higher to run this "
        "plugin: Media Player"));
    EXPECT_FALSE(plugin.lifecycle.StartInitialization().enabled());
  }
}
INSTANTIATE_TEST_SUITE_P(Edge, HostVersion,
                         ::testing::Values(VersionCase{"1.6.51", true}, VersionCase{"1.6.50", false},
                                           VersionCase{"1.7.0", true}, VersionCase{"1.10.1", true},
                                           VersionCase{"2.0.0", true}, VersionCase{"1.5.99", false},
                                           VersionCase{"", false}, VersionCase{"1.6.9", false}));

TEST_F(InitIO, AnUnexpectedFailureIsLoggedAndTold) {
  connect();
  host->failing = {"writesplash"};
  EXPECT_EQ(initIO(), "Input or output failed");
  EXPECT_TRUE(logged(
      "Error",
      "Media Player: Could not complete procedure Media Player/InitIO Error # 57: Input or output failed"));
}

TEST_F(InitIO, AFailureBehindTheChecksIsLoggedAndTold) {
  connect();
  host->failing = {"RegisterEventCB"};
  EXPECT_EQ(initIO(), "Input or output failed");
  EXPECT_FALSE(plugin.lifecycle.StartInitialization().enabled());
}

TEST_F(InitIO, ASecondCallInTheReadyStateDoesNothing) {
  start();
  EXPECT_EQ(initIO(), "");
  EXPECT_TRUE(journal.lines().empty());
}

TEST_F(InitIO, APlayerIsNotMadeTwiceByACommandThatArrivesWhileItIsMade) {
  int made = 0;
  preparePlayer = [&](support::FakePlayer&) {
    ++made;
    callVxif("ButtonPress", "Vol Up");
  };
  connect();
  EXPECT_EQ(initIO(), "");
  EXPECT_EQ(made, 1);
}

TEST_F(InitIO, ACallDuringTheBackgroundHalfRunsTheForegroundAgain) {
  connect();
  initIO();
  bool once = true;
  host->answers["registermenu"] = [&](base::Args&) {
    if (once) {
      once = false;
      EXPECT_EQ(initIO(), "");
    }
    return base::Value();
  };
  journal.clear();
  loop.advance(base::Milliseconds(5));
  EXPECT_EQ(journal.count("WriteLog(\"Startup\", \"Media Player foreground initialization completed\")"), 1U);
  // The second foreground has armed the timer once more; its background half finds nothing to do.
  EXPECT_EQ(journal.count("WriteLog(\"Startup\", \"Media Player background initialization started...\")"),
            1U);
  EXPECT_EQ(journal.count("WriteLog(\"Startup\", \"Media Player background initialization completed\")"), 2U);
}

TEST_F(InitIO, ACallBeforeTheBackgroundHalfHasFinishedRunsTheForegroundAgain) {
  connect();
  initIO();
  journal.clear();
  EXPECT_EQ(initIO(), "");
  EXPECT_TRUE(logged("Startup", "Media Player foreground initialization completed"));
}
