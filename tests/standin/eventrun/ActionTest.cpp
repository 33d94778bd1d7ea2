// Actions: one after the other, waits without waiting, and what a second trigger does to a run.
#include "standin/eventrun/EventStage.hpp"

namespace {

using namespace standin;
using std::chrono::seconds;
using support::EventStage;
using support::kEndedTold;
using testing::ElementsAre;
using testing::IsEmpty;

class Actions : public EventStage {
 protected:
  static Rule again(Again how) {
    Rule rule = whenEnded({"a", "b"});
    rule.again = how;
    return rule;
  }
  void advance(base::Milliseconds time) { loop.leap(time); }
};

TEST_F(Actions, BeginWhenTheOneBeforeHasEnded) {
  world.held = {"a"};
  rules.put(1, whenEnded({"a", "b"}));
  playbackEnds();
  EXPECT_THAT(done(), ElementsAre("do a"));
  EXPECT_EQ(engine.running(1), 1U);
  advance(seconds(5));
  world.finish();
  settle();
  EXPECT_THAT(done(), ElementsAre("do a", "do b"));
  EXPECT_EQ(engine.running(1), 0U);
  EXPECT_EQ(last().outcome, Outcome::kDone);
  EXPECT_EQ(last().actions[0].words, "a");
  EXPECT_GE(last().actions[0].spent, 5000);
  EXPECT_EQ(last().actions[1].spent, 0);
  EXPECT_GE(last().actions[1].time - last().actions[0].time, 5000);
}

TEST_F(Actions, AreNotBrokenOffByTheLateReturnOfTheOneBefore) {
  world.slow = {"a"};
  world.held = {"b"};
  rules.put(1, whenEnded({"a", "b"}));
  playbackEnds();
  EXPECT_THAT(world.journal.lines(), ElementsAre("do a", "do b", "over a"));
  world.finish();
  settle();
  EXPECT_EQ(last().outcome, Outcome::kDone);
}

TEST_F(Actions, AreWrittenDownBeforeTheFirstOneBegins) {
  world.onAction = [&](const std::string&) { EXPECT_EQ(history.begun.size(), 1U); };
  rules.put(1, whenEnded());
  playbackEnds();
  EXPECT_EQ(last().id, 1);
}

TEST_F(Actions, GoOnBehindOneThatHasFailed) {
  world.failures = {{"a", "The plug-in has gone"}};
  rules.put(1, whenEnded({"a", "b"}));
  playbackEnds();
  EXPECT_THAT(done(), ElementsAre("do a", "do b"));
  EXPECT_EQ(last().outcome, Outcome::kFailed);
  EXPECT_EQ(last().actions[0].failure, "The plug-in has gone");
  EXPECT_EQ(last().actions[1].failure, "");
}

TEST_F(Actions, GoOnThoughHistoryCannotBeWritten) {
  history.failing = true;
  rules.put(1, whenEnded());
  playbackEnds();
  EXPECT_THAT(done(), ElementsAre("do a"));
  EXPECT_EQ(world.notes.size(), 1U);
}

TEST_F(Actions, ThatWaitLetEverythingElseGoOn) {
  Rule rule = whenEnded({"a", "b"});
  rule.actions.insert(rule.actions.begin() + 1, WaitAction{90});
  rules.put(1, rule);
  rules.put(2, whenEnded({"c"}));
  playbackEnds();
  EXPECT_THAT(done(), ElementsAre("do a", "do c"));
  advance(seconds(89));
  EXPECT_EQ(done().size(), 2U);
  advance(seconds(2));
  EXPECT_THAT(done(), ElementsAre("do a", "do c", "do b"));
  EXPECT_EQ(last().actions[1].spent, 90000);
}

TEST_F(Actions, ThatFireAnotherEventGoThroughItsConditions) {
  Rule first = whenEnded({});
  first.actions = {EventAction{2}, EventAction{3}, EventAction{4}};
  rules.put(1, first);
  Rule second = when(ScriptTrigger{}, {"b"});
  second.conditions = {{PluginCondition{"p"}}};
  rules.put(2, second);
  Rule off = when(ScriptTrigger{}, {"c"});
  off.on = false;
  rules.put(3, off);
  world.holds = {{"p", false}};
  playbackEnds();
  EXPECT_THAT(done(), IsEmpty());
  EXPECT_EQ(count(Outcome::kRefused), 1);
  EXPECT_EQ(last().trigger == "event “Event 1”" || history.ended.front().trigger == "event “Event 1”", true);
  const Evaluation& run = *std::find_if(history.ended.begin(), history.ended.end(),
                                        [](const Evaluation& each) { return each.event == 1; });
  EXPECT_EQ(run.outcome, Outcome::kFailed);
  EXPECT_EQ(run.actions[0].failure, "");
  EXPECT_EQ(run.actions[1].failure, "The event “Event 3” is off");
  EXPECT_EQ(run.actions[2].failure, "There is no such event");
}

TEST_F(Actions, OfNoneAreDoneAtOnce) {
  rules.put(1, whenEnded({}));
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kDone);
}

TEST_F(Actions, KeepToTheRuleAsItWasWhenTheyBegan) {
  world.held = {"a"};
  rules.put(1, whenEnded({"a", "b"}));
  playbackEnds();
  rules.put(1, whenEnded({"x", "y"}));
  world.finish();
  settle();
  EXPECT_THAT(done(), ElementsAre("do a", "do b"));
}

TEST_F(Actions, AreLeftAloneByASecondTrigger) {
  world.held = {"a"};
  rules.put(1, again(Again::kLeave));
  playbackEnds();
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kLeft);
  EXPECT_EQ(last().why, "It was still running");
  world.finish();
  settle();
  EXPECT_THAT(done(), ElementsAre("do a", "do b"));
}

TEST_F(Actions, AreBegunAnewByASecondTrigger) {
  world.held = {"a"};
  rules.put(1, again(Again::kRestart));
  playbackEnds();
  playbackEnds();
  EXPECT_THAT(world.journal.lines(), ElementsAre("do a", "over a", "do a"));
  EXPECT_EQ(last().outcome, Outcome::kStopped);
  EXPECT_EQ(last().actions[0].failure, "Broken off");
  EXPECT_FALSE(last().actions[1].begun);
  world.deeds.pop_front();
  world.finish();
  settle();
  EXPECT_EQ(last().outcome, Outcome::kDone);
}

TEST_F(Actions, ThatWereBrokenOffChangeNothingWhenTheyAnswerAfterAll) {
  world.held = {"a"};
  rules.put(1, again(Again::kRestart));
  playbackEnds();
  playbackEnds();
  world.finish();  // the first run's
  settle();
  EXPECT_THAT(done(), ElementsAre("do a", "do a")) << "the second run still waits for its own";
}

TEST_F(Actions, AreNotBegunAnewByATriggerThatIsRefused) {
  world.held = {"a"};
  Rule rule = again(Again::kRestart);
  rule.conditions = {{PluginCondition{"p"}}};
  rules.put(1, rule);
  playbackEnds();
  world.holds = {{"p", false}};
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kRefused);
  EXPECT_EQ(engine.running(1), 1U);
}

TEST_F(Actions, WaitForTheirTurnWhereTriggersQueue) {
  world.held = {"a"};
  rules.put(1, again(Again::kQueue));
  playbackEnds();
  playbackEnds();
  EXPECT_EQ(history.begun.size(), 1U);
  world.finish();
  settle();
  EXPECT_THAT(done(), ElementsAre("do a", "do b", "do a"));
  EXPECT_EQ(history.begun.size(), 2U);
}

TEST_F(Actions, ThatBeginAnewEndThoseThatWaitedAsTheRuleSaidBefore) {
  world.held = {"a"};
  rules.put(1, again(Again::kQueue));
  playbackEnds();
  playbackEnds();
  rules.put(1, again(Again::kRestart));
  playbackEnds();
  EXPECT_EQ(engine.running(1), 1U);
  EXPECT_EQ(count(Outcome::kStopped), 2);
  EXPECT_EQ(history.begun.size(), 2U);
  EXPECT_THAT(world.journal.lines(), ElementsAre("do a", "over a", "do a"));
}

TEST_F(Actions, ThatAreAskedForByHandAndMustWaitAreAnsweredAtOnce) {
  world.held = {"a"};
  rules.put(1, again(Again::kQueue));
  playbackEnds();
  std::vector<Evaluation> told;
  engine.run(1, [&](const Evaluation& each) { told.push_back(each); });
  settle();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].why, "It waits for its turn");
  world.finish();
  settle();
  EXPECT_EQ(told.size(), 1U);
  EXPECT_EQ(history.begun.size(), 2U);
}

TEST_F(Actions, QueueOnlySoMany) {
  world.held = {"a"};
  rules.put(1, again(Again::kQueue));
  for (int i = 0; i < 40; ++i) {
    engine.pluginTriggered(kEndedTold);
    advance(seconds(10));  // what comes sooner would be taken for an echo
  }
  EXPECT_EQ(count(Outcome::kLeft), 19);
  EXPECT_EQ(last().why, "Too many were waiting already");
  while (!world.deeds.empty()) {
    world.finish();
    settle();
  }
  EXPECT_EQ(count(Outcome::kDone), 21);
}

TEST_F(Actions, RunTogetherUpToABound) {
  world.held = {"a"};
  rules.put(1, again(Again::kTogether));
  for (int i = 0; i < 15; ++i) {
    engine.pluginTriggered(kEndedTold);
    advance(seconds(10));
  }
  EXPECT_EQ(engine.running(1), 10U);
  EXPECT_EQ(count(Outcome::kLeft), 5);
}

TEST_F(Actions, AreStoppedByHandWithWhatWaits) {
  world.held = {"a"};
  rules.put(1, again(Again::kQueue));
  playbackEnds();
  playbackEnds();
  engine.stop(1);
  settle();
  EXPECT_EQ(count(Outcome::kStopped), 2);
  EXPECT_EQ(engine.running(1), 0U);
  EXPECT_THAT(world.journal.lines(), ElementsAre("do a", "over a"));
  playbackEnds();
  EXPECT_EQ(engine.running(1), 1U) << "it may run again";
}

TEST_F(Actions, EndWithTheEventThatIsDeleted) {
  Rule rule = whenEnded({"a"});
  rule.actions.emplace_back(WaitAction{3600});
  rules.put(1, rule);
  playbackEnds();
  rules.remove(1);
  advance(seconds(4000));
  EXPECT_EQ(last().outcome, Outcome::kStopped);
  EXPECT_EQ(last().why, "The event was deleted");
}

TEST_F(Actions, MayDeleteTheirOwnEvent) {
  rules.put(1, whenEnded({"a", "b"}));
  world.onAction = [&](const std::string&) { rules.remove(1); };
  playbackEnds();
  EXPECT_THAT(done(), ElementsAre("do a"));
  EXPECT_EQ(last().outcome, Outcome::kStopped);
}

TEST_F(Actions, MayStopTheirOwnEvent) {
  rules.put(1, whenEnded({"a", "b"}));
  world.onAction = [&](const std::string&) { engine.stop(1); };
  playbackEnds();
  EXPECT_THAT(done(), ElementsAre("do a"));
}

TEST_F(Actions, TellThatSomethingHasChanged) {
  rules.put(1, whenEnded());
  playbackEnds();
  EXPECT_THAT(changed, testing::Not(IsEmpty()));
  EXPECT_THAT(changed, testing::Each(1));
}

}  // namespace
