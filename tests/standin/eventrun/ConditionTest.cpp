// Conditions: asked in order, each with what it saw, and what follows from them.
#include "standin/eventrun/EventStage.hpp"

namespace {

using namespace standin;
using support::EventStage;
using support::Utc;
using testing::ElementsAre;
using testing::IsEmpty;

class Conditions : public EventStage {
 protected:
  Rule asking(std::vector<Condition> conditions, bool any = false) const {
    Rule rule = whenEnded();
    rule.conditions = std::move(conditions);
    rule.any = any;
    return rule;
  }
  static Condition plugin(const char* stored, bool negated = false) {
    return {PluginCondition{stored}, negated};
  }
  std::vector<std::string> seen() const {
    std::vector<std::string> all;
    for (const SeenCondition& each : last().conditions)
      all.push_back(each.words + ": " + each.saw + (each.holds ? ", yes" : ", no"));
    return all;
  }
};

TEST_F(Conditions, AreAllAskedInOrderThoughTheFirstSaysNo) {
  world.holds = {{"p", false}, {"q", true}};
  rules.put(1, asking({plugin("p"), plugin("q"), plugin("r", true)}));
  playbackEnds();
  EXPECT_THAT(world.journal.lines(), ElementsAre("check p", "check q", "check r"));
  EXPECT_EQ(last().outcome, Outcome::kRefused);
  EXPECT_EQ(last().why, "p (no)");
  EXPECT_THAT(seen(), ElementsAre("p: no, no", "q: yes, yes", "not r: yes, no"));
  EXPECT_EQ(last().id, 0);
  EXPECT_THAT(last().actions, IsEmpty());
}

TEST_F(Conditions, AllowWhenAllHold) {
  world.holds = {{"q", false}};
  rules.put(1, asking({plugin("p"), plugin("q", true)}));
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kDone);
  EXPECT_EQ(last().conditions.size(), 2U);
}

TEST_F(Conditions, AllowWhenAnyHoldsWhereOneIsEnough) {
  world.holds = {{"p", false}, {"q", false}};
  rules.put(1, asking({plugin("p"), plugin("q"), plugin("r")}, true));
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kDone);
  world.holds["r"] = false;
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kRefused);
  EXPECT_EQ(last().why, "None of the conditions held");
}

TEST_F(Conditions, OfNoneAllow) {
  rules.put(1, asking({}, true));
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kDone);
}

TEST_F(Conditions, ThatCannotBeAskedDoNotHoldNegatedOrNot) {
  world.pluginGone = "The plug-in isn't running";
  rules.put(1, asking({plugin("p", true)}));
  playbackEnds();
  EXPECT_EQ(last().outcome, Outcome::kRefused);
  EXPECT_THAT(seen(), ElementsAre("not p: could not be asked: The plug-in isn't running, no"));
}

TEST_F(Conditions, OfAPluginThatHangsAreNotAllWaitedFor) {
  world.holding = true;
  rules.put(1, asking({plugin("p"), plugin("q"), plugin("r", true), {DaysCondition{0b0001000}}}));
  playbackEnds();
  loop.leap(std::chrono::seconds(60));
  ASSERT_EQ(world.checks.size(), 1U);
  world.checks.front()("The plug-in has not answered in time", false);
  settle();
  EXPECT_THAT(world.journal.with("check "), ElementsAre("check p"));
  EXPECT_THAT(last().conditions[1].saw, "not asked: The plug-in has not answered in time");
  EXPECT_FALSE(last().conditions[2].holds) << "negated or not";
  EXPECT_TRUE(last().conditions[3].holds) << "what the house knows by itself counts";
}

TEST_F(Conditions, OfAPluginThatRefusesOneAreAskedFurther) {
  world.holding = true;
  rules.put(1, asking({plugin("p"), plugin("q")}));
  playbackEnds();
  world.checks.front()("It can't", false);
  EXPECT_THAT(world.journal.with("check "), ElementsAre("check p", "check q"));
}

/// One event pauses when a device goes on; the other resumes when it goes off, if the first has paused.
class Resuming : public Conditions {
 protected:
  Resuming() {
    world.devices[7] = {.ref = 7, .status = 3};
    Rule pause = when(DeviceTrigger{7, DeviceField::kStatus, Compared::kEquals, "2"}, {"pause"});
    pause.conditions = {plugin("plays")};
    rules.put(1, pause);
    Rule resume = when(DeviceTrigger{7, DeviceField::kStatus, Compared::kEquals, "3"}, {"resume"});
    resume.conditions = {{EventCondition{1}}};
    rules.put(2, resume);
  }
  void device(bool on) {
    DeviceFacts& facts = world.devices[7];
    facts.status = on ? 2 : 3;
    engine.deviceChanged(facts);
    settle();
  }
};

TEST_F(Resuming, FollowsWhatTheEventItselfHasPaused) {
  device(true);
  device(false);
  device(true);
  device(false);
  EXPECT_THAT(done(), ElementsAre("do pause", "do resume", "do pause", "do resume"));
}

TEST_F(Resuming, LeavesAloneWhatWasPausedBefore) {
  device(true);
  device(false);
  world.holds["plays"] = false;
  device(true);
  device(false);
  EXPECT_THAT(done(), ElementsAre("do pause", "do resume"));
  EXPECT_EQ(last().why, "condition 4 (it did not run when it was triggered last)");
}

TEST_F(Resuming, IsDoneOnce) {
  device(true);
  device(false);
  world.devices[7].status = 17;
  engine.deviceChanged(world.devices[7]);
  device(false);
  EXPECT_THAT(done(), ElementsAre("do pause", "do resume"));
  EXPECT_EQ(last().why, "condition 4 (it has not run since)");
}

TEST_F(Resuming, IsNotDoneWherePausingFailed) {
  world.failures["pause"] = "The plug-in isn't running";
  device(true);
  device(false);
  EXPECT_THAT(done(), ElementsAre("do pause"));
}

TEST_F(Resuming, IsNotDoneForAnEventThatIsGone) {
  device(true);
  rules.remove(1);
  device(false);
  EXPECT_EQ(last().why, "condition 4 (there is no such event)");
}

TEST_F(Conditions, OfADeviceSeeItsFieldByItsName) {
  world.devices[5] = {.ref = 5, .status = 2, .value = 40, .text = "Blue"};
  rules.put(1, asking({{DeviceCondition{5, DeviceField::kStatus, Compared::kEquals, "2"}},
                       {DeviceCondition{5, DeviceField::kValue, Compared::kBelow, "40"}, true},
                       {DeviceCondition{5, DeviceField::kText, Compared::kEquals, "blue"}},
                       {DeviceCondition{9, DeviceField::kText, Compared::kEquals, "x"}, true}}));
  playbackEnds();
  EXPECT_THAT(seen(), ElementsAre("condition 1: on, yes", "not condition 1: 40, yes",
                                  "condition 1: Blue, yes", "not condition 1: there is no such device, no"));
}

TEST_F(Conditions, OfAWindowReachOverMidnightAndEndBeforeTheirEnd) {
  const auto allowedAt = [&](int hour, int minute, WindowCondition window) {
    clock.setBy(base::Milliseconds(Utc(2026, 1, 1, hour, minute) - clock.now()));
    rules.put(1, asking({{window}}));
    playbackEnds();
    return last().outcome == Outcome::kDone;
  };
  const WindowCondition night{22 * 60, 6 * 60};
  EXPECT_TRUE(allowedAt(22, 0, night));
  EXPECT_TRUE(allowedAt(3, 0, night));
  EXPECT_TRUE(allowedAt(5, 59, night));
  EXPECT_FALSE(allowedAt(6, 0, night));
  EXPECT_FALSE(allowedAt(21, 59, night));
  const WindowCondition day{8 * 60, 9 * 60};
  EXPECT_TRUE(allowedAt(8, 0, day));
  EXPECT_FALSE(allowedAt(9, 0, day));
  EXPECT_THAT(seen(), ElementsAre("condition 2: 09:00, no"));
}

TEST_F(Conditions, OfWeekdaysSeeTheDay) {
  rules.put(1, asking({{DaysCondition{0b0001000}}, {DaysCondition{0b1100000}, true}}));
  playbackEnds();
  EXPECT_THAT(seen(), ElementsAre("condition 3: Thursday, yes", "not condition 3: Thursday, yes"));
}

TEST_F(Conditions, ThatTakeTimeHoldNothingUp) {
  world.holding = true;
  rules.put(1, asking({plugin("p"), plugin("q")}));
  rules.put(2, asking({plugin("r")}));
  playbackEnds();
  ASSERT_EQ(world.checks.size(), 2U) << "the second event is asked beside the first";
  world.answer(true);
  world.answer(false);
  settle();
  EXPECT_EQ(count(Outcome::kRefused), 1);
  world.answer(true);
  settle();
  EXPECT_THAT(done(), ElementsAre("do a"));
}

TEST_F(Conditions, OfOneEventAreAskedOneTriggerAfterTheOther) {
  world.holding = true;
  rules.put(1, asking({plugin("p")}));
  playbackEnds();
  playbackEnds();
  EXPECT_EQ(world.checks.size(), 1U);
  world.answer(false);
  settle();
  EXPECT_EQ(world.checks.size(), 1U) << "the second trigger has its own answer";
  world.answer(true);
  settle();
  EXPECT_THAT(done(), ElementsAre("do a"));
}

TEST_F(Conditions, DoNotCountWhenTheActionsAreRunByHand) {
  world.holds = {{"p", false}};
  rules.put(1, asking({plugin("p")}));
  std::vector<Evaluation> told;
  engine.run(1, [&](const Evaluation& each) { told.push_back(each); });
  settle();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].outcome, Outcome::kRunning);
  EXPECT_EQ(told[0].id, 1);
  EXPECT_EQ(last().outcome, Outcome::kDone);
  EXPECT_EQ(last().trigger, "by hand");
}

TEST_F(Conditions, CountWhenItIsTriggeredByHandAndTheAnswerSaysWhichSaidNo) {
  world.holds = {{"p", false}};
  Rule rule = asking({plugin("p")});
  rule.on = false;
  rules.put(1, rule);
  std::vector<Evaluation> told;
  engine.trigger(1, [&](const Evaluation& each) { told.push_back(each); });
  settle();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].outcome, Outcome::kRefused);
  EXPECT_EQ(told[0].why, "p (no)");
}

TEST_F(Conditions, AreAskedByADryRunThatDoesNothingElse) {
  world.holds = {{"p", false}};
  std::vector<DryRun> told;
  engine.dry(0, asking({plugin("p"), plugin("q")}), [&](const DryRun& each) { told.push_back(each); });
  settle();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_FALSE(told[0].would);
  EXPECT_EQ(told[0].why, "p (no)");
  EXPECT_EQ(told[0].conditions.size(), 2U);
  EXPECT_THAT(told[0].actions, ElementsAre("a"));
  world.holds.clear();
  engine.dry(0, asking({plugin("p")}), [&](const DryRun& each) { told.push_back(each); });
  EXPECT_TRUE(told.back().would);
  EXPECT_THAT(done(), IsEmpty());
  EXPECT_THAT(history.ended, IsEmpty());
  EXPECT_THAT(history.begun, IsEmpty());
}

TEST_F(Conditions, OfAnEventThatIsNotThereAreAFailure) {
  EXPECT_THROW(engine.run(7, {}), base::Failure);
  EXPECT_THROW(engine.trigger(7, {}), base::Failure);
  EXPECT_THROW(engine.stop(7), base::Failure);
}

}  // namespace
