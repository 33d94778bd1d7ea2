#include "standin/eventworld/Wake.hpp"

#include "standin/eventworld/PlayerStage.hpp"

namespace {

using namespace standin;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class Waking : public testing::Test {
 protected:
  void begin(WakeAction action = {
                 .choices = {"one", "two"}, .words = "Good morning", .volume = 50, .seconds = 60}) {
    deed = BeginWake(
        loop, calls,
        [&](const std::string& words, const EventWorld::Done& said) {
          spoken.push_back(words);
          said(voiceless);
        },
        memory, guard, action, [&](const std::string& failure) { ended.push_back(failure); });
  }
  /// The player leaves an action alone that it has carried out within the last five seconds.
  void guarded() {
    auto& act = player.vxif.operations["TriggerAction"];
    act = [this, acts = act](base::Args& args) {
      const std::string action = base::ToText(args[0]);
      if (action == lastAction && loop.now() - lastTime <= seconds(5)) return base::Value();
      lastAction = action;
      lastTime = loop.now();
      return acts(args);
    };
  }
  std::string lastAction;
  base::Milliseconds lastTime{0};
  /// As the plug-in tells it.
  void stopsPlaying() {
    player.state = 1;
    memory.playbackEnded();
    loop.leap(seconds(2));
  }
  support::VirtualLoop loop;
  support::StagedPlayer player;
  support::StagedCalls calls{loop, player.vxif};
  WakeMemory memory{loop, calls, [&](const std::string& failure) { failures.push_back(failure); }};
  std::shared_ptr<RepeatGuard> guard = std::make_shared<RepeatGuard>(loop);
  std::vector<std::string> failures;
  std::vector<std::string> ended;
  std::vector<std::string> spoken;
  std::string voiceless;  ///< why the words are not heard
  std::unique_ptr<Deed> deed;
};

TEST_F(Waking, PlaysTheFirstChoiceFromSilenceUpToItsVolume) {
  begin();
  loop.leap(seconds(1));
  EXPECT_THAT(player.journal.lines(), ElementsAre("stop", "do one"));
  EXPECT_LE(player.volume, 2);
  loop.leap(seconds(30));
  EXPECT_NEAR(player.volume, 25, 2);
  EXPECT_THAT(ended, IsEmpty());
  loop.leap(seconds(32));
  EXPECT_EQ(player.volume, 50);
  EXPECT_THAT(ended, ElementsAre(""));
  EXPECT_TRUE(std::is_sorted(player.volumes.begin(), player.volumes.end()));
  EXPECT_THAT(spoken, IsEmpty());
}

TEST_F(Waking, TakesTheNextChoiceWhereOneIsMissing) {
  player.missing = {"one"};
  begin();
  loop.leap(seconds(9));
  EXPECT_EQ(player.journal.count("do two"), 0U);
  loop.leap(seconds(3));
  EXPECT_EQ(player.journal.count("do two"), 1U);
  loop.leap(seconds(70));
  EXPECT_EQ(player.source(), "two.mp3");
  EXPECT_THAT(ended, ElementsAre(""));
}

TEST_F(Waking, WaitsForAChoiceThatTakesLongToBegin) {
  auto& act = player.vxif.operations["TriggerAction"];
  act = [this, acts = act](base::Args& args) {
    loop.leap(seconds(15));
    return acts(args);
  };
  begin();
  loop.leap(seconds(90));
  EXPECT_EQ(player.journal.count("do two"), 0U);
  EXPECT_EQ(player.source(), "one.mp3");
  EXPECT_THAT(ended, ElementsAre(""));
}

TEST_F(Waking, IsHeardWhereItIsBegunAnewWithinThePluginsGuard) {
  guarded();
  begin();
  loop.leap(seconds(2));
  begin();
  loop.leap(seconds(2));
  EXPECT_EQ(player.journal.count("do one"), 1U);
  loop.leap(seconds(90));
  EXPECT_EQ(player.journal.count("do one"), 2U);
  EXPECT_EQ(player.journal.count("do two"), 0U);
  EXPECT_THAT(spoken, IsEmpty());
  EXPECT_THAT(ended, ElementsAre(""));
}

TEST_F(Waking, WithWhatAnEventHasJustPlayedIsHeard) {
  guarded();
  guard->carryOut(player.vxif, "one");
  begin();
  loop.leap(seconds(90));
  EXPECT_EQ(player.source(), "one.mp3");
  EXPECT_THAT(ended, ElementsAre(""));
}

TEST_F(Waking, TakesTheNextChoiceWhereOneIsSilent) {
  player.silent = {"one.mp3"};
  begin();
  loop.leap(seconds(80));
  EXPECT_EQ(player.source(), "two.mp3");
  EXPECT_EQ(player.volume, 50);
}

TEST_F(Waking, EndsWithAToneAndWordsWhereNothingIsHeardAndPutsBackWhatWasThere) {
  player.missing = {"one"};
  player.silent = {"two.mp3"};
  begin();
  loop.leap(seconds(40));
  EXPECT_THAT(spoken, ElementsAre("Good morning"));
  EXPECT_THAT(ended, ElementsAre("None of the choices was heard; a tone and the words were, instead"));
  EXPECT_EQ(player.source(), "b.mp3");
  EXPECT_NEAR(player.position, 42, 0.3);
  EXPECT_EQ(player.volume, 70);
  EXPECT_NE(player.state, 3);
}

TEST_F(Waking, EndsWithAToneAndWordsWhereThePluginIsGone) {
  calls.gone = "The plug-in isn't running";
  begin();
  loop.leap(seconds(1));
  EXPECT_THAT(spoken, ElementsAre("Good morning"));
  EXPECT_THAT(ended,
              ElementsAre("None of the choices was heard (The plug-in isn't running); a tone and the words "
                          "were, instead"));
}

TEST_F(Waking, DoesNotTellWordsAsHeardThatWereNot) {
  player.missing = {"one", "two"};
  voiceless = "There is no sound device";
  begin();
  loop.leap(seconds(40));
  EXPECT_THAT(spoken, ElementsAre("Good morning"));
  EXPECT_THAT(ended,
              ElementsAre("None of the choices was heard; nor were the words (There is no sound device)"));
}

TEST_F(Waking, IsHeardThroughAMute) {
  player.muted = true;
  begin();
  loop.leap(seconds(2));
  EXPECT_FALSE(player.muted);
  stopsPlaying();
  EXPECT_TRUE(player.muted) << "as it was before";
}

TEST_F(Waking, PutsTheQueueItsItemAndItsPlaceBackWhenItIsStopped) {
  player.shuffled = true;
  begin();
  loop.leap(seconds(70));
  ASSERT_EQ(player.source(), "one.mp3");
  stopsPlaying();
  EXPECT_EQ(player.source(), "b.mp3");
  EXPECT_NEAR(player.position, 42, 0.3);
  EXPECT_EQ(player.volume, 70);
  EXPECT_NE(player.state, 3) << "nothing begins to sound by itself";
  EXPECT_TRUE(player.autoStart);
  EXPECT_TRUE(player.shuffled);
}

TEST_F(Waking, LeavesTheOrderAsItWasWhereThePlayerRefusesItsPlace) {
  player.shuffled = true;
  begin();
  loop.leap(seconds(70));
  player.refusesItems = true;
  stopsPlaying();
  EXPECT_EQ(failures.size(), 1U);
  EXPECT_TRUE(player.shuffled);
  EXPECT_TRUE(player.autoStart);
}

TEST_F(Waking, DoesNotTakeItsOwnStopForTheEnd) {
  player.missing = {"one"};
  begin();
  loop.leap(seconds(1));
  memory.playbackEnded();  // what was in the player has been stopped for the waking
  loop.leap(seconds(80));
  ASSERT_EQ(player.source(), "two.mp3");
  stopsPlaying();
  EXPECT_EQ(player.source(), "b.mp3");
}

TEST_F(Waking, LeavesAloneWhatSomebodyHasPutIntoThePlayerSince) {
  begin();
  loop.leap(seconds(70));
  player.lists.push_back({"own", {"mine.mp3"}});
  player.list = player.lists.size() - 1;
  player.item = 0;
  stopsPlaying();
  EXPECT_EQ(player.source(), "mine.mp3");
  player.list = 1;
  stopsPlaying();
  EXPECT_EQ(player.list, 1U) << "and it has been forgotten then";
}

TEST_F(Waking, PutsNothingBackWhileItGoesOn) {
  begin();
  loop.leap(seconds(70));
  memory.playbackEnded();
  loop.leap(seconds(2));
  EXPECT_EQ(player.source(), "one.mp3");
}

TEST_F(Waking, TwiceStillPutsBackWhatWasThereFirst) {
  begin();
  loop.leap(seconds(70));
  begin({.choices = {"two"}, .words = {}, .volume = 50, .seconds = 0});
  loop.leap(seconds(5));
  EXPECT_EQ(player.source(), "two.mp3");
  stopsPlaying();
  EXPECT_EQ(player.source(), "b.mp3");
}

TEST_F(Waking, ThatIsBrokenOffInItsSilencePutsEverythingBack) {
  player.missing = {"one"};
  begin();
  loop.leap(seconds(2));
  deed.reset();
  loop.leap(seconds(60));
  EXPECT_EQ(player.source(), "b.mp3");
  EXPECT_EQ(player.volume, 70);
  EXPECT_THAT(ended, IsEmpty());
}

}  // namespace
