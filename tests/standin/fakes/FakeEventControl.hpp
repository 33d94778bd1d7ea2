#pragma once
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "standin/events/EventControl.hpp"

namespace support {

/// An engine of events that runs nothing: it writes down what it is asked for, in order, and answers as it is
/// told to.
class FakeEventControl : public standin::EventControl {
 public:
  void run(std::int32_t event, Told told) override {
    calls.push_back("run " + std::to_string(event));
    told(answer);
  }
  void trigger(std::int32_t event, Told told) override {
    calls.push_back("trigger " + std::to_string(event));
    told(answer);
  }
  void stop(std::int32_t event) override { calls.push_back("stop " + std::to_string(event)); }
  void dry(std::int32_t, const standin::Rule& rule,
           std::function<void(const standin::DryRun&)> told) override {
    calls.push_back("dry " + std::to_string(rule.actions.size()));
    told(foreseen);
  }
  [[nodiscard]] std::size_t running(std::int32_t event) const override {
    const auto found = runs.find(event);
    return found == runs.end() ? 0 : found->second;
  }
  [[nodiscard]] std::optional<std::int64_t> next(std::int32_t event) const override {
    const auto found = times.find(event);
    return found == times.end() ? std::nullopt : std::optional(found->second);
  }
  [[nodiscard]] std::optional<standin::SunToday> sun() const override { return today; }

  std::vector<std::string> calls;
  standin::Evaluation answer;
  standin::DryRun foreseen;
  std::map<std::int32_t, std::size_t> runs;
  std::map<std::int32_t, std::int64_t> times;
  std::optional<standin::SunToday> today;
};

}  // namespace support
