#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;

namespace {
class ShutdownIO : public House {};
}  // namespace

TEST_F(ShutdownIO, DoesItsStepsInOrderAndEndsTheProcess) {
  start();
  popup.topTwips = 150;
  popup.leftTwips = 75;
  wmp9->level = 33;
  callVxif("ShutdownIO");
  EXPECT_THAT(journal.lines(),
              ElementsAre("player: stop",
                          "SaveINISetting(\"Settings\", \"DisplayControlsTop\", 150, \"vxif_WMP.ini\")",
                          "SaveINISetting(\"Settings\", \"DisplayControlsLeft\", 75, \"vxif_WMP.ini\")",
                          "SaveINISetting(\"Settings\", \"Volume\", 33, \"vxif_WMP.ini\")",
                          "unload SysTrayForm", "End"));
  EXPECT_FALSE(plugin.state.Initialized);
  EXPECT_EQ(plugin.host.Host, nullptr);
  EXPECT_EQ(plugin.host.HostCallback, nullptr);
}

TEST_F(ShutdownIO, StopsThePlayerWithoutAskingWhetherItIsAvailable) {
  start();
  wmp9->unavailable = {"Stop"};
  callVxif("ShutdownIO");
  EXPECT_TRUE(journal.has("player: stop"));
}

TEST_F(ShutdownIO, AWindowAtTheScreensEdgeKeepsTheEarlierPlace) {
  host->settings["displaycontrolstop"] = "0";
  start();
  popup.leftTwips = 75;
  EXPECT_EQ(popup.topTwips, 0);
  callVxif("ShutdownIO");
  EXPECT_TRUE(journal.with("SaveINISetting(\"Settings\", \"DisplayControlsTop\"").empty());
  EXPECT_TRUE(journal.with("SaveINISetting(\"Settings\", \"DisplayControlsLeft\"").empty());
}

TEST_F(ShutdownIO, ASavedTopOfNothingIsRestoredAndEitherEdgeKeepsTheEarlierPlace) {
  host->settings["displaycontrolstop"] = "0";
  popup.topTwips = 500;
  start();
  EXPECT_EQ(popup.topTwips, 0);
  popup.topTwips = 75;
  popup.leftTwips = 0;
  callVxif("ShutdownIO");
  EXPECT_TRUE(journal.with("SaveINISetting(\"Settings\", \"DisplayControls").empty());
}

TEST_F(ShutdownIO, ThePlaceIsSavedAsSinglesAndTheVolumeAsA32BitNumber) {
  start();
  popup.topTwips = 1.5F;
  popup.leftTwips = 1;
  std::vector<base::Value> saved;
  host->answers["SaveINISetting"] = [&](base::Args& args) {
    saved.push_back(args[2]);
    return base::Value();
  };
  callVxif("ShutdownIO");
  EXPECT_THAT(saved, ElementsAre(base::Value(1.5F), base::Value(1.0F), base::Value(std::int32_t{50})));
}

TEST_F(ShutdownIO, GoesOnWhenThePlayerAndTheHostFail) {
  start();
  wmp9->failing = {"stop"};
  host->failing = {"SaveINISetting"};
  callVxif("ShutdownIO");
  EXPECT_TRUE(journal.has("unload SysTrayForm"));
  EXPECT_TRUE(platform.ended);
}

TEST_F(ShutdownIO, SavesTheLeftEvenWhenTheTopCannotBeSaved) {
  start();
  popup.topTwips = 150;
  popup.leftTwips = 75;
  host->answers["SaveINISetting"] = [](base::Args& args) -> base::Value {
    if (args[1] == base::Value("DisplayControlsTop")) throw base::Failure(base::number::kDiskFull);
    return {};
  };
  callVxif("ShutdownIO");
  EXPECT_TRUE(journal.has("SaveINISetting(\"Settings\", \"DisplayControlsLeft\", 75, \"vxif_WMP.ini\")"));
}

TEST_F(ShutdownIO, BeforeAnyStartMakesNoPlayerOnlyToStopIt) {
  connect();
  callVxif("ShutdownIO");
  EXPECT_EQ(wmp9, nullptr);
  EXPECT_THAT(journal.with("SaveINISetting"), ::testing::IsEmpty());
  EXPECT_TRUE(platform.ended);
}

TEST_F(ShutdownIO, ACrashInsteadLeavesTheVolumeAtItsEarlierValue) {
  host->settings["volume"] = "20";
  start();
  callVxif("ButtonPress", "Vol Up");
  EXPECT_EQ(wmp9->level, 30);
  EXPECT_EQ(host->settings["volume"], "20");
}

TEST_F(ShutdownIO, StatesThatStillArriveFindThePlugInDown) {
  start();
  wmp9->events().PlayStateChange(player::kPlaying);
  callVxif("ShutdownIO");
  journal.clear();
  loop.advance(base::Milliseconds(10));
  EXPECT_TRUE(journal.lines().empty());
}
