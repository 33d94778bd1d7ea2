#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class PlayerEvents : public House {
 protected:
  void SetUp() override { start(); }
};
class ClearMediaStatus : public PlayerEvents {};

}  // namespace

TEST_F(PlayerEvents, AModeIsSavedPublishedAndChecked) {
  wmp9->events().ModeChange("Loop", true);
  EXPECT_THAT(journal.lines(),
              ElementsAre("SaveINISetting(\"Settings\", \"LoopMode\", \"True\", \"vxif_WMP.ini\")",
                          "GetDeviceCode(\"Media Player Loop Mode\")", "SetDeviceStatus(\"Q7\", 2)",
                          std::string("SetDeviceStringByName(\"Media Player Loop Mode\", \"") + kIcon +
                              "Loop\", True)",
                          "popup: LoopMode checked"));
  journal.clear();
  wmp9->events().ModeChange("Shuffle", false);
  EXPECT_TRUE(journal.has("SaveINISetting(\"Settings\", \"ShuffleMode\", \"False\", \"vxif_WMP.ini\")"));
  EXPECT_TRUE(journal.has("SetDeviceStatus(\"Q8\", 3)"));
  EXPECT_TRUE(published("Shuffle Mode", "No Shuffle"));
  EXPECT_TRUE(journal.has("popup: ShuffleMode unchecked"));
}

TEST_F(PlayerEvents, AnotherModeIsSavedUnderItsOwnNameWithNoMenuChange) {
  wmp9->events().ModeChange("ShowFrame", true);
  EXPECT_TRUE(journal.has("SaveINISetting(\"Settings\", \"ShowFrameMode\", \"True\", \"vxif_WMP.ini\")"));
  EXPECT_TRUE(published("ShowFrame Mode", "ShowFrame"));
  EXPECT_THAT(journal.with("popup:"), IsEmpty());
}

TEST_F(PlayerEvents, WhoeverShowsThePlayerElsewhereHearsOfItAndNobodyElseDoes) {
  wmp9->events().Changed();  // nobody does
  wmp9->events().Sought();
  support::Journal shown;
  plugin.playerEvents.changed = [&] { shown.add("changed"); };
  plugin.playerEvents.sought = [&] { shown.add("sought"); };
  plugin.playerEvents.playlistsChanged = [&] { shown.add("playlists"); };
  wmp9->events().Changed();
  wmp9->events().Sought();
  EXPECT_THAT(journal.lines(), IsEmpty());
  wmp9->events().PlaylistCollectionChange();
  EXPECT_THAT(shown.lines(), ElementsAre("changed", "sought", "playlists"));
}

TEST_F(PlayerEvents, AnErrorIsTheOneLogCallWithThreeArguments) {
  wmp9->errors = {{-1072885327, "No such file"}, {5, "second"}};
  wmp9->events().Error();
  EXPECT_THAT(journal.lines(),
              ElementsAre("WriteLog(\"Error\", \"Media Player\", \" Internal Error# -1072885327: No such "
                          "file\")"));
}

TEST_F(PlayerEvents, AHostThatTakesOnlyTwoFailsTheCallAndNothingElseHappens) {
  wmp9->errors = {{5, "text"}};
  host->logArguments = 2;
  wmp9->events().Error();
  EXPECT_EQ(journal.lines().size(), 1U);
  EXPECT_FALSE(platform.ended);
}

TEST_F(PlayerEvents, AnErrorWithoutAnEntryIsSkipped) {
  wmp9->events().Error();
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(PlayerEvents, AWarningIsLogged) {
  wmp9->events().Warning(7, 2, "Late");
  wmp9->events().Warning(7, 2, "");
  EXPECT_THAT(journal.lines(),
              ElementsAre("WriteLog(\"Warning\", \"Media Player Warning: 7:Late / clip # 2\")",
                          "WriteLog(\"Warning\", \"Media Player Warning: 7: / clip # 2\")"));
}

TEST_F(PlayerEvents, ChangesOfTheLibraryMarkItsListsStale) {
  plugin.stale.CategoryStale = {{"Album", false}, {"Mood", false}};
  wmp9->events().MediaCollectionChange();
  EXPECT_THAT(plugin.stale.CategoryStale,
              ElementsAre(std::pair("Album", true), std::pair("Artist", true), std::pair("Genre", true)));
  EXPECT_FALSE(plugin.stale.PlayListsStale);
  wmp9->events().PlaylistCollectionChange();
  EXPECT_TRUE(plugin.stale.PlayListsStale);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(PlayerEvents, ChangesOfTheLibraryAreToldWhenDebugging) {
  plugin.state.DebugMessages = true;
  wmp9->events().MediaCollectionChange();
  wmp9->events().PlaylistCollectionChange();
  EXPECT_TRUE(logged("Debug", "Media Player: Media collection has been modified"));
  EXPECT_TRUE(logged("Debug", "Media Player: PlayList collection has been modified"));
}

TEST_F(PlayerEvents, ADoubleClickTogglesTheVisualizations) {
  wmp9->events().DoubleClick();
  EXPECT_TRUE(plugin.state.ShowVisualizations);
  wmp9->events().DoubleClick();
  EXPECT_FALSE(plugin.state.ShowVisualizations);
}

TEST_F(PlayerEvents, AHostThatFailsDoesNotDisturbThePlayer) {
  host->failing = {"SaveINISetting", "SetDeviceStatus", "WriteLog"};
  wmp9->events().ModeChange("Loop", true);
  wmp9->events().Warning(1, 1, "x");
  EXPECT_TRUE(published("Loop Mode", "Loop"));
  EXPECT_FALSE(platform.ended);
}

TEST_F(ClearMediaStatus, BlanksTheDevicesAndTheCoverAndSendsTheModesRoundAgain) {
  wmp9->modes["Loop"] = true;
  plugin.mediaStatus.ClearMediaStatus();
  const auto text = [](const std::string& device) {
    return "SetDeviceStringByName(\"Media Player " + device + "\", \"" + kIcon + "\", True)";
  };
  const auto& lines = journal.lines();
  ASSERT_GE(lines.size(), 10U);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 10),
              ElementsAre(text("Title"), text("Artist"), text("Album"), text("Genre"), text("Length"),
                          "empty C:\\Vantorix\\html\\images\\Media Player\\WMPCoverLarge.jpg",
                          "empty C:\\Vantorix\\html\\images\\Media Player\\WMPCoverSmall.jpg",
                          "popup: height 2970", "popup: clear Image1", "popup: layout"));
  EXPECT_THAT(playerCalls(),
              ElementsAre("player: setMode Loop on", "player: setMode Shuffle off", "player: mute off"));
  EXPECT_TRUE(published("Mute", "Not Muted"));
}

TEST_F(ClearMediaStatus, AReadOnlyCoverFileIsSkippedAndTheRestIsDone) {
  platform.readOnly = {plugin.state.CoverLargeFile};
  plugin.mediaStatus.ClearMediaStatus();
  EXPECT_TRUE(journal.has("empty " + plugin.state.CoverSmallFile));
  EXPECT_TRUE(published("Mute", "Not Muted"));
}
