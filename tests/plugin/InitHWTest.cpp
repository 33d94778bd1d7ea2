#include <map>
#include <utility>

#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;

namespace {

class InitHW : public House {
 protected:
  /// Runs the background half.
  void run() {
    connect();
    ASSERT_EQ(initIO(), "");
    journal.clear();
    loop.advance(base::Milliseconds(1));
  }
  std::int16_t interfaceStatus() { return base::ToInt16(callVxif("InterfaceStatus")); }
};

}  // namespace

TEST_F(InitHW, RunsOnlyOnceInitIoHasReturned) {
  connect();
  initIO();
  EXPECT_FALSE(logged("Startup", "Media Player background initialization started..."));
  EXPECT_EQ(interfaceStatus(), 2);
  loop.advance(base::Milliseconds(1));
  EXPECT_TRUE(logged("Startup", "Media Player background initialization started..."));
  EXPECT_TRUE(logged("Startup", "Media Player background initialization completed"));
  EXPECT_EQ(interfaceStatus(), 0);
  EXPECT_FALSE(plugin.lifecycle.StartInitialization().enabled());
}

TEST_F(InitHW, FiresTheTriggerOfItsEndAndRaisesThePriority) {
  run();
  const auto& lines = journal.lines();
  const std::string trigger =
      "checktrigger(\"Media Player\x02*\x02"
      "Initialization Completed\")";
  EXPECT_TRUE(journal.has(trigger));
  EXPECT_EQ(lines.back(), "priority 32768");
}

TEST_F(InitHW, AStateThatArrivesMeanwhileIsHandledBehindTheStoppedOne) {
  host->answers["SetDeviceValueByName"] = [this, once = true](base::Args&) mutable {
    if (std::exchange(once, false)) {
      wmp9->events().PlayStateChange(player::kTransitioning);
      loop.advance(base::Milliseconds(5));
    }
    return base::Value();
  };
  run();
  loop.advance(base::Milliseconds(5));
  EXPECT_EQ(plugin.playState.LastPlayState(), player::kTransitioning);
}

TEST_F(InitHW, AnOldSystemGetsTheHighPriorityClass) {
  platform.osMajor = 4;
  run();
  EXPECT_EQ(journal.lines().back(), "priority 128");
}

TEST_F(InitHW, LeavesThePriorityAloneWhenTheSettingSaysSo) {
  host->settings["raisepriority"] = "False";
  run();
  EXPECT_TRUE(journal.with("priority").empty());
}

TEST_F(InitHW, AnEmptySettingsFileGivesTheDefaults) {
  preparePlayer = [](support::FakePlayer& player) { player.level = 80; };
  run();
  const plugin::PluginState& state = plugin.state;
  EXPECT_TRUE(state.DisplayControlsShown);
  EXPECT_TRUE(state.AlwaysOnTop);
  EXPECT_TRUE(state.ShowCoverArt);
  EXPECT_FALSE(state.ShowVisualizations);
  EXPECT_FALSE(state.FullScreenVideo);
  EXPECT_TRUE(state.TrayIcon);
  EXPECT_TRUE(state.RefreshActions);
  EXPECT_TRUE(state.RaisePriority);
  EXPECT_FALSE(state.VRCategoryRequired);
  EXPECT_FALSE(state.DebugMessages);
  EXPECT_EQ(state.WhileSpeaking, "Pause");
  EXPECT_EQ(wmp9->level, 50);
  EXPECT_TRUE(state.ProgressWindowAllowed);
}

TEST_F(InitHW, ComposesTheTagsAndTheCoverFiles) {
  run();
  EXPECT_EQ(plugin.state.AlbumIconTag, kIcon);
  EXPECT_EQ(plugin.state.CoverSmallTag,
            "<img align=absmiddle src=\"images\\Media Player\\WMPCoverSmall.jpg\"  width=\"75\" "
            "height=\"75\" border=\"0\" >");
  EXPECT_EQ(plugin.state.CoverSmallFile, "C:\\Vantorix\\html\\images\\Media Player\\WMPCoverSmall.jpg");
  EXPECT_EQ(plugin.state.CoverLargeFile, "C:\\Vantorix\\html\\images\\Media Player\\WMPCoverLarge.jpg");
}

TEST_F(InitHW, RegistersTheTenMenuItemsInOrder) {
  run();
  EXPECT_THAT(
      journal.with("registermenu"),
      ElementsAre("registermenu(\"Media Player\", \"Show/Hide Popup Controls\")",
                  "registermenu(\"Media Player\", \"PlayList Editor\")",
                  "registermenu(\"Media Player\", \"Pause/Resume\")",
                  "registermenu(\"Media Player\", \"Stop\")",
                  "registermenu(\"Media Player\", \"Mute toggle\")",
                  "registermenu(\"Media Player\", \"Next\")", "registermenu(\"Media Player\", \"Previous\")",
                  "registermenu(\"Media Player\", \"Restart\")", "registermenu(\"Media Player\", \"Setup\")",
                  "registermenu(\"Media Player\", \"Vantorix Media Player plug-in version: 1.0.23\")"));
}

TEST_F(InitHW, ReadsTheSettingsInOrder) {
  run();
  std::vector<std::string> keys;
  for (const std::string& line : journal.with("GetINISetting(\"Settings\", \"")) {
    const std::string rest = line.substr(27);
    keys.push_back(rest.substr(0, rest.find('"')));
  }
  EXPECT_THAT(keys, ElementsAre("HouseCodeSet", "LoopMode", "LoopMode", "ShuffleMode", "ShuffleMode",
                                "DisplayControlsTop", "DisplayControlsLeft", "DisplayControls",
                                "WhileSpeaking", "AlwaysOnTop", "ShowCoverArt", "ShowVisualizations",
                                "FullScreenVideo", "TrayIcon", "RefreshActions", "Volume", "RaisePriority",
                                "VRCategoryRequired", "DebugMessages", "UpdateMediaEvents"));
}

TEST_F(InitHW, TheDefaultsTypeTellsTheIntendedType) {
  std::map<std::string, base::Value> defaults;
  host->answers["GetINISetting"] = [&](base::Args& args) {
    defaults[base::ToText(args[1])] = args[2];
    return args[2];
  };
  run();
  for (const char* flag : {"LoopMode", "ShuffleMode", "DisplayControls", "AlwaysOnTop", "ShowCoverArt",
                           "ShowVisualizations", "FullScreenVideo", "TrayIcon", "RefreshActions",
                           "RaisePriority", "VRCategoryRequired", "DebugMessages", "UpdateMediaEvents"})
    EXPECT_TRUE(defaults[flag].is<bool>()) << flag;
  for (const char* number : {"Volume", "DisplayControlsTop", "DisplayControlsLeft"})
    EXPECT_TRUE(defaults[number].is<std::int16_t>()) << number;
  for (const char* text : {"WhileSpeaking", "HouseCodeSet"})
    EXPECT_TRUE(defaults[text].is<std::string>()) << text;
  EXPECT_TRUE(journal.has("GetINISetting(\"Settings\", \"LoopMode\", False, \"vxif_WMP.ini\")"));
  EXPECT_TRUE(journal.has("GetINISetting(\"Settings\", \"Volume\", 50, \"vxif_WMP.ini\")"));
  EXPECT_TRUE(journal.has("GetINISetting(\"Settings\", \"WhileSpeaking\", \"Pause\", \"vxif_WMP.ini\")"));
}

TEST_F(InitHW, TheSettersWriteBackTheValueJustRead) {
  host->settings["alwaysontop"] = "False";
  run();
  EXPECT_TRUE(journal.has("SaveINISetting(\"Settings\", \"AlwaysOnTop\", False, \"vxif_WMP.ini\")"));
  EXPECT_TRUE(journal.has("SaveINISetting(\"Settings\", \"ShowCoverArt\", True, \"vxif_WMP.ini\")"));
  EXPECT_TRUE(journal.has("SaveINISetting(\"Settings\", \"ShowVisualizations\", False, \"vxif_WMP.ini\")"));
  EXPECT_TRUE(journal.has("SaveINISetting(\"Settings\", \"FullScreenVideo\", False, \"vxif_WMP.ini\")"));
}

TEST_F(InitHW, ASavedLoopModeIsSetAndItsEventSavesItTwice) {
  host->settings["loopmode"] = "True";
  run();
  EXPECT_TRUE(journal.has("player: setMode Loop on"));
  // Once from the player's own event, once from the direct call.
  const auto saves = journal.with("SaveINISetting(\"Settings\", \"LoopMode\"");
  ASSERT_EQ(saves.size(), 2U);
  EXPECT_EQ(saves[0], "SaveINISetting(\"Settings\", \"LoopMode\", \"True\", \"vxif_WMP.ini\")");
  EXPECT_EQ(saves[1], saves[0]);
  EXPECT_TRUE(published("Loop Mode", "Loop"));
}

TEST_F(InitHW, EachWindowFlagIsSetRightAfterItIsRead) {
  run();
  std::vector<std::string> steps;
  for (const std::string& line : journal.lines())
    for (const char* key : {"AlwaysOnTop", "ShowCoverArt", "ShowVisualizations", "FullScreenVideo"})
      if (line.find("INISetting(\"Settings\", \"" + std::string(key)) != std::string::npos)
        steps.push_back(line.substr(0, 3) + " " + key);
  EXPECT_THAT(steps, ElementsAre("Get AlwaysOnTop", "Sav AlwaysOnTop", "Get ShowCoverArt", "Sav ShowCoverArt",
                                 "Get ShowVisualizations", "Sav ShowVisualizations", "Get FullScreenVideo",
                                 "Sav FullScreenVideo"));
}

TEST_F(InitHW, TheEndIsLoggedAndReachedBeforeItsTriggerFires) {
  bool initialized = false;
  bool logged = false;
  host->answers["checktrigger"] = [&](base::Args&) {
    initialized = plugin.state.Initialized;
    logged = journal.has("WriteLog(\"Startup\", \"Media Player background initialization completed\")");
    return base::Value();
  };
  run();
  EXPECT_TRUE(initialized);
  EXPECT_TRUE(logged);
}

TEST_F(InitHW, AFailureWithoutWordsOfItsOwnIsStillAFailure) {
  connect();
  initIO();
  host->answers["registermenu"] = [](base::Args&) -> base::Value { throw base::Failure(57, ""); };
  loop.advance(base::Milliseconds(1));
  EXPECT_EQ(interfaceStatus(), 2);
  EXPECT_TRUE(logged("Error", "Media Player background initialization FAILED: Input or output failed"));
}

TEST_F(InitHW, AFlagThatIsNoFlagEndsTheStartWithItsName) {
  host->settings["trayicon"] = "perhaps";
  run();
  EXPECT_EQ(interfaceStatus(), 2);
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure CommonModule/InitHW Error # 13: Type "
                     "mismatch in the setting TrayIcon"));
  EXPECT_TRUE(logged("Error",
                     "Media Player background initialization FAILED: Type mismatch in the setting TrayIcon"));
}

TEST_F(InitHW, TheSavedVolumeIsItsWholeNumberValue) {
  host->settings["volume"] = "37 percent";
  run();
  EXPECT_EQ(wmp9->level, 37);
}

TEST_F(InitHW, AVolumeThatIsNoneEndsItWithTheSettingsName) {
  host->settings["volume"] = "1e99";
  run();
  EXPECT_EQ(interfaceStatus(), 2);
  EXPECT_TRUE(
      logged("Error", "Media Player background initialization FAILED: Overflow in the setting Volume"));
}

TEST_F(InitHW, AVolumeThatThePlayerRefusesEndsItWithTheSettingsName) {
  host->settings["volume"] = "101";
  preparePlayer = [](support::FakePlayer& player) { player.loudest = 100; };
  run();
  EXPECT_EQ(interfaceStatus(), 2);
  EXPECT_TRUE(logged(
      "Error", "Media Player background initialization FAILED: Invalid argument in the setting Volume"));
}

TEST_F(InitHW, ASavedWindowTopAboveTheScreenIsRestoredAndThenCorrected) {
  host->settings["displaycontrolstop"] = "-100";
  host->settings["displaycontrolsleft"] = "300";
  run();
  EXPECT_THAT(journal.with("popup: top"), ElementsAre("popup: top -100", "popup: top 0"));
  EXPECT_THAT(journal.with("popup: left"), ElementsAre("popup: left 300"));
}

TEST_F(InitHW, ASavedWindowPlaceBeyondTheScreenIsCorrected) {
  host->settings["displaycontrolstop"] = "10001";
  host->settings["displaycontrolsleft"] = "20001";
  run();
  EXPECT_EQ(popup.topTwips, 0);
  EXPECT_EQ(popup.leftTwips, 0);
}

TEST_F(InitHW, FailedDevicesLeaveTheStatusAndRegisterNoMenu) {
  host->freeCode = -1;
  run();
  EXPECT_EQ(interfaceStatus(), 2);
  EXPECT_TRUE(journal.with("registermenu").empty());
  EXPECT_TRUE(logged("Error",
                     "Media Player background initialization FAILED: Media Player Error: Sorry, all device "
                     "codes used"));
  EXPECT_TRUE(journal.with("checktrigger").empty());
}

TEST_F(InitHW, UpdatesTheVoiceEventsInOrder) {
  run();
  EXPECT_THAT(journal.with("Update"),
              ElementsAre("UpdateControlEvent", "UpdateMediaEvents(Genre)", "UpdateMediaEvents(Artist)",
                          "UpdateMediaEvents(PlayList)", "UpdateMediaEvents(Album)"));
  EXPECT_TRUE(journal.with("WriteLog(\"Debug\"").empty());
}

TEST_F(InitHW, TellsOfTheVoiceEventsWhenDebugging) {
  host->settings["debugmessages"] = "True";
  run();
  EXPECT_THAT(journal.with("WriteLog(\"Debug\""),
              ElementsAre("WriteLog(\"Debug\", \"Media Player: Updating Genre VR Events & Devices\")",
                          "WriteLog(\"Debug\", \"Media Player: Updating Artist VR Events & Devices\")",
                          "WriteLog(\"Debug\", \"Media Player: Updating PlayList VR Events & Devices\")",
                          "WriteLog(\"Debug\", \"Media Player: Updating Album VR Events & Devices\")",
                          "WriteLog(\"Debug\", \"Media Player: Finished Updating VR Events & Devices\")"));
}

TEST_F(InitHW, LeavesTheVoiceEventsAloneWhenTheSettingSaysSo) {
  host->settings["updatemediaevents"] = "False";
  run();
  EXPECT_TRUE(journal.with("Update").empty());
}

TEST_F(InitHW, ShowsTheTrayIconOnlyIfItIsWanted) {
  run();
  EXPECT_TRUE(journal.has("ShowTrayIcon"));
  EXPECT_LT(journal.find("LoadNameTable"), journal.find("ShowTrayIcon"));
}

TEST_F(InitHW, WithoutATrayIconNoneIsShown) {
  host->settings["trayicon"] = "0";
  run();
  EXPECT_FALSE(journal.has("ShowTrayIcon"));
}

TEST_F(InitHW, MarksTheListsOfTheLibraryStale) {
  run();
  EXPECT_THAT(plugin.stale.CategoryStale,
              ElementsAre(std::pair("Album", true), std::pair("Artist", true), std::pair("Genre", true)));
}

TEST_F(InitHW, ShowsTheStoppedStateAndUnmutes) {
  preparePlayer = [](support::FakePlayer& player) { player.muted = true; };
  run();
  EXPECT_TRUE(journal.has("SetDeviceValueByName(\"Media Player Status\", 1)"));
  EXPECT_TRUE(published("Status", "Stopped"));
  EXPECT_FALSE(wmp9->muted);
  EXPECT_TRUE(published("Mute", "Not Muted"));
}

TEST_F(InitHW, ACommandThatArrivesMeanwhileIsDropped) {
  connect();
  initIO();
  host->answers["registermenu"] = [this](base::Args&) {
    callVxif("SetIO", base::Value(), "Q", "9", std::int16_t{2}, std::int16_t{0}, std::int16_t{0},
             std::int16_t{0});
    return base::Value();
  };
  loop.advance(base::Milliseconds(1));
  EXPECT_FALSE(wmp9->muted);
}
