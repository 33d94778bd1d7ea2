#include "support/EventHouse.hpp"

using support::EventHouse;

namespace {

class Conditions : public EventHouse {
 protected:
  bool holds(const std::string& tab, const std::string& word, const std::string& answer) {
    return base::ToBoolean(callVxif("ConditionCheck", Joined({"H0", tab, word, answer})));
  }
  bool status(const std::string& word, const std::string& answer = "Yes") {
    return holds("Media Player Status", word, answer);
  }
};

}  // namespace

TEST_F(Conditions, HaveTwoDialogs) {
  EXPECT_EQ(base::ToText(callVxif("ConditionUI", 1)),
            "Media Player Status\t1\t0\tStatus \tPlaying\tPaused\tMuted\r\t\t1\t0\tCondition:\tYes\tNo");
  EXPECT_EQ(base::ToText(callVxif("ConditionUI", 2)),
            "Media Mode\t1\t0\tMode:\tShuffle Mode\tLoop Mode\r\t\t1\t0\tCondition:\tYes\tNo");
  for (const int other : {0, 3, -1}) EXPECT_EQ(base::ToText(callVxif("ConditionUI", other)), "") << other;
  EXPECT_EQ(callVxif("SupportsConditionUI"), base::Value(true));
}

TEST_F(Conditions, HaveALineEach) {
  EXPECT_EQ(text("ConditionUIFormat", Joined({"H0", "Media Player Status", "Playing", "Yes"})),
            "Media Player Playing: Yes");
  EXPECT_EQ(text("ConditionUIFormat", Joined({"H0", "Media Mode", "Loop Mode", "No"})),
            "Media Player Loop Mode: No");
  EXPECT_EQ(text("ConditionUIFormat", Joined({"H0", "Another", "Loop", "No"})), "");
  EXPECT_EQ(text("ConditionUIFormat", Joined({"H0", "Media Mode", "Loop"})), "");
  EXPECT_EQ(text("ConditionUIFormat", ""), "");
  for (const base::Value& noText : {base::Value(), base::Value(5), base::Value(base::Array{"a", "b"})})
    EXPECT_EQ(base::ToText(callVxif("ConditionUIFormat", noText)), "");
}

TEST_F(Conditions, BeforeStartUpIsOverNoneHolds) {
  wmp9->muted = true;
  wmp9->modes["Loop"] = true;
  plugin.state.Initialized = false;
  for (const std::int32_t state : {player::kPlaying, player::kPaused, player::kStopped}) {
    wmp9->state = state;
    for (const char* answer : {"Yes", "No"}) {
      for (const char* word : {"Playing", "Paused", "Muted"})
        EXPECT_FALSE(status(word, answer)) << word << answer << state;
      for (const char* mode : {"Loop", "Shuffle"})
        EXPECT_FALSE(holds("Media Mode", mode, answer)) << mode << answer;
    }
  }
}

TEST_F(Conditions, PlayingHoldsAlsoWhileThePlayerScans) {
  wmp9->state = player::kScanForward;
  EXPECT_TRUE(status("Playing"));
  EXPECT_FALSE(status("Playing", "No"));
  wmp9->state = player::kStopped;
  EXPECT_FALSE(status("Playing"));
  EXPECT_TRUE(status("Paused", "No"));
  wmp9->state = player::kPaused;
  EXPECT_TRUE(status("Paused"));
}

TEST_F(Conditions, MutedAsksThePlayer) {
  wmp9->muted = true;
  EXPECT_TRUE(status("Muted"));
  EXPECT_FALSE(status("Muted", "No"));
}

TEST_F(Conditions, EverythingButTheExactWordNoAsksForYes) {
  wmp9->muted = true;
  for (const char* answer : {"", "Yes", "no", "NO"}) EXPECT_TRUE(status("Muted", answer)) << answer;
}

TEST_F(Conditions, ModesAreThoseOfThePlayerAndNotOfTheDialog) {
  wmp9->modes["Loop"] = true;
  EXPECT_TRUE(holds("Media Mode", "Loop", "Yes"));
  EXPECT_TRUE(holds("Media Mode", "Shuffle", "No"));
  for (const char* answer : {"Yes", "No"}) {
    EXPECT_FALSE(holds("Media Mode", "Loop Mode", answer));
    EXPECT_FALSE(holds("Media Mode", "Shuffle Mode", answer));
  }
}

TEST_F(Conditions, WhatThePlugInDoesNotKnowNeverHolds) {
  EXPECT_FALSE(status("Loud", "No"));
  EXPECT_FALSE(holds("Another", "Playing", "No"));
  EXPECT_FALSE(base::ToBoolean(callVxif("ConditionCheck", Joined({"H0", "Media Player Status", "Paused"}))));
  EXPECT_FALSE(base::ToBoolean(callVxif("ConditionCheck", "")));
}
