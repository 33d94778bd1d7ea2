#pragma once
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "standin/eventrun/EventEngine.hpp"
#include "support/HouseClock.hpp"
#include "support/Journal.hpp"
#include "support/VirtualLoop.hpp"

namespace support {

/// Rules as a test gives them.
class StagedRules : public standin::RuleSource {
 public:
  [[nodiscard]] const std::map<std::int32_t, standin::RuledEvent>& all() const override { return events_; }
  [[nodiscard]] const standin::RuledEvent* byId(std::int32_t id) const override {
    const auto found = events_.find(id);
    return found == events_.end() ? nullptr : &found->second;
  }
  [[nodiscard]] std::optional<standin::Place> place() const override { return place_; }
  void onChange(Heard heard) override { heard_.push_back(std::move(heard)); }

  void put(std::int32_t id, standin::Rule rule, std::string name = {}) {
    if (name.empty()) name = "Event " + std::to_string(id);
    events_[id] = {.id = id, .version = 1, .name = std::move(name), .group = {}, .rule = std::move(rule)};
    tell(id);
  }
  void remove(std::int32_t id) {
    events_.erase(id);
    tell(id);
  }
  void standAt(const standin::Place& place) {
    place_ = place;
    tell(0);
  }

 private:
  void tell(std::int32_t id) {
    for (const auto& each : heard_) each(id);
  }
  std::map<std::int32_t, standin::RuledEvent> events_;
  std::optional<standin::Place> place_;
  std::vector<Heard> heard_;
};

/// Words that are the stored ones.
class StagedWords : public standin::EventWords {
 public:
  [[nodiscard]] std::string of(const standin::Trigger& trigger) const override {
    if (const auto* plugin = std::get_if<standin::PluginTrigger>(&trigger)) return plugin->stored;
    if (const auto* time = std::get_if<standin::TimeTrigger>(&trigger))
      return "at " + std::to_string(time->minute);
    return "trigger " + std::to_string(trigger.index());
  }
  [[nodiscard]] std::string of(const standin::Condition& condition) const override {
    const auto* plugin = std::get_if<standin::PluginCondition>(&condition.asked);
    return (condition.negated ? "not " : "") +
           (plugin != nullptr ? plugin->stored : "condition " + std::to_string(condition.asked.index()));
  }
  [[nodiscard]] std::string of(const standin::Action& action) const override {
    if (const auto* plugin = std::get_if<standin::PluginAction>(&action)) return plugin->stored;
    return "action " + std::to_string(action.index());
  }
};

/// Keeps everything.
class StagedHistory : public standin::EvaluationSink {
 public:
  std::int64_t begin(const standin::Evaluation& evaluation) override {
    begun.push_back(evaluation);
    if (failing) throw base::Failure(base::number::kDiskFull);
    remember(evaluation);
    return static_cast<std::int64_t>(begun.size());
  }
  void end(const standin::Evaluation& evaluation) override {
    ended.push_back(evaluation);
    ++outcomes[evaluation.outcome];
    remember(evaluation);
  }
  [[nodiscard]] const standin::Evaluation* last(std::int32_t event) const override {
    const auto found = last_.find(event);
    return found == last_.end() ? nullptr : &found->second;
  }
  std::vector<standin::Evaluation> begun{};
  std::vector<standin::Evaluation> ended{};
  std::map<standin::Outcome, int> outcomes{};
  bool failing = false;

 private:
  /// Numbered in the order that they came to be known in.
  void remember(const standin::Evaluation& evaluation) {
    last_[evaluation.event] = evaluation;
    last_[evaluation.event].id = ++number_;
  }
  std::map<std::int32_t, standin::Evaluation> last_;
  std::int64_t number_ = 0;
};

/// A house that does what it is told: conditions and actions of the plug-in are answered at once, or held
/// until the test answers them.
class StagedWorld : public standin::EventWorld {
 public:
  explicit StagedWorld(base::Loop& loop) : loop_(loop) {}

  void check(const std::string& stored, Checked checked) override {
    journal.add("check " + stored);
    if (holding) {
      checks.push_back(std::move(checked));
    } else if (!pluginGone.empty()) {
      checked(pluginGone, false);
    } else {
      checked({}, holds.contains(stored) ? holds[stored] : true);
    }
  }
  [[nodiscard]] std::optional<standin::DeviceFacts> device(std::int32_t ref) const override {
    const auto found = devices.find(ref);
    return found == devices.end() ? std::nullopt : std::optional(found->second);
  }
  std::unique_ptr<standin::Deed> carryOut(const standin::Action& action, Done done) override {
    const std::string words = words_.of(action);
    journal.add("do " + words);
    if (onAction) onAction(words);
    if (holding || held.contains(words)) {
      deeds.push_back({words, std::move(done)});
      return std::make_unique<HeldDeed>(journal, words);
    }
    done(failures.contains(words) ? failures[words] : pluginGone);
    if (!slow.contains(words)) return nullptr;
    for (int i = 0; i < 5; ++i) loop_.pump();
    return std::make_unique<HeldDeed>(journal, words);
  }
  void note(const std::string& kind, const std::string& text) override {
    notes.push_back(kind + ": " + text);
  }

  /// Ends the oldest action that is held.
  void finish(const std::string& failure = {}) {
    const auto deed = std::move(deeds.front());
    deeds.pop_front();
    deed.second(failure);
  }
  void answer(bool yes) {
    const auto checked = std::move(checks.front());
    checks.pop_front();
    checked({}, yes);
  }

  Journal journal{};
  std::vector<std::string> notes{};
  bool holding = false;          ///< everything is held
  std::set<std::string> held{};  ///< these actions are
  std::set<std::string> slow{};  ///< these are done before the call that begins them has returned
  std::string pluginGone{};
  std::map<std::string, bool> holds{};
  std::map<std::string, std::string> failures{};
  std::map<std::int32_t, standin::DeviceFacts> devices{};
  std::function<void(const std::string& words)> onAction{};
  std::deque<Checked> checks{};
  std::deque<std::pair<std::string, Done>> deeds{};

 private:
  class HeldDeed : public standin::Deed {
   public:
    HeldDeed(Journal& journal, std::string words) : journal_(journal), words_(std::move(words)) {}
    ~HeldDeed() override { journal_.add("over " + words_); }
    HeldDeed(const HeldDeed&) = delete;
    HeldDeed& operator=(const HeldDeed&) = delete;
    HeldDeed(HeldDeed&&) = delete;
    HeldDeed& operator=(HeldDeed&&) = delete;

   private:
    Journal& journal_;
    std::string words_;
  };
  base::Loop& loop_;
  StagedWords words_;
};

inline constexpr const char* kEnded = "Media Player\2Media Player Triggers\2Playback Ended";
inline constexpr const char* kStarted = "Media Player\2Media Player Triggers\2Playback Started";
/// As the plug-in tells it.
inline constexpr const char* kEndedTold = "Media Player\2*\2Playback Ended";
inline constexpr const char* kStartedTold = "Media Player\2*\2Playback Started";

}  // namespace support
