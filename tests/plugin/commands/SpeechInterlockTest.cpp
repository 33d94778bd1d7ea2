#include <utility>

#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class SpeechInterlock : public House {
 protected:
  void SetUp() override {
    start();
    wmp9->state = player::kPlaying;
    plugin.state.WhileSpeaking = "Pause";
  }
  void speech(bool started) { callVxif("VXEvent", base::Array{8, started}); }
  /// What the player was told since the last look.
  std::vector<std::string> told() {
    const std::vector<std::string> calls = playerCalls();
    journal.clear();
    return calls;
  }
};

}  // namespace

TEST_F(SpeechInterlock, OverlappingSpeechPausesOnceAndResumesAtTheLastStop) {
  speech(true);
  EXPECT_THAT(told(), ElementsAre("player: pause"));
  wmp9->state = player::kPaused;
  speech(true);
  speech(false);
  EXPECT_THAT(told(), IsEmpty());
  speech(false);
  EXPECT_THAT(told(), ElementsAre("player: play"));
}

TEST_F(SpeechInterlock, MutesWhereTheSettingSaysSo) {
  plugin.state.WhileSpeaking = "Mute";
  speech(true);
  EXPECT_THAT(told(), ElementsAre("player: mute on"));
  speech(false);
  EXPECT_THAT(told(), ElementsAre("player: mute off"));
}

TEST_F(SpeechInterlock, AStreamThatCannotBePausedIsMutedInstead) {
  wmp9->unavailable = {"Pause"};
  speech(true);
  EXPECT_THAT(told(), ElementsAre("player: mute on"));
}

TEST_F(SpeechInterlock, SpeechOverSilenceDoesNothingAlsoIfPlaybackStartsMeanwhile) {
  wmp9->state = player::kStopped;
  speech(true);
  wmp9->state = player::kPlaying;
  speech(true);
  speech(false);
  speech(false);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(SpeechInterlock, APauseOfTheUserStays) {
  wmp9->state = player::kPaused;
  speech(true);
  speech(false);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(SpeechInterlock, AMuteOfTheUserIsNotLifted) {
  plugin.state.WhileSpeaking = "Mute";
  wmp9->muted = true;
  speech(true);
  speech(false);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(SpeechInterlock, NeverInterruptsWithoutAnAction) {
  for (const char* setting : {"No Action", "pause", ""}) {
    plugin.state.WhileSpeaking = setting;
    speech(true);
    speech(false);
    EXPECT_THAT(told(), IsEmpty()) << setting;
  }
}

TEST_F(SpeechInterlock, OtherEventsAreIgnored) {
  callVxif("VXEvent", base::Array{4, true});
  EXPECT_THAT(told(), IsEmpty());
  callVxif("VXEvent", base::Array{});
  EXPECT_THAT(told(), IsEmpty());
  callVxif("VXEvent", base::Array{12, true});
  EXPECT_THAT(told(), ElementsAre("player: pause")) << "a mask may hold more than the audio event";
}

TEST_F(SpeechInterlock, ASurplusStopIsIgnoredInSilenceWithoutDebugMessages) {
  speech(false);
  speech(true);
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
  EXPECT_THAT(told(), ElementsAre("player: pause")) << "the count has not gone below 0";
}

TEST_F(SpeechInterlock, ASurplusStopWarnsAndIsFollowedFromThenOn) {
  plugin.state.DebugMessages = true;
  speech(false);
  EXPECT_THAT(journal.with("WriteLog"),
              ElementsAre("WriteLog(\"Warning\", \"Media Player detected a problem with the Vantorix VXEvent "
                          "function\")",
                          "WriteLog(\"Warning\", \"VXEvent 'Audio stopped' was called too many times\")"));
  plugin.state.DebugMessages = false;
  journal.clear();
  speech(true);
  speech(false);
  EXPECT_THAT(journal.with("WriteLog(\"Debug\", \"Media Player Audio"),
              ElementsAre("WriteLog(\"Debug\", \"Media Player Audio Started: 0\")",
                          "WriteLog(\"Debug\", \"Media Player Audio Stopped:  0\")"));
}

TEST_F(SpeechInterlock, ASpeechThatEndsWhileItsStartIsLoggedLeavesNothingCounted) {
  plugin.state.DebugMessages = true;
  speech(false);  // each event is logged from now on
  host->answers["WriteLog"] = [this, once = true](base::Args&) mutable {
    if (std::exchange(once, false)) speech(false);
    return base::Value();
  };
  speech(true);
  told();
  speech(true);
  EXPECT_THAT(told(), ElementsAre("player: pause"));
}

TEST_F(SpeechInterlock, SpeechOverSilenceLeavesNothingToUndo) {
  wmp9->state = player::kStopped;
  speech(true);
  wmp9->state = player::kPaused;  // started and paused by the user meanwhile
  speech(false);
  EXPECT_THAT(told(), IsEmpty());
  plugin.state.WhileSpeaking = "Mute";
  wmp9->state = player::kStopped;
  speech(true);
  speech(false);
  EXPECT_THAT(told(), IsEmpty());
}
