#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "standin/eventrun/Alarms.hpp"
#include "standin/eventrun/EngineParts.hpp"
#include "standin/eventrun/EventTurns.hpp"
#include "standin/eventrun/Rounds.hpp"
#include "standin/eventrun/TriggerIndex.hpp"
#include "standin/events/EventControl.hpp"

namespace standin {

/// Carries out the house's events: what comes in is matched with their triggers, each trigger comes to one
/// evaluation, and what is allowed runs, one action after the other. All use is on the loop's thread, and
/// nothing here waits: what comes in is taken down and seen to on a later turn of the loop.
class EventEngine : public EventControl {
 public:
  struct Limits {
    Alarms::Limits alarms{};
    Rounds::Limits rounds{};
    TurnLimits turns{};
  };
  /// `changed` is called with an event's number when what runs of it, or its history, has changed.
  EventEngine(const EngineParts& parts, std::function<void(std::int32_t event)> changed)
      : EventEngine(parts, std::move(changed), Limits()) {}
  EventEngine(const EngineParts& parts, std::function<void(std::int32_t event)> changed, Limits limits);
  ~EventEngine() override;
  EventEngine(const EventEngine&) = delete;
  EventEngine& operator=(const EventEngine&) = delete;
  EventEngine(EventEngine&&) = delete;
  EventEngine& operator=(EventEngine&&) = delete;

  // What comes in from the house.
  /// A trigger of the plug-in's, as it tells it. True when an event that is on has it.
  bool pluginTriggered(const std::string& composed);
  /// A device has changed, or may have.
  void deviceChanged(const DeviceFacts& device);
  /// The house is up, and its plug-in ready.
  void houseStarted();
  /// A script names an event. False when there is none of that name that is on and lets scripts trigger it.
  bool scriptTriggers(const std::string& name);

  void run(std::int32_t event, Told told) override;
  void trigger(std::int32_t event, Told told) override;
  void stop(std::int32_t event) override;
  void dry(std::int32_t event, const Rule& rule, std::function<void(const DryRun& answer)> told) override;
  [[nodiscard]] std::size_t running(std::int32_t event) const override;
  [[nodiscard]] std::optional<std::int64_t> next(std::int32_t event) const override;
  [[nodiscard]] std::optional<SunToday> sun() const override;

 private:
  void ruleChanged(std::int32_t event);
  void take(const RuledEvent& event);
  void rang(const Alarms::Alarm& alarm);
  void come(const TriggerIndex::Entry& entry, const CausePtr& cause);
  std::string fire(std::int32_t event, const CausePtr& cause, std::int32_t by);
  [[nodiscard]] std::string circleOf(const Cause& cause) const;
  /// Answers why it is refused, or an empty text.
  std::string order(std::int32_t event, EventTurns::Order order);
  [[nodiscard]] Reach reachOf(const Action& action) const;
  [[nodiscard]] EventTurns::Order orderOf(const RuledEvent& event, std::string trigger) const;
  [[nodiscard]] const RuledEvent& need(std::int32_t event) const;
  [[nodiscard]] std::shared_ptr<const Rule> ruleOf(const RuledEvent& event) const;
  EventTurns& turnsOf(std::int32_t event);

  EngineParts parts_;
  std::function<void(std::int32_t event)> changed_;
  Limits limits_;
  TriggerIndex index_;
  Rounds rounds_;
  std::map<std::int32_t, EventTurns> turns_;
  std::map<std::string, std::int32_t> names_;  ///< of the events that scripts may trigger, in lower case
  mutable std::map<std::int32_t, std::shared_ptr<const Rule>> rules_;  ///< as those that run hold them
  std::map<std::int32_t, DeviceFacts> devices_;  ///< as they were when last seen, of those that matter
  std::map<std::int64_t, std::shared_ptr<Asking>> dry_;
  std::int64_t lastDry_ = 0;
  Alarms alarms_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
