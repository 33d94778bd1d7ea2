// A rule as JSON.
#include <array>

#include "standin/rules/RuleJson.hpp"
#include "standin/rules/RuleNames.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

Json DaysOf(Weekdays days) {
  Json list = Json::array();
  for (int day = 0; day < 7; ++day)
    if ((days >> day & 1) != 0) list.push_back(day + 1);
  return list;
}

template <std::size_t N, class Enum>
const char* NameOf(const std::array<const char*, N>& names, Enum value) {
  return names.at(static_cast<std::size_t>(value));
}

template <class Compared>
Json Comparison(const Compared& asked) {
  return {{"kind", "device"},
          {"ref", asked.ref},
          {"field", NameOf(rulenames::kFields, asked.field)},
          {"is", NameOf(rulenames::kCompared, asked.is)},
          {"value", asked.value}};
}

struct TriggerWriter {
  Json operator()(const PluginTrigger& plugin) const {
    return {{"kind", "plugin"}, {"stored", plugin.stored}};
  }
  Json operator()(const TimeTrigger& time) const {
    return {{"kind", "time"}, {"at", ClockOf(time.minute)}, {"days", DaysOf(time.days)}};
  }
  Json operator()(const SunTrigger& sun) const {
    return {{"kind", "sun"},
            {"what", sun.rise ? "sunrise" : "sunset"},
            {"offset", sun.offset},
            {"days", DaysOf(sun.days)}};
  }
  Json operator()(const EveryTrigger& every) const { return {{"kind", "every"}, {"minutes", every.minutes}}; }
  Json operator()(const StartTrigger&) const { return {{"kind", "start"}}; }
  Json operator()(const DeviceTrigger& device) const { return Comparison(device); }
  Json operator()(const ScriptTrigger&) const { return {{"kind", "script"}}; }
};

struct ConditionWriter {
  Json operator()(const PluginCondition& plugin) const {
    return {{"kind", "plugin"}, {"stored", plugin.stored}};
  }
  Json operator()(const DeviceCondition& device) const { return Comparison(device); }
  Json operator()(const WindowCondition& window) const {
    return {{"kind", "window"}, {"from", ClockOf(window.from)}, {"to", ClockOf(window.to)}};
  }
  Json operator()(const DaysCondition& days) const { return {{"kind", "days"}, {"days", DaysOf(days.days)}}; }
  Json operator()(const EventCondition& event) const { return {{"kind", "event"}, {"id", event.event}}; }
};

struct ActionWriter {
  Json operator()(const PluginAction& plugin) const {
    return {{"kind", "plugin"}, {"stored", plugin.stored}};
  }
  Json operator()(const DeviceAction& device) const {
    Json json{
        {"kind", "device"}, {"ref", device.ref}, {"command", NameOf(rulenames::kCommands, device.kind)}};
    if (device.kind == DeviceAction::Kind::kValue) json["value"] = device.value;
    if (device.kind == DeviceAction::Kind::kPress) json["caption"] = device.caption;
    return json;
  }
  Json operator()(const SpeakAction& speak) const { return {{"kind", "speak"}, {"text", speak.text}}; }
  Json operator()(const WaitAction& wait) const { return {{"kind", "wait"}, {"seconds", wait.seconds}}; }
  Json operator()(const ScriptAction& script) const { return {{"kind", "script"}, {"name", script.name}}; }
  Json operator()(const EventAction& event) const { return {{"kind", "event"}, {"id", event.event}}; }
  Json operator()(const FadeAction& fade) const {
    return {{"kind", "fade"},
            {"to", fade.to},
            {"seconds", fade.seconds},
            {"then", NameOf(rulenames::kThen, fade.then)}};
  }
  Json operator()(const WakeAction& wake) const {
    return {{"kind", "wake"},
            {"choices", wake.choices},
            {"words", wake.words},
            {"volume", wake.volume},
            {"seconds", wake.seconds}};
  }
};

}  // namespace

std::string ClockOf(std::int32_t minute) {
  const auto two = [](std::int32_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  return two(minute / 60) + ":" + two(minute % 60);
}

Json JsonOf(const Rule& rule) {
  Json triggers = Json::array();
  for (const Trigger& trigger : rule.triggers) triggers.push_back(std::visit(TriggerWriter(), trigger));
  Json conditions = Json::array();
  for (const Condition& condition : rule.conditions) {
    conditions.push_back(std::visit(ConditionWriter(), condition.asked));
    conditions.back()["not"] = condition.negated;
  }
  Json actions = Json::array();
  for (const Action& action : rule.actions) actions.push_back(std::visit(ActionWriter(), action));
  return {
      {"on", rule.on},   {"triggers", std::move(triggers)}, {"conditions", std::move(conditions)},
      {"any", rule.any}, {"actions", std::move(actions)},   {"again", NameOf(rulenames::kAgain, rule.again)}};
}

Json JsonOf(const RuledEvent& event) {
  Json json = JsonOf(event.rule);
  json["id"] = event.id;
  json["version"] = event.version;
  json["name"] = event.name;
  json["group"] = event.group;
  return json;
}

std::string TextOf(const Rule& rule) {
  try {
    return JsonOf(rule).dump();
  } catch (const Json::exception&) {
    throw BadRule({}, "The event: holds what is no character");
  }
}

}  // namespace standin
