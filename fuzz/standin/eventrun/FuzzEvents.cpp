// Random events, triggers, clocks and answers of the house. Whatever comes: each trigger that is answered
// with yes comes to one evaluation, nothing is done whose conditions said no, actions follow each other in
// their order, the bounds of what runs at once hold, and everything comes to an end.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "standin/eventrun/EventEngine.hpp"
#include "standin/eventrun/StagedHouse.hpp"

namespace {

using namespace standin;

constexpr std::int32_t kEvents = 5;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// The fuzzer's bytes, as small numbers.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), end_(data + size) {}
  [[nodiscard]] bool left() const { return data_ != end_; }
  std::int32_t below(std::int32_t most) { return left() ? *data_++ % most : 0; }
  bool yes() { return below(2) == 1; }

 private:
  const std::uint8_t* data_;
  const std::uint8_t* end_;
};

std::string Stored(std::int32_t number) { return "P\2T\2" + std::to_string(number); }

Trigger AnyTrigger(Bytes& bytes) {
  switch (bytes.below(7)) {
    case 0: return TimeTrigger{bytes.below(250) * 6, static_cast<Weekdays>(bytes.below(128))};
    case 1: return SunTrigger{bytes.yes(), bytes.below(200) - 100, 0};
    case 2: return EveryTrigger{bytes.below(200)};
    case 3: return StartTrigger{};
    case 4:
      return DeviceTrigger{bytes.below(3), DeviceField::kValue, static_cast<Compared>(bytes.below(4)),
                           std::to_string(bytes.below(4))};
    case 5: return ScriptTrigger{};
    default: return PluginTrigger{Stored(bytes.below(4))};
  }
}

Condition AnyCondition(Bytes& bytes) {
  const bool negated = bytes.yes();
  switch (bytes.below(4)) {
    case 0: return {WindowCondition{bytes.below(240) * 6, bytes.below(240) * 6}, negated};
    case 1: return {DaysCondition{static_cast<Weekdays>(bytes.below(128))}, negated};
    case 2: return {DeviceCondition{bytes.below(4), DeviceField::kValue, Compared::kAbove, "1"}, negated};
    default: return {PluginCondition{std::to_string(bytes.below(3))}, negated};
  }
}

Action AnyAction(Bytes& bytes) {
  switch (bytes.below(4)) {
    case 0: return WaitAction{bytes.below(250)};
    case 1: return EventAction{bytes.below(kEvents + 2)};
    default: return PluginAction{std::to_string(bytes.below(6))};
  }
}

/// Of every second event one condition is enough.
bool IsEasy(std::int32_t event) { return event % 2 == 1; }

Rule AnyRule(Bytes& bytes, std::int32_t event) {
  Rule rule;
  rule.on = bytes.below(8) != 0;
  for (int i = bytes.below(4); i > 0; --i) rule.triggers.push_back(AnyTrigger(bytes));
  for (int i = bytes.below(4); i > 0; --i) rule.conditions.push_back(AnyCondition(bytes));
  for (int i = bytes.below(5); i > 0; --i) rule.actions.push_back(AnyAction(bytes));
  rule.any = IsEasy(event);
  rule.again = static_cast<Again>(bytes.below(4));
  return rule;
}

/// The house and its engine, with what must hold of them.
class Stage {
 public:
  explicit Stage(Bytes& bytes) : bytes_(bytes) {
    clock_.likeBerlin();
    rules_.standAt({double(bytes.below(180) - 90), double(bytes.below(180))});
    world_.held = {"0", "1"};
    world_.failures = {{"2", "it failed"}};
    for (std::int32_t ref = 0; ref < 3; ++ref) world_.devices[ref] = {.ref = ref};
    for (std::int32_t id = 1; id <= kEvents; ++id) rules_.put(id, AnyRule(bytes_, id));
  }

  void play() {
    while (bytes_.left()) step();
    world_.holding = false;
    world_.held.clear();
    for (std::int32_t id = 1; id <= kEvents; ++id) {
      Rule off;
      off.on = false;
      rules_.put(id, off);
    }
    // What is held answers, and what is to come is let come: circles of the longest waits end too.
    for (int round = 0; round < 400 && !isIdle(); ++round) {
      while (!world_.checks.empty()) world_.answer(round % 2 == 0);
      while (!world_.deeds.empty()) world_.finish();
      loop_.leap(std::chrono::minutes(10));
    }
    Require(isIdle());
    judge();
    judgeTriggers();
    judgeWorld();
  }

 private:
  void step() {
    switch (bytes_.below(12)) {
      case 0: loop_.leap(std::chrono::seconds(bytes_.below(250))); break;
      case 1: loop_.leap(std::chrono::minutes(bytes_.below(250))); break;
      case 2: clock_.setBy(std::chrono::minutes((bytes_.below(250) - 125) * 10)); break;
      case 3: askByScript(1 + bytes_.below(kEvents + 1)); break;
      case 4: change(); break;
      case 5: remake(1 + bytes_.below(kEvents)); break;
      case 6: rules_.remove(1 + bytes_.below(kEvents)); break;
      case 7: byHand(); break;
      case 8: world_.holding = bytes_.yes(); break;
      case 9:
        if (!world_.checks.empty()) world_.answer(bytes_.yes());
        break;
      case 10:
        if (!world_.deeds.empty()) world_.finish(bytes_.yes() ? "it failed" : "");
        break;
      default: tell(bytes_.below(5)); break;
    }
    if (bytes_.below(4) == 0) world_.holds[std::to_string(bytes_.below(3))] = bytes_.yes();
    for (std::int32_t id = 1; id <= kEvents; ++id) Require(engine_.running(id) <= 10);
  }

  /// Each event that is on and has such a trigger comes to one more evaluation.
  template <class Kind>
  void expect(std::int32_t id, const Kind& trigger) {
    const RuledEvent* event = rules_.byId(id);
    if (event == nullptr || !event->rule.on) return;
    const auto& all = event->rule.triggers;
    const auto found = std::find(all.begin(), all.end(), Trigger(trigger));
    if (found != all.end()) ++expected_[{id, words_.of(*found)}];
  }

  void askByScript(std::int32_t id) {
    const std::size_t before = expectedInAll();
    expect(id, ScriptTrigger{});
    Require(engine_.scriptTriggers("event " + std::to_string(id)) == (expectedInAll() > before));
  }

  void tell(std::int32_t number) {
    const std::size_t before = expectedInAll();
    for (std::int32_t id = 1; id <= kEvents; ++id) expect(id, PluginTrigger{Stored(number)});
    Require(engine_.pluginTriggered("P\2*\2" + std::to_string(number)) == (expectedInAll() > before));
  }

  [[nodiscard]] std::size_t expectedInAll() const {
    std::size_t all = 0;
    for (const auto& [which, times] : expected_) all += times;
    return all;
  }

  void remake(std::int32_t id) { rules_.put(id, AnyRule(bytes_, id)); }

  void change() {
    DeviceFacts& device = world_.devices[bytes_.below(3)];
    device.value = bytes_.below(4);
    engine_.deviceChanged(device);
  }

  void byHand() {
    const std::int32_t id = 1 + bytes_.below(kEvents);
    const RuledEvent* event = rules_.byId(id);
    if (event == nullptr) return;
    switch (bytes_.below(4)) {
      case 0: engine_.stop(id); break;
      case 1: engine_.dry(id, event->rule, [](const DryRun&) {}); break;
      case 2:
        engine_.run(id, [this](const Evaluation&) { ++told_; });
        ++asked_;
        break;
      default:
        engine_.trigger(id, [this](const Evaluation&) { ++told_; });
        ++asked_;
        break;
    }
  }

  [[nodiscard]] bool isIdle() const {
    for (std::int32_t id = 1; id <= kEvents; ++id)
      if (engine_.running(id) > 0) return false;
    return world_.checks.empty() && world_.deeds.empty();
  }

  /// No trigger without its evaluation, and none for nothing.
  void judgeTriggers() const {
    std::map<std::pair<std::int32_t, std::string>, std::size_t> came;
    const std::string script = words_.of(Trigger(ScriptTrigger{}));
    for (const Evaluation& each : history_.ended)
      if (each.trigger == script || each.trigger.starts_with("P\2")) ++came[{each.event, each.trigger}];
    Require(came == expected_);
  }

  /// The house was made to do what history says has begun, and nothing else.
  void judgeWorld() {
    std::vector<std::string> told;
    for (const Evaluation& each : history_.ended)
      for (const DoneAction& action : each.actions)
        if (action.begun && IsNumber(action.words)) told.push_back("do " + action.words);
    std::vector<std::string> done = world_.journal.with("do ");
    std::sort(told.begin(), told.end());
    std::sort(done.begin(), done.end());
    Require(told == done);
  }

  /// As the plug-in's actions are worded here; the others never reach the house.
  static bool IsNumber(const std::string& words) {
    return !words.empty() && std::all_of(words.begin(), words.end(),
                                         [](char letter) { return letter >= '0' && letter <= '9'; });
  }

  void judge() const {
    Require(told_ == asked_);
    std::size_t ran = 0;
    for (const Evaluation& each : history_.ended) {
      Require(each.outcome != Outcome::kRunning);
      if (each.id == 0) {
        for (const DoneAction& action : each.actions) Require(!action.begun);
        continue;
      }
      ++ran;
      const bool all = std::all_of(each.conditions.begin(), each.conditions.end(),
                                   [](const SeenCondition& seen) { return seen.holds; });
      const bool any = std::any_of(each.conditions.begin(), each.conditions.end(),
                                   [](const SeenCondition& seen) { return seen.holds; });
      Require(each.trigger == "by hand" || all || (any && IsEasy(each.event)));
      judgeActions(each);
    }
    Require(ran == history_.begun.size());
  }

  static void judgeActions(const Evaluation& run) {
    bool begun = true;
    for (const DoneAction& action : run.actions) {
      Require(begun || !action.begun);
      begun = action.begun;
      if (!begun) continue;
      Require(action.spent >= 0);
    }
    if (run.outcome == Outcome::kDone || run.outcome == Outcome::kFailed) Require(begun);
  }

  Bytes& bytes_;
  support::VirtualLoop loop_;
  support::HouseClock clock_{loop_, support::Utc(2026, 3, 27)};
  support::StagedRules rules_;
  support::StagedWorld world_{loop_};
  support::StagedWords words_;
  support::StagedHistory history_;
  std::map<std::pair<std::int32_t, std::string>, std::size_t> expected_;
  int asked_ = 0;
  int told_ = 0;
  EventEngine engine_{{loop_, rules_, world_, words_, history_, clock_}, [](std::int32_t) {}};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 2000) return 0;
  Bytes bytes(data, size);
  Stage(bytes).play();
  return 0;
}
