#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Setters : public House {
 protected:
  void SetUp() override { start(); }
  player::WMPCalls& calls = plugin.calls;
};

}  // namespace

TEST_F(Setters, MuteTogglesByTheWordInAnyCase) {
  calls.SetMute("TOGGLE");
  EXPECT_TRUE(wmp9->muted);
  calls.SetMute("Toggle");
  EXPECT_FALSE(wmp9->muted);
}

TEST_F(Setters, MutePublishesBehindTheEventPump) {
  const int before = loop.pumps;
  calls.SetMute(true);
  EXPECT_EQ(loop.pumps, before + 1);
  EXPECT_THAT(
      journal.lines(),
      ElementsAre("player: mute on", "GetDeviceCode(\"Media Player Mute\")", "SetDeviceStatus(\"Q9\", 2)",
                  std::string("SetDeviceStringByName(\"Media Player Mute\", \"") + kIcon + "Muted\", True)"));
  journal.clear();
  calls.SetMute(false);
  EXPECT_TRUE(journal.has("SetDeviceStatus(\"Q9\", 3)"));
  EXPECT_TRUE(published("Mute", "Not Muted"));
}

TEST_F(Setters, MutePublishesWhatThePlayerSaysNow) {
  wmp9->ignoresMute = true;
  calls.SetMute(true);
  EXPECT_TRUE(published("Mute", "Not Muted"));
}

TEST_F(Setters, MuteReadsThePlayerAfterThePumpHasLetEventsIn) {
  loop.post([this] { wmp9->muted = false; });
  calls.SetMute(true);
  EXPECT_TRUE(published("Mute", "Not Muted"));
}

TEST_F(Setters, MuteIsNotPublishedOverWhatAnEventHasSetWhileTheHostAnswered) {
  for (const char* operation : {"GetDeviceCode", "SetDeviceStatus"}) {
    calls.SetMute(true);
    journal.clear();
    bool eventCame = false;
    host->answers[operation] = [&](base::Args&) {
      if (!std::exchange(eventCame, true)) calls.SetMute(true);
      return base::Value("Q9");
    };
    calls.SetMute(false);
    host->answers.clear();
    EXPECT_TRUE(wmp9->muted);
    EXPECT_THAT(journal.lines().back(), ::testing::HasSubstr("Muted\", True)")) << operation;
    EXPECT_THAT(journal.lines().back(), ::testing::Not(::testing::HasSubstr("Not Muted"))) << operation;
    const auto& lines = journal.lines();
    const auto last = std::find_if(lines.rbegin(), lines.rend(), [](const std::string& line) {
      return line.starts_with("SetDeviceStatus");
    });
    EXPECT_EQ(*last, "SetDeviceStatus(\"Q9\", 2)") << operation;
  }
}

TEST_F(Setters, AValueThatIsNoneLeavesThePresentOne) {
  calls.SetMute(true);
  calls.SetMute("maybe");
  EXPECT_TRUE(wmp9->muted);
  calls.SetDisplayControls("maybe");
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
}

TEST_F(Setters, ModesTouchNeitherDeviceNorSetting) {
  wmp9->answersModes = false;
  calls.SetLoopMode(true);
  calls.SetShuffleMode("toggle");
  calls.SetShuffleMode("toggle");
  EXPECT_THAT(journal.lines(), ElementsAre("player: setMode Loop on", "player: setMode Shuffle on",
                                           "player: setMode Shuffle off"));
}

TEST_F(Setters, DisplayControlsOnlyAskForTheWindow) {
  calls.SetDisplayControls("toggle");
  EXPECT_FALSE(plugin.state.DisplayControlsShown);
  EXPECT_THAT(journal.lines(), ElementsAre("popup: Visibility enabled"));
}

TEST_F(Setters, WindowFlagsAreSavedCheckedAndLaidOut) {
  calls.SetFullScreenVideo(true);
  EXPECT_THAT(journal.lines(),
              ElementsAre("SaveINISetting(\"Settings\", \"FullScreenVideo\", True, \"vxif_WMP.ini\")",
                          "popup: ShowFullScreenVideo checked", "popup: layout"));
  journal.clear();
  calls.SetShowVisualizations("toggle");
  EXPECT_THAT(journal.lines(),
              ElementsAre("SaveINISetting(\"Settings\", \"ShowVisualizations\", True, \"vxif_WMP.ini\")",
                          "popup: ShowVisualizations checked", "popup: layout"));
  journal.clear();
  calls.SetShowCoverArt(0);
  EXPECT_THAT(journal.lines(),
              ElementsAre("SaveINISetting(\"Settings\", \"ShowCoverArt\", False, \"vxif_WMP.ini\")",
                          "popup: ShowCoverArt unchecked", "popup: layout"));
  EXPECT_TRUE(plugin.state.FullScreenVideo);
  EXPECT_TRUE(plugin.state.ShowVisualizations);
  EXPECT_FALSE(plugin.state.ShowCoverArt);
}

TEST_F(Setters, AlwaysOnTopReachesAVisibleWindowOnly) {
  calls.SetAlwaysOnTop(false);
  EXPECT_THAT(journal.with("popup: SetWindowPos"), IsEmpty());
  popup.isVisible = true;
  calls.SetAlwaysOnTop(false);
  calls.SetAlwaysOnTop(true);
  EXPECT_THAT(journal.with("popup: SetWindowPos"),
              ElementsAre("popup: SetWindowPos -2 83", "popup: SetWindowPos -1 83"));
  EXPECT_THAT(journal.with("popup: AlwaysOnTop"),
              ElementsAre("popup: AlwaysOnTop unchecked", "popup: AlwaysOnTop unchecked",
                          "popup: AlwaysOnTop checked"));
}

TEST_F(Setters, AnUnsavedFlagStillActs) {
  host->failing = {"SaveINISetting"};
  calls.SetShowVisualizations(true);
  EXPECT_TRUE(plugin.state.ShowVisualizations);
  EXPECT_TRUE(journal.has("popup: layout"));
}
