// Measures the house's events: from the plug-in's trigger to the first action that it is told, through a real
// server and a real bus, with few and many events; how triggers are found; and a day of a thousand alarms in
// virtual time. Prints figures and their ratios; judges none.
#include <algorithm>
#include <cstdio>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "Brief.hpp"
#include "house/Times.hpp"
#include "standin/eventrun/EventEngine.hpp"
#include "standin/eventrun/StagedHouse.hpp"
#include "standin/rules/RuleStore.hpp"
#include "support/BusPeer.hpp"
#include "support/RealHouse.hpp"

namespace {

using bench::Clock;
using bench::Milliseconds;
using bench::Percentile;
using namespace standin;

std::string StoredTrigger(int number) {
  return "Media Player\2Media Player Triggers\2Trigger " + std::to_string(number);
}
std::string ToldTrigger(int number) { return "Media Player\2*\2Trigger " + std::to_string(number); }

Rule RuleOf(int number) {
  Rule rule;
  rule.triggers = {PluginTrigger{StoredTrigger(number)}};
  rule.actions = {PluginAction{"Media Player\2Media Player Actions\2Action " + std::to_string(number)}};
  return rule;
}

/// A plug-in on a thread of its own that tells triggers and hears actions.
class TriggeringPlugin {
 public:
  explicit TriggeringPlugin(const std::string& bus)
      : peer_(bus, [this](bus::Connection& connection, bus::PollLoop& loop) {
          loop_ = &loop;
          connection.claimName("org.vantorix.vxif_WMP9");
          connection.exportObject("/vxif", support::ObjectOf("vxif", members()));
        }) {}

  /// Milliseconds from the trigger to the event's action, and to the answer to the trigger.
  std::pair<double, double> trigger(int number) {
    action_ = std::promise<Clock::time_point>();
    auto action = action_.get_future();
    std::promise<Clock::time_point> answered;
    auto answer = answered.get_future();
    Clock::time_point begun;
    loop_->post([&] {
      begun = Clock::now();
      callback_->invoke("checktrigger", ToldTrigger(number));
      answered.set_value(Clock::now());
    });
    const auto answerTime = answer.get();
    return {Milliseconds(action.get() - begun), Milliseconds(answerTime - begun)};
  }

 private:
  std::vector<base::Member> members() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return {Command("RegisterCallback", {Reference("callback")},
                    [this](Args& args) { callback_ = ReferenceAt(args, 0); }),
            Constant("Name", Type::kText, "Media Player"),
            Operation("InitIO", {Number("port")}, Type::kText, [] { return ""; }),
            Constant("InterfaceStatus", Type::kInt16, 0),
            Command("ShutdownIO", {}, [] {}),
            Command("TriggerAction", {Text("action")}, [this] { action_.set_value(Clock::now()); })};
  }
  bus::PollLoop* loop_ = nullptr;
  base::ObjectRef callback_;
  std::promise<Clock::time_point> action_;
  support::BusPeer peer_;
};

/// What a measurement is set beside: the first of its kind in this run.
class Beside {
 public:
  /// How many times the first value that is.
  double operator()(double value) {
    if (first_ == 0) first_ = value;
    return value / first_;
  }

 private:
  double first_ = 0;
};

void MeasureTheBus(int events, Beside& beside) {
  support::RealHouse house;
  {
    House stored(house.data());
    RuleStore rules(stored);
    for (int i = 0; i < events; ++i)
      rules.make({.name = "Event " + std::to_string(i), .group = "Bench", .rule = RuleOf(i)});
  }
  TriggeringPlugin plugin(house.busAddress());
  if (!([&] {
        house.start();
        return house.becomes("ready");
      })()) {
    std::printf("the house has not started: %s\n", house.server().output().c_str());
    return;
  }
  // An event that is triggered shortly after its own actions, time and again, is taken for a circle.
  const int samples = std::min(bench::Amount(300, 3), events * 15);
  std::vector<double> toAction;
  std::vector<double> toAnswer;
  for (int i = 0; i < samples; ++i) {
    const auto [action, answer] = plugin.trigger(i * 31 % events);
    toAction.push_back(action);
    toAnswer.push_back(answer);
  }
  const double median = Percentile(toAction, 0.5);
  std::printf(
      "%6d events: trigger to first action median %.3f ms (%.2f times the first row's), 95th percentile %.3f "
      "ms; "
      "answer %.3f ms\n",
      events, median, beside(median), Percentile(toAction, 0.95), Percentile(toAnswer, 0.5));
}

void MeasureTheIndex(int events, Beside& beside) {
  TriggerIndex index;
  const auto begun = Clock::now();
  std::vector<Rule> rules;
  for (int i = 0; i < events; ++i) rules.push_back(RuleOf(i));
  for (int i = 0; i < events; ++i) index.put(i + 1, &rules[static_cast<std::size_t>(i)]);
  const double made = Milliseconds(Clock::now() - begun);
  const int looks = bench::Amount(200000, 100);
  std::size_t found = 0;
  const auto looking = Clock::now();
  for (int i = 0; i < looks; ++i) found += index.ofPlugin(ToldTrigger(i % events)).size();
  const double each = Milliseconds(Clock::now() - looking) * 1e6 / looks;
  std::printf(
      "%6d events: a trigger is found in %.0f ns (%.2f times the first row's, %zu found), the index made in "
      "%.2f ms\n",
      events, each, beside(each), found, made);
}

void MeasureADay() {
  const int events = bench::Amount(1000, 20);
  support::VirtualLoop loop;
  support::HouseClock clock(loop, support::Utc(2026, 1, 1));
  support::StagedRules rules;
  support::StagedWorld world(loop);
  support::StagedWords words;
  support::StagedHistory history;
  EventEngine engine({loop, rules, world, words, history, clock}, [](std::int32_t) {});
  for (int i = 1; i <= events; ++i) {
    Rule rule = RuleOf(i);
    rule.triggers = {TimeTrigger{i * 7919 % 1440}};
    rules.put(i, rule);
  }
  const auto begun = Clock::now();
  loop.leap(std::chrono::hours(24));
  std::printf("a day of %d timed events: %.0f ms, %zu evaluations\n", events,
              Milliseconds(Clock::now() - begun), history.ended.size());
}

}  // namespace

int main() {
  Beside index;
  Beside bus;
  for (const int events : {10, 100, 1000, 10000}) MeasureTheIndex(events, index);
  MeasureADay();
  for (const int events : {10, 1000, 10000}) MeasureTheBus(bench::Amount(events, 10), bus);
  return 0;
}
