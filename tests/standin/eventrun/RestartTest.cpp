// The house ends, in order or not, and starts again: no time that it was off loses an alarm.
#include <optional>

#include "standin/eventrun/EventStage.hpp"

namespace {

using namespace standin;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using support::Utc;
using testing::ElementsAre;
using testing::IsEmpty;

/// What a database would hold.
class KeptAlarms : public AlarmMemory {
 public:
  explicit KeptAlarms(const support::StagedHistory& history) : history_(history) {}
  [[nodiscard]] std::optional<std::int64_t> seen() const override {
    return kept.contains(0) ? std::optional(kept.at(0)) : std::nullopt;
  }
  [[nodiscard]] std::optional<std::int64_t> seen(std::int32_t event) const override {
    std::optional<std::int64_t> seen = this->seen();
    if (kept.contains(event)) seen = std::max(seen, std::optional(kept.at(event)));
    for (const Evaluation& each : history_.begun)
      if (each.event == event) seen = std::max(seen, std::optional(each.time));
    return seen;
  }
  void keep(std::int64_t moment) override { keep(0, moment); }
  void keep(std::int32_t event, std::int64_t moment) override {
    kept[event] = moment;
    ++times;
  }
  std::map<std::int32_t, std::int64_t> kept;
  int times = 0;

 private:
  const support::StagedHistory& history_;
};

/// It is noon when a test begins, and the house has never run.
class Restart : public testing::Test {
 protected:
  void start() {
    engine.emplace(EngineParts{loop, rules, world, words, history, clock, &memory}, [](std::int32_t) {});
  }
  void startReady() {
    start();
    engine->houseStarted();
    loop.leap(seconds(1));
  }
  /// In order.
  void end() { engine.reset(); }
  /// As a pulled plug does: nothing is kept at its end.
  void pullThePlug() {
    const auto kept = memory.kept;
    engine.reset();
    memory.kept = kept;
  }
  void at(std::int32_t event, int hour, int minute = 0) {
    Rule rule;
    rule.triggers = {TimeTrigger{hour * 60 + minute, 0}};
    rule.actions = {PluginAction{std::to_string(event)}};
    rules.put(event, rule);
  }
  std::vector<std::string> done() const { return world.journal.with("do "); }
  std::vector<std::string> missed() const {
    std::vector<std::string> all;
    for (const Evaluation& each : history.ended)
      if (each.outcome == Outcome::kMissed) all.push_back(std::to_string(each.event));
    return all;
  }

  support::VirtualLoop loop;
  support::HouseClock clock{loop, Utc(2026, 1, 1, 12)};
  support::StagedRules rules;
  support::StagedWorld world{loop};
  support::StagedWords words;
  support::StagedHistory history;
  KeptAlarms memory{history};
  std::optional<EventEngine> engine;
};

TEST_F(Restart, OfAHouseThatHasNeverRunMissesNothing) {
  at(1, 11, 55);
  at(2, 9);
  startReady();
  loop.leap(hours(1));
  EXPECT_THAT(done(), IsEmpty());
  EXPECT_THAT(missed(), IsEmpty());
}

TEST_F(Restart, RunsAnAlarmLateThatFellIntoIt) {
  startReady();
  at(1, 13);
  loop.leap(minutes(59));
  end();
  loop.leap(minutes(5));
  startReady();
  EXPECT_THAT(done(), ElementsAre("do 1"));
  EXPECT_EQ(history.ended.back().trigger, "at 780, 4 minutes late");
  loop.leap(hours(22));
  EXPECT_EQ(done().size(), 1U);
  loop.leap(hours(2));
  EXPECT_EQ(done().size(), 2U);
}

TEST_F(Restart, RunsAnAlarmLateThatFellIntoAPowerCut) {
  startReady();
  at(1, 13);
  loop.leap(minutes(59));
  pullThePlug();
  loop.leap(minutes(5));
  startReady();
  EXPECT_THAT(done(), ElementsAre("do 1"));
}

TEST_F(Restart, TellsAnAlarmAsMissedThatFellIntoALongOne) {
  startReady();
  at(1, 13);
  loop.leap(minutes(30));
  pullThePlug();
  loop.leap(hours(4));
  startReady();
  EXPECT_THAT(done(), IsEmpty());
  ASSERT_THAT(missed(), ElementsAre("1"));
  EXPECT_EQ(history.ended.back().why, "The clock was set over it, or the house was asleep or off");
  EXPECT_EQ(world.notes.size(), 1U);
}

TEST_F(Restart, DoesNotRingAgainWhatHasRungBeforeThePlugWasPulled) {
  startReady();
  at(1, 13);
  loop.leap(hours(1) + seconds(1));
  ASSERT_THAT(done(), ElementsAre("do 1"));
  pullThePlug();
  loop.leap(seconds(5));
  startReady();
  loop.leap(hours(1));
  EXPECT_THAT(done(), ElementsAre("do 1"));
  EXPECT_THAT(missed(), IsEmpty());
}

TEST_F(Restart, WaitsWithLateAlarmsForThePlayer) {
  startReady();
  at(1, 13);
  loop.leap(minutes(59));
  end();
  loop.leap(minutes(5));
  start();
  loop.leap(seconds(20));
  EXPECT_THAT(done(), IsEmpty());
  engine->houseStarted();
  loop.leap(seconds(1));
  EXPECT_THAT(done(), ElementsAre("do 1"));
}

TEST_F(Restart, DoesNotWaitForAPlayerThatDoesNotCome) {
  startReady();
  at(1, 13);
  loop.leap(minutes(59));
  end();
  loop.leap(minutes(5));
  start();
  loop.leap(minutes(1) + seconds(1));
  EXPECT_THAT(done(), ElementsAre("do 1"));
}

TEST_F(Restart, RingsNothingThatWasDueBeforeItsEventWasMade) {
  startReady();
  at(2, 23);
  loop.leap(minutes(60) + seconds(30));
  at(1, 13);
  pullThePlug();
  loop.leap(seconds(10));
  startReady();
  EXPECT_THAT(done(), IsEmpty());
}

TEST_F(Restart, WithAClockThatHasGoneWrongMeanwhileSilencesNothing) {
  startReady();
  at(1, 13);
  clock.setBy(hours(24 * 400));
  loop.leap(minutes(5));
  end();
  clock.setBy(-hours(24 * 400));
  startReady();
  loop.leap(hours(1));
  EXPECT_THAT(done(), ElementsAre("do 1"));
}

TEST_F(Restart, WithAClockThatWasSetBackAnHourRingsNothingTwice) {
  startReady();
  at(1, 13);
  loop.leap(hours(1) + minutes(10));
  end();
  clock.setBy(-hours(1));
  startReady();
  loop.leap(hours(2));
  EXPECT_EQ(done().size(), 1U);
}

TEST_F(Restart, IsKeptTrackOfOnceAMinute) {
  startReady();
  const int before = memory.times;
  loop.leap(hours(1));
  EXPECT_GE(memory.times - before, 55);
  EXPECT_LE(memory.times - before, 61);
}

TEST_F(Restart, TellsAsCutWhatStillWaitedForItsConditions) {
  startReady();
  Rule rule;
  rule.triggers = {PluginTrigger{support::kEnded}};
  rule.conditions = {{PluginCondition{"p"}}};
  rule.actions = {PluginAction{"a"}};
  rules.put(1, rule);
  world.holding = true;
  for (int i = 0; i < 3; ++i) engine->pluginTriggered(support::kEndedTold);
  loop.leap(seconds(1));
  engine.reset();
  EXPECT_EQ(history.outcomes[Outcome::kCut], 3);
  EXPECT_EQ(history.ended.back().why, "The house ended before the first action");
}

}  // namespace
