// An action that the plug-in leaves alone, because it has just done it, is not told as done.
#include "standin/eventworld/RepeatGuard.hpp"

#include "standin/eventworld/PlayerStage.hpp"

namespace {

using namespace standin;
using std::chrono::seconds;

class AnAction : public testing::Test {
 protected:
  /// Answers what it has failed with.
  std::string carryOut(const std::string& stored) {
    try {
      guard.carryOut(player.vxif, stored);
    } catch (const base::Failure& failure) {
      return failure.description();
    }
    return {};
  }
  static constexpr const char* kLeft = "Not carried out again within five seconds";

  support::VirtualLoop loop;
  support::StagedPlayer player;
  RepeatGuard guard{loop};
};

TEST_F(AnAction, ThatIsRepeatedWithinFiveSecondsOfTheLastThatWasCarriedOutIsNot) {
  EXPECT_EQ(carryOut("one"), "");
  loop.leap(seconds(3));
  EXPECT_EQ(carryOut("one"), kLeft);
  EXPECT_EQ(player.journal.count("do one"), 2U) << "the plug-in is asked all the same, and logs it";
  loop.leap(seconds(3));
  EXPECT_EQ(carryOut("one"), "");
}

TEST_F(AnAction, IsCarriedOutAgainBehindAnother) {
  EXPECT_EQ(carryOut("one"), "");
  EXPECT_EQ(carryOut("two"), "");
  EXPECT_EQ(carryOut("one"), "");
}

TEST_F(AnAction, IsNeverTheFirstThatIsLeft) {
  EXPECT_EQ(guard.left("").count(), 0);
  EXPECT_EQ(carryOut(""), "");
  EXPECT_EQ(carryOut(""), kLeft);
}

TEST_F(AnAction, OfAnotherPluginIsNotTheSame) {
  EXPECT_EQ(carryOut("one"), "");
  guard.forget();
  EXPECT_EQ(carryOut("one"), "");
}

TEST_F(AnAction, CanBeWaitedFor) {
  EXPECT_EQ(carryOut("one"), "");
  EXPECT_EQ(guard.left("two").count(), 0);
  loop.leap(guard.left("one"));
  EXPECT_EQ(guard.left("one").count(), 0);
  EXPECT_EQ(carryOut("one"), "");
}

}  // namespace
