#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;

namespace {
class Triggers : public House {
 protected:
  void SetUp() override {
    connect();
    journal.clear();
  }
};
}  // namespace

TEST_F(Triggers, ComposeTheirTextForTheHost) {
  for (const int code : {3, 1, 9, 10}) plugin.triggers.ActionTrigger(code);
  EXPECT_THAT(journal.lines(),
              ElementsAre("checktrigger(\"Media Player\x02*\x02Playback Started\")",
                          "checktrigger(\"Media Player\x02*\x02Playback Ended\")",
                          "checktrigger(\"Media Player\x02*\x02Transitioning\")",
                          "checktrigger(\"Media Player\x02*\x02Initialization Completed\")"));
}

TEST_F(Triggers, OtherStatesHaveNone) {
  for (const int code : {2, 8, 0, -1, 11}) plugin.triggers.ActionTrigger(code);
  EXPECT_TRUE(journal.lines().empty());
}

TEST_F(Triggers, AFailureIsLoggedAndGoesNoFurther) {
  host->failing = {"checktrigger"};
  plugin.triggers.ActionTrigger(3);
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure CommonModule/ActionTrigger Error # 57: Input "
                     "or output failed"));
}

TEST_F(Triggers, HaveOneDialogWhateverIsStored) {
  const std::string dialog =
      "Media Player Triggers\t1\t0\tTrigger:\tPlayback Started\tPlayback "
      "Ended\tTransitioning\tInitialization "
      "Completed";
  EXPECT_EQ(callVxif("TriggerUI"), base::Value(dialog));
  EXPECT_EQ(callVxif("TriggerUI", "Media Player\x02x\x02Transitioning"), base::Value(dialog));
  EXPECT_EQ(callVxif("SupportsTriggerUI"), base::Value(true));
}

TEST_F(Triggers, HaveALineEach) {
  for (const char* word : {"Playback Started", "Playback Ended", "Transitioning", "Initialization Completed"})
    EXPECT_EQ(callVxif("TriggerUIFormat", std::string("Media Player\x02x\x02") + word),
              base::Value(std::string("Media Player ") + word));
  EXPECT_EQ(callVxif("TriggerUIFormat", "Media Player\x02x\x02Rain"),
            base::Value("Media Player Unknown Trigger Rain"));
}

TEST_F(Triggers, ATextWithoutATriggerWordHasNoLineAndNothingIsReported) {
  EXPECT_EQ(callVxif("TriggerUIFormat", "Media Player\x02x"), base::Value(""));
  EXPECT_EQ(callVxif("TriggerUIFormat", ""), base::Value(""));
  EXPECT_TRUE(journal.lines().empty());
}

TEST_F(Triggers, EveryOneIsValid) {
  EXPECT_EQ(callVxif("ValidateTriggerUI", "anything"), base::Value(""));
  EXPECT_TRUE(callVxif("ModifyTriggerUI", base::ObjectRef()).empty());
}
