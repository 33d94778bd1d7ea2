#include "standin/routes/EventAnswers.hpp"

#include <algorithm>
#include <tuple>

#include "base/Text.hpp"
#include "standin/routes/JsonWriter.hpp"
#include "standin/rules/EvaluationJson.hpp"
#include "standin/rules/RuleJson.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

template <class Parts>
Json WordsOfAll(const EventWords& words, const Parts& parts) {
  Json all = Json::array();
  for (const auto& part : parts) all.push_back(words.of(part));
  return all;
}

template <class Parts>
void PutWords(JsonWriter& out, const char* field, const EventWords& words, const Parts& parts) {
  out.key(field).open('[');
  for (const auto& part : parts) out.put(words.of(part));
  out.close(']');
}

void PutLast(JsonWriter& out, const Evaluation* last) {
  out.key("last");
  if (last == nullptr) return out.putNothing();
  out.open('{');
  out.key("time").put(last->time);
  out.key("outcome").put(NameOf(last->outcome));
  out.key("why").put(last->why);
  out.key("trigger").put(last->trigger);
  out.close('}');
}

void PutRow(JsonWriter& out, const EventParts& parts, const RuledEvent& event) {
  out.open('{');
  out.key("id").put(std::int64_t{event.id});
  out.key("version").put(event.version);
  out.key("name").put(event.name);
  out.key("group").put(event.group);
  out.key("on").put(event.rule.on);
  PutWords(out, "when", parts.words, event.rule.triggers);
  PutWords(out, "if", parts.words, event.rule.conditions);
  out.key("any").put(event.rule.any);
  PutWords(out, "do", parts.words, event.rule.actions);
  PutLast(out, parts.evaluations.last(event.id));
  out.key("running").put(static_cast<std::int64_t>(parts.control.running(event.id)));
  out.key("next");
  const std::optional<std::int64_t> next = parts.control.next(event.id);
  next ? out.put(*next) : out.putNothing();
  out.close('}');
}

std::vector<const RuledEvent*> Sorted(const std::map<std::int32_t, RuledEvent>& events) {
  using Key = std::tuple<std::string, std::string, const RuledEvent*>;
  std::vector<Key> keys;
  keys.reserve(events.size());
  for (const auto& [id, event] : events)
    keys.emplace_back(base::LowerCase(event.group), base::LowerCase(event.name), &event);
  std::sort(keys.begin(), keys.end(), [](const Key& left, const Key& right) {
    const auto compared = [](const Key& key) {
      return std::tie(std::get<0>(key), std::get<1>(key), std::get<2>(key)->id);
    };
    return compared(left) < compared(right);
  });
  std::vector<const RuledEvent*> sorted;
  sorted.reserve(keys.size());
  for (const Key& key : keys) sorted.push_back(std::get<2>(key));
  return sorted;
}

Json PlaceOnly(const std::optional<Place>& place) {
  if (!place) return nullptr;
  return {{"latitude", place->latitude}, {"longitude", place->longitude}};
}

Json ClockOrNull(const std::optional<std::int32_t>& minute) {
  return minute ? Json(ClockOf(*minute)) : Json();
}

}  // namespace

std::string EventListText(const EventParts& parts) {
  JsonWriter out;
  out.open('{');
  out.key("events").open('[');
  for (const RuledEvent* event : Sorted(parts.rules.all())) PutRow(out, parts, *event);
  out.close(']');
  out.key("undo").put(parts.rules.toUndo());
  out.key("redo").put(parts.rules.toRedo());
  out.key("place").put(PlaceOnly(parts.rules.place()));
  out.close('}');
  return out.take();
}

Json EventJson(const EventParts& parts, const RuledEvent& event) {
  Json json = JsonOf(event);
  json["words"] = {{"triggers", WordsOfAll(parts.words, event.rule.triggers)},
                   {"conditions", WordsOfAll(parts.words, event.rule.conditions)},
                   {"actions", WordsOfAll(parts.words, event.rule.actions)}};
  return json;
}

Json EventChoicesJson(const EventParts& parts) {
  Json devices = Json::array();
  for (const auto& [ref, device] : parts.house.devices.all()) {
    Json buttons = Json::array();
    for (const DeviceButton& button : device.buttons) buttons.push_back(button.caption);
    devices.push_back({{"ref", ref},
                       {"name", device.name},
                       {"location", device.location},
                       {"buttons", std::move(buttons)},
                       {"values", !device.values.empty()}});
  }
  Json events = Json::array();
  for (const RuledEvent* event : Sorted(parts.rules.all()))
    events.push_back({{"id", event->id}, {"name", event->name}, {"group", event->group}});
  return {{"devices", std::move(devices)}, {"scripts", parts.scripts.names()}, {"events", std::move(events)}};
}

Json DryRunJson(const DryRun& run) {
  Json conditions = Json::array();
  for (const SeenCondition& each : run.conditions)
    conditions.push_back({{"words", each.words}, {"saw", each.saw}, {"holds", each.holds}});
  return {{"conditions", std::move(conditions)},
          {"would", run.would},
          {"actions", run.actions},
          {"why", run.why}};
}

Json EvaluationJson(const Evaluation& evaluation) {
  Json json = JsonOf(evaluation);
  json["evaluation"] = evaluation.id;
  return json;
}

Json PlaceJson(const EventParts& parts) {
  Json json = PlaceOnly(parts.rules.place());
  if (json.is_null()) return json;
  const SunToday sun = parts.control.sun().value_or(SunToday());
  json["sunrise"] = ClockOrNull(sun.rise);
  json["sunset"] = ClockOrNull(sun.set);
  return json;
}

}  // namespace standin
