#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Dispatch : public House {
 protected:
  void SetUp() override { start(); }
  void setIO(const std::string& houseCode, const std::string& deviceCode, int command, int brightness = 0) {
    callVxif("SetIO", base::Value(), houseCode, deviceCode, std::int16_t(command), std::int16_t(brightness),
             std::int16_t{0}, std::int16_t{0});
  }
};
class SetIO : public Dispatch {};
class SelectMenu : public Dispatch {};
class ButtonPress : public Dispatch {};

}  // namespace

TEST_F(SetIO, SwitchesTheModesOfTheirDevices) {
  setIO("Q", "8", 2);
  setIO("Q", "8", 3);
  setIO("Q", "7", 2);
  setIO("Q", "7", 3);
  setIO("Q", "9", 2);
  setIO("Q", "9", 3);
  EXPECT_THAT(playerCalls(), ElementsAre("player: setMode Shuffle on", "player: setMode Shuffle off",
                                         "player: setMode Loop on", "player: setMode Loop off",
                                         "player: mute on", "player: mute off"));
}

TEST_F(SetIO, SwitchesTheDisplayControls) {
  setIO("Q", "10", 3);
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
  setIO("Q", "10", 2);
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
  EXPECT_EQ(journal.count("popup: Visibility enabled"), 2U);
}

TEST_F(SetIO, IgnoresOtherCommandsOfAnOnOffDevice) {
  setIO("Q", "9", 13);
  setIO("Q", "9", 19, 5);
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(SetIO, OnAndOffOfTheStatusDeviceDoNothing) {
  host->lastVoiceCommand = "stop";
  setIO("Q", "1", 2);
  setIO("Q", "1", 3);
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(SetIO, AForeignHouseCodeDoesNothing) {
  setIO("A", "9", 2);
  EXPECT_THAT(journal.lines(), IsEmpty());
  setIO("q", "9", 2);  // the house code compares exactly
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(SetIO, DoesNothingBeforeTheStartIsOver) {
  plugin.state.Initialized = false;
  setIO("Q", "9", 2);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(SetIO, ComparesTheAddressWithTheDevicesInOrder) {
  setIO("Q", "3", 2);  // the album device takes no command
  EXPECT_THAT(
      journal.lines(),
      ElementsAre(
          "GetDeviceCode(\"Media Player Status\")", "GetDeviceCode(\"Media Player Display Controls\")",
          "GetDeviceCode(\"Media Player Shuffle Mode\")", "GetDeviceCode(\"Media Player Loop Mode\")",
          "GetDeviceCode(\"Media Player Mute\")", "GetDeviceCode(\"Media Player Quick PlayList\")",
          "GetDeviceCode(\"Media Player Quick Album\")", "GetDeviceCode(\"Media Player Quick Artist\")",
          "GetDeviceCode(\"Media Player Quick Genre\")"));
}

TEST_F(SetIO, AnAddressLookUpThatFailsIsNoMatch) {
  host->failing = {"GetDeviceCode"};
  setIO("Q", "9", 2);
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(SetIO, QuickPlayOfArtistsAndGenresTurnsShuffleOn) {
  const char* names[] = {"Quick PlayList", "Quick Album", "Quick Artist", "Quick Genre"};
  for (int i = 0; i < 4; ++i)
    host->addDevice(names[i], "Q", std::int16_t(11 + i))->fields["Values"] = std::string(
        "\x01r\x02"
        "1\x01One\x02"
        "2");
  for (const char* code : {"11", "12", "13", "14"}) setIO("Q", code, 19, 2);
  EXPECT_THAT(playerCalls(), ElementsAre("player: setMode Shuffle off", "player: setMode Shuffle off",
                                         "player: setMode Shuffle on", "player: setMode Shuffle on"));
  EXPECT_THAT(journal.with("WMPPlay"), ElementsAre("WMPPlay(PlayList, One, )", "WMPPlay(Album, One, )",
                                                   "WMPPlay(Artist, One, )", "WMPPlay(Genre, One, )"));
}

TEST_F(SelectMenu, DoesWhatItsItemsSay) {
  wmp9->state = player::kPlaying;
  for (const char* item : {"Pause/Resume", "Stop", "Next", "Previous", "Mute toggle", "Restart", "Eject"})
    callVxif("SelectMenu", item);
  EXPECT_THAT(playerCalls(), ElementsAre("player: pause", "player: stop", "player: next", "player: previous",
                                         "player: mute on", "player: currentPosition 0", "player: eject 0"));
}

TEST_F(SelectMenu, ShowsAndHidesThePopupAndTheEditor) {
  callVxif("SelectMenu", "Show/Hide Popup Controls");
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
  callVxif("SelectMenu", "PlayList Editor");
  EXPECT_TRUE(journal.has("show PlayListEditor"));
}

TEST_F(SelectMenu, SetupOpensThePageOnTheHostsPort) {
  callVxif("SelectMenu", "Setup");
  EXPECT_THAT(journal.lines(), ElementsAre("GetINISetting(\"Settings\", \"svrport\", \"80\")",
                                           "Launch(\"http://127.0.0.1:80/WMP_Setup\")"));
  journal.clear();
  host->ownSettings["svrport"] = "8123";
  callVxif("ConfigIO");
  EXPECT_TRUE(journal.has("Launch(\"http://127.0.0.1:8123/WMP_Setup\")"));
}

TEST_F(SelectMenu, TheVersionLineDoesNothing) {
  callVxif("SelectMenu", "Vantorix Media Player plug-in version: 1.0.23");
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(SelectMenu, AnUnknownItemIsLoggedAndCaseCounts) {
  callVxif("SelectMenu", "stop");
  EXPECT_THAT(
      journal.lines(),
      ElementsAre("WriteLog(\"Error\", \"Media Player: Invalid menu item: \"stop\" has been selected\")"));
}

TEST_F(ButtonPress, DoesWhatItsCaptionsSay) {
  wmp9->state = player::kPlaying;
  for (const char* caption : {"Pause", "Pause/Resume", "Stop", "Next", "Prev", "Previous", "Restart", "Eject",
                              "Shuffle toggle", "Loop toggle"})
    callVxif("ButtonPress", caption);
  EXPECT_THAT(playerCalls(),
              ElementsAre("player: pause", "player: pause", "player: stop", "player: next",
                          "player: previous", "player: previous", "player: currentPosition 0",
                          "player: eject 0", "player: setMode Shuffle on", "player: setMode Loop on"));
}

TEST_F(ButtonPress, TheVolumeGoesInStepsOfTen) {
  callVxif("ButtonPress", "Vol Up");
  callVxif("ButtonPress", "Vol Down");
  callVxif("ButtonPress", "Mute toggle");
  EXPECT_THAT(playerCalls(), ElementsAre("player: volume 60", "player: mute off", "player: volume 50",
                                         "player: mute off", "player: mute on"));
}

TEST_F(ButtonPress, ShowHideWaitsForTheWindow) {
  callVxif("ButtonPress", "Show/Hide Controls");
  EXPECT_THAT(journal.lines(), ElementsAre("popup: Visibility enabled", "WaitSecs(2)"));
}

TEST_F(ButtonPress, AddToPlayListIgnoresItsResult) {
  neighbours.addResult = std::int32_t{-4};
  callVxif("ButtonPress", "Add to PlayList");
  EXPECT_THAT(journal.lines(), ElementsAre("AddMediaToPlayList(Vantorix)"));
}

TEST_F(ButtonPress, AnUnknownCaptionIsLogged) {
  callVxif("ButtonPress", "Explode");
  EXPECT_THAT(journal.lines(),
              ElementsAre("WriteLog(\"Error\", \"Media Player: Invalid button pushed: \"Explode\"\")"));
}
