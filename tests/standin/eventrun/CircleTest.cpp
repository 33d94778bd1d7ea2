// Events that trigger each other.
#include <functional>

#include "standin/eventrun/EventStage.hpp"

namespace {

using namespace standin;
using std::chrono::milliseconds;
using std::chrono::seconds;
using support::EventStage;
using support::kEndedTold;
using support::kStartedTold;
using testing::ElementsAre;

class Circle : public EventStage {
 protected:
  static Rule firing(std::vector<std::int32_t> events, Again again = Again::kQueue) {
    Rule rule = whenEnded({});
    for (const std::int32_t each : events) rule.actions.emplace_back(EventAction{each});
    rule.again = again;
    return rule;
  }
  static Rule whenDevice(std::int32_t ref, std::vector<std::string> actions) {
    return when(DeviceTrigger{ref, DeviceField::kStatus, Compared::kChanges, ""}, std::move(actions));
  }
  /// The device goes from on to off, or from off to on.
  void changes(std::int32_t ref) {
    DeviceFacts& device = world.devices[ref];
    device.status = device.status == 2 ? 3 : 2;
    engine.deviceChanged(device);
  }
  /// The house answers to each action a little later.
  void answering(std::function<void(const std::string& action)> answer) {
    world.onAction = [this, answer = std::move(answer)](const std::string& action) {
      timers.push_back(loop.makeTimer(milliseconds(300), [this, answer, action, at = timers.size()] {
        timers[at]->enabled(false);
        answer(action);
      }));
      timers.back()->enabled(true);
    };
  }
  std::vector<std::unique_ptr<base::Timer>> timers;
  int runs(std::int32_t event) const {
    return static_cast<int>(std::count_if(history.begun.begin(), history.begun.end(),
                                          [&](const Evaluation& each) { return each.event == event; }));
  }
};

TEST_F(Circle, OfTwoEventsIsCutAndToldInHistoryAndLog) {
  rules.put(1, firing({2}));
  rules.put(2, firing({1}));
  engine.run(1, {});
  loop.leap(seconds(10));
  EXPECT_EQ(count(Outcome::kCircle), 1);
  EXPECT_EQ(runs(1), 20);
  EXPECT_EQ(runs(2), 20);
  ASSERT_EQ(world.notes.size(), 1U);
  EXPECT_EQ(world.notes[0],
            "Warning: Event “Event 1”: Events trigger each other in a circle; it was cut after 20 rounds");
}

TEST_F(Circle, OfAnEventWithItselfIsCut) {
  rules.put(1, firing({1}, Again::kTogether));
  engine.run(1, {});
  loop.leap(seconds(10));
  EXPECT_EQ(runs(1), 20);
  EXPECT_EQ(count(Outcome::kCircle), 1);
}

TEST_F(Circle, WithWaitsInItIsCutTheSame) {
  Rule rule = firing({2});
  rule.actions.insert(rule.actions.begin(), WaitAction{60});
  rules.put(1, rule);
  rules.put(2, firing({1}));
  engine.run(1, {});
  loop.leap(std::chrono::hours(2));
  EXPECT_EQ(runs(1), 20);
}

TEST_F(Circle, ThatBranchesEndsToo) {
  rules.put(1, firing({1, 1, 1, 2, 2}, Again::kTogether));
  rules.put(2, firing({1, 1, 2, 1}, Again::kTogether));
  engine.run(1, {});
  loop.leap(seconds(10));
  EXPECT_EQ(engine.running(1) + engine.running(2), 0U);
  EXPECT_EQ(count(Outcome::kCircle), 1) << "told once";
  EXPECT_EQ(world.notes.size(), 1U);
  EXPECT_LE(history.begun.size(), 1000U);
  EXPECT_LE(history.ended.size(), 1001U) << "and no more is kept of it than ran";
}

TEST_F(Circle, OfEventsThatFireEachOtherTwiceIsCutOnce) {
  for (std::int32_t id = 1; id <= 5; ++id)
    rules.put(id, firing({id % 5 + 1, id % 5 + 1, (id + 1) % 5 + 1}, Again::kTogether));
  engine.run(1, {});
  loop.leap(seconds(10));
  EXPECT_EQ(count(Outcome::kCircle), 1);
  EXPECT_EQ(world.notes.size(), 1U);
  EXPECT_LE(history.ended.size(), 1001U);
}

TEST_F(Circle, IsToldByTheActionThatWouldHaveGoneOn) {
  rules.put(1, firing({1}, Again::kTogether));
  engine.run(1, {});
  loop.leap(seconds(10));
  ASSERT_EQ(count(Outcome::kFailed), 1);
  for (const Evaluation& each : history.ended)
    if (each.outcome == Outcome::kFailed) {
      EXPECT_EQ(each.actions[0].failure, "Events trigger each other in a circle; it was cut after 20 rounds");
    }
}

TEST_F(Circle, IsNotSeenInALongRowOfEvents) {
  for (std::int32_t id = 1; id < 300; ++id) rules.put(id, firing({id + 1}));
  rules.put(300, when(ScriptTrigger{}, {"ring"}));
  engine.run(1, {});
  loop.leap(seconds(10));
  EXPECT_THAT(done(), ElementsAre("do ring"));
}

TEST_F(Circle, ThroughThePlayerIsCut) {
  // Two events that trigger each other by turns: what the player was made to do, it tells a little later.
  rules.put(1, when(PluginTrigger{support::kEnded}, {"play"}));
  rules.put(2, when(PluginTrigger{support::kStarted}, {"stop"}));
  answering([&](const std::string& action) {
    engine.pluginTriggered(action == "play" ? kStartedTold : kEndedTold);
  });
  playbackEnds();
  loop.leap(std::chrono::minutes(5));
  EXPECT_EQ(count(Outcome::kCircle), 1);
  EXPECT_EQ(runs(1), 20);
  world.onAction = nullptr;
  playbackEnds();
  EXPECT_EQ(runs(1), 21) << "the next one that nobody has caused runs again";
}

TEST_F(Circle, ThroughTheDeviceThatItsActionSetsIsCut) {
  world.devices[7] = {.ref = 7, .status = 2};
  Rule rule = whenDevice(7, {});
  rule.actions.emplace_back(DeviceAction{.ref = 7});
  rules.put(1, rule);
  answering([&](const std::string&) { changes(7); });
  changes(7);
  loop.leap(std::chrono::minutes(5));
  EXPECT_EQ(count(Outcome::kCircle), 1);
  EXPECT_EQ(runs(1), 20);
}

TEST_F(Circle, ThroughADeviceThatShowsThePlayerIsCut) {
  world.devices[8] = {.ref = 8, .status = 2, .ofPlugin = true};
  rules.put(1, whenDevice(8, {"play"}));
  answering([&](const std::string&) { changes(8); });
  changes(8);
  loop.leap(std::chrono::minutes(5));
  EXPECT_EQ(count(Outcome::kCircle), 1);
  EXPECT_EQ(runs(1), 20);
}

TEST_F(Circle, ThroughAScriptIsCut) {
  Rule rule = when(ScriptTrigger{}, {});
  rule.actions.emplace_back(ScriptAction{"again"});
  rules.put(1, rule, "Rung");
  answering([&](const std::string&) { engine.scriptTriggers("Rung"); });
  engine.scriptTriggers("Rung");
  loop.leap(std::chrono::minutes(5));
  EXPECT_EQ(count(Outcome::kCircle), 1);
  EXPECT_EQ(runs(1), 20);
}

TEST_F(Circle, IsNotSeenInASensorThatChangesEverySecond) {
  world.devices[5] = {.ref = 5, .status = 2};
  world.devices[7] = {.ref = 7, .status = 2};
  Rule rule = whenDevice(5, {"a"});
  rule.actions.emplace_back(DeviceAction{.ref = 7});
  rule.actions.emplace_back(ScriptAction{"short"});
  rules.put(1, rule);
  for (int i = 0; i < 200; ++i) {
    changes(5);
    loop.leap(seconds(1));
  }
  EXPECT_EQ(count(Outcome::kDone), 200);
  EXPECT_EQ(count(Outcome::kCircle), 0);
}

TEST_F(Circle, IsNotSeenInADraggedSliderBesideAnotherEventThatActs) {
  world.devices[5] = {.ref = 5, .status = 2};
  world.devices[6] = {.ref = 6, .status = 2};
  rules.put(1, whenDevice(5, {"a"}));
  rules.put(2, whenDevice(6, {"b"}));
  for (int i = 0; i < 100; ++i) {
    changes(5);
    changes(6);
    loop.leap(milliseconds(200));
  }
  EXPECT_EQ(count(Outcome::kDone), 200);
}

TEST_F(Circle, IsNotSeenInAnEventThatIsOftenTriggered) {
  rules.put(1, whenEnded());
  for (int i = 0; i < 200; ++i) {
    playbackEnds();
    loop.leap(seconds(4));
  }
  EXPECT_EQ(count(Outcome::kDone), 200);
}

TEST_F(Circle, IsNotSeenInAnEventThatFiresAnotherManyTimes) {
  rules.put(1, firing(std::vector<std::int32_t>(50, 2)));
  Rule rung = when(ScriptTrigger{}, {"ring"});
  rung.again = Again::kTogether;
  rules.put(2, rung);
  engine.run(1, {});
  settle();
  EXPECT_EQ(count(Outcome::kCircle), 0);
  EXPECT_EQ(done().size(), 50U);
}

TEST_F(Circle, LeavesTheHouseResponsive) {
  rules.put(1, firing({2}));
  rules.put(2, firing({1}));
  rules.put(3, when(PluginTrigger{support::kStarted}, {"c"}));
  engine.run(1, {});
  engine.pluginTriggered(kStartedTold);
  loop.pump();
  loop.pump();
  loop.pump();
  EXPECT_THAT(done(), ElementsAre("do c")) << "it had its turn while the others went round";
}

}  // namespace
