#include "standin/eventworld/Fade.hpp"

#include "standin/eventworld/PlayerStage.hpp"

namespace {

using namespace standin;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class Fades : public testing::Test {
 protected:
  void begin(const FadeAction& action) {
    deed = BeginFade(loop, calls, action, [&](const std::string& failure) { ended.push_back(failure); });
  }
  support::VirtualLoop loop;
  support::StagedPlayer player;
  support::StagedCalls calls{loop, player.vxif};
  std::vector<std::string> ended;
  std::unique_ptr<Deed> deed;
};

TEST_F(Fades, GoToTheirLevelInEvenSteps) {
  begin({.to = 60, .seconds = 10, .then = FadeAction::Then::kNothing});
  loop.leap(seconds(5));
  EXPECT_NEAR(player.volume, 65, 1);
  EXPECT_THAT(ended, IsEmpty());
  loop.leap(seconds(6));
  EXPECT_THAT(player.volumes, ElementsAre(69, 68, 67, 66, 65, 64, 63, 62, 61, 60));
  EXPECT_THAT(ended, ElementsAre(""));
  EXPECT_THAT(player.journal.lines(), IsEmpty());
}

TEST_F(Fades, GoUpToo) {
  player.volume = 0;
  begin({.to = 100, .seconds = 1, .then = FadeAction::Then::kNothing});
  loop.leap(seconds(2));
  EXPECT_EQ(player.volume, 100);
  EXPECT_TRUE(std::is_sorted(player.volumes.begin(), player.volumes.end()));
}

TEST_F(Fades, ToAStopGiveTheVolumeBack) {
  begin({.to = 0, .seconds = 60, .then = FadeAction::Then::kStop});
  loop.leap(seconds(59));
  EXPECT_LE(player.volume, 2);
  EXPECT_THAT(player.journal.lines(), IsEmpty());
  loop.leap(seconds(3));
  EXPECT_THAT(player.journal.lines(), ElementsAre("stop"));
  EXPECT_EQ(player.volume, 70);
  EXPECT_THAT(ended, ElementsAre(""));
}

TEST_F(Fades, ToAPauseGiveItBackTooAndPauseWhatPlaysOnly) {
  begin({.to = 0, .seconds = 2, .then = FadeAction::Then::kPause});
  loop.leap(seconds(5));
  EXPECT_THAT(player.journal.lines(), ElementsAre("pause"));
  EXPECT_EQ(player.volume, 70);
  player.state = 1;
  begin({.to = 0, .seconds = 2, .then = FadeAction::Then::kPause});
  loop.leap(seconds(5));
  EXPECT_THAT(player.journal.lines(), ElementsAre("pause"));
}

TEST_F(Fades, ThatAreBrokenOffGiveItBack) {
  begin({.to = 0, .seconds = 60, .then = FadeAction::Then::kStop});
  loop.leap(seconds(30));
  deed.reset();
  loop.leap(seconds(60));
  EXPECT_EQ(player.volume, 70);
  EXPECT_THAT(ended, IsEmpty());
  EXPECT_THAT(player.journal.lines(), IsEmpty());
}

TEST_F(Fades, FailWithThePlugin) {
  begin({.to = 0, .seconds = 60, .then = FadeAction::Then::kStop});
  loop.leap(seconds(10));
  calls.gone = "The plug-in has gone";
  loop.leap(seconds(10));
  EXPECT_THAT(ended, ElementsAre("The plug-in has gone"));
}

}  // namespace
