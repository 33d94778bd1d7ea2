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
