#include "standin/eventrun/EventEngine.hpp"

#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/calendar/Sun.hpp"

namespace standin {

EventEngine::EventEngine(const EngineParts& parts, std::function<void(std::int32_t event)> changed,
                         Limits limits)
    : parts_(parts),
      changed_(std::move(changed)),
      limits_(limits),
      rounds_(parts.loop, limits.rounds),
      alarms_(
          parts.loop, parts.clock, parts.alarms, [this](const Alarms::Alarm& alarm) { rang(alarm); },
          limits.alarms) {
  alarms_.place(parts_.rules.place());
  for (const auto& [id, event] : parts_.rules.all()) {
    take(event);
    alarms_.goOn(id, event.rule);
  }
  parts_.rules.onChange([this, alive = std::weak_ptr(alive_)](std::int32_t id) {
    if (alive.lock()) ruleChanged(id);
  });
}

EventEngine::~EventEngine() {
  for (const auto& [number, asking] : dry_) asking->cancel();
  for (auto& [event, turns] : turns_) turns.houseEnds();
  alarms_.houseEnds();
}

void EventEngine::take(const RuledEvent& event) {
  index_.put(event.id, &event.rule);
  if (index_.byScript(event.id)) names_[base::LowerCase(event.name)] = event.id;
  for (const Trigger& trigger : event.rule.triggers) {
    const auto* device = std::get_if<DeviceTrigger>(&trigger);
    if (device == nullptr || devices_.contains(device->ref)) continue;
    if (const auto facts = parts_.world.device(device->ref)) devices_[device->ref] = *facts;
  }
}

void EventEngine::ruleChanged(std::int32_t event) {
  if (event == 0) return alarms_.place(parts_.rules.place());
  rules_.erase(event);
  std::erase_if(names_, [&](const auto& each) { return each.second == event; });
  const RuledEvent* now = parts_.rules.byId(event);
  if (now != nullptr) {
    take(*now);
    alarms_.put(event, &now->rule);
  } else {
    index_.put(event, nullptr);
    alarms_.put(event, nullptr);
  }
  const auto turns = turns_.find(event);
  if (turns == turns_.end()) return;
  if (now == nullptr) {
    turns->second.stop("The event was deleted", true);
    // Not here: it may be its own action that has deleted it.
    parts_.loop.post([this, event, alive = std::weak_ptr(alive_)] {
      if (!alive.lock() || parts_.rules.byId(event) != nullptr) return;
      const auto left = turns_.find(event);
      if (left != turns_.end() && left->second.idle()) turns_.erase(left);
    });
  } else if (!now->rule.on) {
    turns->second.stop("The event was switched off", false);
  }
}

bool EventEngine::pluginTriggered(const std::string& composed) {
  const auto entries = index_.ofPlugin(composed);
  if (entries.empty()) return false;
  const CausePtr cause = rounds_.ofPlugin();
  for (const auto& entry : entries) come(entry, cause);
  return true;
}

void EventEngine::deviceChanged(const DeviceFacts& device) {
  const auto known = devices_.find(device.ref);
  const std::vector<TriggerIndex::Entry> entries = index_.ofDevice(device.ref);
  if (entries.empty()) {
    if (known != devices_.end()) devices_.erase(known);  // nobody looks at it any more
    return;
  }
  if (known == devices_.end()) {  // it has only just come into the house: nothing of it has changed
    devices_[device.ref] = device;
    return;
  }
  const DeviceFacts before = known->second;
  devices_[device.ref] = device;
  CausePtr cause;
  std::int32_t last = 0;
  for (const auto& entry : entries) {
    const RuledEvent* event = parts_.rules.byId(entry.event);
    if (event == nullptr || entry.event == last) continue;
    if (!HasCome(before, device, std::get<DeviceTrigger>(event->rule.triggers[entry.trigger]))) continue;
    last = entry.event;
    if (!cause) cause = rounds_.ofDevice(device.ref, device.ofPlugin);
    come(entry, cause);
  }
}

void EventEngine::houseStarted() {
  alarms_.houseStarted();
  const auto entries = index_.ofStart();
  for (const auto& entry : entries) come(entry, rounds_.fresh());
}

bool EventEngine::scriptTriggers(const std::string& name) {
  const auto found = names_.find(base::LowerCase(name));
  const RuledEvent* event = found == names_.end() ? nullptr : parts_.rules.byId(found->second);
  if (event == nullptr) return false;
  EventTurns::Order given = orderOf(*event, parts_.words.of(Trigger(ScriptTrigger{})));
  given.cause = rounds_.ofScript();
  order(event->id, std::move(given));
  return true;
}

void EventEngine::rang(const Alarms::Alarm& alarm) {
  const RuledEvent* event = parts_.rules.byId(alarm.event);
  if (event == nullptr) return;
  EventTurns::Order given = orderOf(*event, parts_.words.of(event->rule.triggers[alarm.trigger]));
  given.cause = rounds_.fresh();
  if (alarm.missed == 0) {
    const std::int64_t late = (given.evaluation.time - alarm.due) / 60000;
    if (late > 0)
      given.evaluation.trigger +=
          ", " + std::to_string(late) + (late == 1 ? " minute late" : " minutes late");
    order(alarm.event, std::move(given));
    return;
  }
  const std::string times = alarm.missed == 1 ? std::string() : std::to_string(alarm.missed) + " times";
  given.evaluation.time = alarm.last;
  const std::string why =
      "The clock was set over it, or the house was asleep or off" + (times.empty() ? "" : ": " + times);
  parts_.world.note("Warning", "Event “" + event->name + "” was missed. " + why);
  turnsOf(alarm.event).refuse(std::move(given), Outcome::kMissed, why);
}

void EventEngine::come(const TriggerIndex::Entry& entry, const CausePtr& cause) {
  const RuledEvent* event = parts_.rules.byId(entry.event);
  if (event == nullptr) return;
  EventTurns::Order given = orderOf(*event, parts_.words.of(event->rule.triggers[entry.trigger]));
  given.cause = cause;
  order(entry.event, std::move(given));
}

std::string EventEngine::fire(std::int32_t event, const CausePtr& cause, std::int32_t by) {
  const RuledEvent* found = parts_.rules.byId(event);
  if (found == nullptr) return "There is no such event";
  if (!found->rule.on) return "The event “" + found->name + "” is off";
  if (cause->chain->cut) return circleOf(*cause);
  const RuledEvent* firing = parts_.rules.byId(by);
  EventTurns::Order given =
      orderOf(*found, firing == nullptr ? "another event" : "event “" + firing->name + "”");
  given.cause = cause;
  return order(event, std::move(given));
}

Reach EventEngine::reachOf(const Action& action) const {
  const auto* device = std::get_if<DeviceAction>(&action);
  if (device == nullptr) return {.player = true, .script = std::holds_alternative<ScriptAction>(action)};
  const std::optional<DeviceFacts> facts = parts_.world.device(device->ref);
  return {.player = facts && facts->ofPlugin, .device = device->ref};
}

std::string EventEngine::circleOf(const Cause& cause) const {
  const bool many = cause.chain->evaluations >= limits_.rounds.evaluations;
  return "Events trigger each other in a circle; it was cut after " +
         (many ? std::to_string(cause.chain->evaluations) + " evaluations"
               : std::to_string(limits_.rounds.most) + " rounds");
}

std::string EventEngine::order(std::int32_t event, EventTurns::Order order) {
  const bool known = order.cause->chain->cut;
  if (CausePtr cause = rounds_.admit(order.cause, event)) {
    order.cause = std::move(cause);
    turnsOf(event).add(std::move(order));
    return {};
  }
  const RuledEvent* found = parts_.rules.byId(event);
  std::string why = circleOf(*order.cause);
  if (!known) parts_.world.note("Warning", "Event “" + (found == nullptr ? "" : found->name) + "”: " + why);
  turnsOf(event).refuse(std::move(order), Outcome::kCircle, why);
  return why;
}

EventTurns::Order EventEngine::orderOf(const RuledEvent& event, std::string trigger) const {
  EventTurns::Order order;
  order.evaluation.event = event.id;
  order.evaluation.time = parts_.clock.now();
  order.evaluation.trigger = std::move(trigger);
  order.rule = ruleOf(event);
  return order;
}

void EventEngine::run(std::int32_t event, Told told) {
  EventTurns::Order given = orderOf(need(event), "by hand");
  given.asks = false;
  given.cause = rounds_.fresh();
  given.told = std::move(told);
  order(event, std::move(given));
}

void EventEngine::trigger(std::int32_t event, Told told) {
  EventTurns::Order given = orderOf(need(event), "by hand, as if triggered");
  given.cause = rounds_.fresh();
  given.told = std::move(told);
  order(event, std::move(given));
}

void EventEngine::stop(std::int32_t event) {
  const auto found = turns_.find(need(event).id);
  if (found != turns_.end()) found->second.stop("By hand", true);
}

void EventEngine::dry(std::int32_t event, const Rule& rule, std::function<void(const DryRun& answer)> told) {
  const std::int64_t number = ++lastDry_;
  const auto asked = std::make_shared<const Rule>(rule);
  const auto asking = std::make_shared<Asking>(
      parts_, event, asked,
      [this, asked, number, told = std::move(told)](bool holds, const std::vector<SeenCondition>& seen) {
        DryRun answer{.conditions = seen, .would = holds};
        for (const Action& action : asked->actions) answer.actions.push_back(parts_.words.of(action));
        if (!holds) answer.why = Objection(seen, asked->any);
        dry_.erase(number);
        told(answer);
      });
  dry_[number] = asking;
  asking->begin();
}

std::size_t EventEngine::running(std::int32_t event) const {
  const auto found = turns_.find(event);
  return found == turns_.end() ? 0 : found->second.running();
}

std::optional<std::int64_t> EventEngine::next(std::int32_t event) const { return alarms_.next(event); }

std::optional<SunToday> EventEngine::sun() const {
  const std::optional<Place> place = parts_.rules.place();
  if (!place) return std::nullopt;
  const std::int64_t today = LocalTimeAt(parts_.clock, parts_.clock.now()).day;
  const auto minuteOf = [&](bool rise) -> std::optional<std::int32_t> {
    const auto moment = SunMoment(parts_.clock, *place, today, rise);
    if (!moment) return std::nullopt;
    return LocalTimeAt(parts_.clock, *moment).minute;
  };
  return SunToday{minuteOf(true), minuteOf(false)};
}

const RuledEvent& EventEngine::need(std::int32_t event) const {
  const RuledEvent* found = parts_.rules.byId(event);
  if (found == nullptr) throw base::Failure(base::number::kFileNotFound, "There is no such event");
  return *found;
}

std::shared_ptr<const Rule> EventEngine::ruleOf(const RuledEvent& event) const {
  auto& kept = rules_[event.id];
  if (!kept) kept = std::make_shared<const Rule>(event.rule);
  return kept;
}

EventTurns& EventEngine::turnsOf(std::int32_t event) {
  return turns_
      .try_emplace(event, parts_,
                   EventTurns::Ways{[this, event](std::int32_t fired, const CausePtr& cause) {
                                      return fire(fired, cause, event);
                                    },
                                    [this](const CausePtr& cause, const Action& action, bool ended) {
                                      rounds_.acted(cause, reachOf(action), ended);
                                    },
                                    [this, event] { changed_(event); }},
                   limits_.turns)
      .first->second;
}

}  // namespace standin
