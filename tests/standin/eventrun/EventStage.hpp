#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "standin/eventrun/EventEngine.hpp"
#include "standin/eventrun/StagedHouse.hpp"
#include "support/HouseClock.hpp"
#include "support/VirtualLoop.hpp"

namespace support {

/// An engine in virtual time, with everything about it under the test's hand. It begins on a Thursday.
class EventStage : public ::testing::Test {
 protected:
  static standin::Rule when(standin::Trigger trigger, std::vector<std::string> actions = {"a"}) {
    standin::Rule rule;
    rule.triggers.push_back(std::move(trigger));
    for (std::string& each : actions) rule.actions.emplace_back(standin::PluginAction{std::move(each)});
    return rule;
  }
  static standin::Rule whenEnded(std::vector<std::string> actions = {"a"}) {
    return when(standin::PluginTrigger{kEnded}, std::move(actions));
  }
  void settle() { loop.leap(base::Milliseconds(1)); }
  /// The plug-in tells that playback has ended, and what follows at once has followed.
  bool playbackEnds() {
    const bool known = engine.pluginTriggered(kEndedTold);
    settle();
    return known;
  }
  [[nodiscard]] std::vector<std::string> done() const { return world.journal.with("do "); }
  [[nodiscard]] const standin::Evaluation& last() const { return history.ended.back(); }
  [[nodiscard]] int count(standin::Outcome outcome) const {
    const auto found = history.outcomes.find(outcome);
    return found == history.outcomes.end() ? 0 : found->second;
  }

  VirtualLoop loop;
  HouseClock clock{loop, Utc(2026, 1, 1, 12)};
  StagedRules rules;
  StagedWorld world{loop};
  StagedWords words;
  StagedHistory history;
  std::vector<std::int32_t> changed;
  standin::EventEngine engine{{loop, rules, world, words, history, clock},
                              [this](std::int32_t id) { changed.push_back(id); }};
};

}  // namespace support
