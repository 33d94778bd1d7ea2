#include "standin/rules/RuleSteps.hpp"

#include <array>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/rules/RuleJson.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::array kKinds{"make", "change", "switch", "delete"};

/// The plug-in's texts may be of any bytes, and JSON's may not.
Json BytesOf(const std::string& text) {
  return base::IsPlainUtf8(text) ? Json(text) : Json(std::vector<unsigned char>(text.begin(), text.end()));
}

std::string TextOfBytes(const Json& json) {
  if (json.is_string()) return json.get<std::string>();
  const auto bytes = json.get<std::vector<unsigned char>>();
  return {bytes.begin(), bytes.end()};
}

Json JsonOfWhole(const std::optional<WholeEvent>& whole) {
  if (!whole) return nullptr;
  Json json{{"rule", JsonOf(whole->rule)}};
  const Event& event = whole->event;
  if (event.id == 0) return json;
  Json devices = Json::array();
  for (const EventDevice& device : event.devices) devices.push_back({device.id, device.devid, device.func});
  json["event"] = {{"vcmd", BytesOf(event.vcmd)},
                   {"misc", event.misc},
                   {"misc2", event.misc2},
                   {"absTime", event.absTime},
                   {"devices", std::move(devices)}};
  return json;
}

std::optional<WholeEvent> WholeOf(const Json& json) {
  if (json.is_null()) return std::nullopt;
  WholeEvent whole;
  const Json& rule = json.at("rule");
  whole.rule.rule = RuleOf(rule);
  // Not by the rules for what a user writes: the plug-in may have chosen another kind of name.
  whole.rule.id = rule.at("id").get<std::int32_t>();
  whole.rule.version = rule.at("version").get<std::int64_t>();
  whole.rule.name = rule.at("name").get<std::string>();
  whole.rule.group = rule.at("group").get<std::string>();
  if (!json.contains("event")) return whole;
  const Json& given = json.at("event");
  Event& event = whole.event;
  event.id = whole.rule.id;
  event.name = whole.rule.name;
  event.group = whole.rule.group;
  event.vcmd = TextOfBytes(given.at("vcmd"));
  event.misc = given.at("misc").get<std::int32_t>();
  event.misc2 = given.at("misc2").get<std::int32_t>();
  event.absTime = given.at("absTime").get<std::int16_t>();
  for (const Json& device : given.at("devices")) {
    event.devices.push_back({device.at(0).get<std::int64_t>(), device.at(1).get<std::int32_t>(),
                             device.at(2).get<std::int16_t>()});
  }
  return whole;
}

}  // namespace

std::string TextOf(const RuleStep& step) {
  return Dump({{"kind", kKinds.at(static_cast<std::size_t>(step.kind))},
               {"event", step.event},
               {"before", JsonOfWhole(step.before)},
               {"after", JsonOfWhole(step.after)}});
}

RuleStep StepOfText(const std::string& text) {
  try {
    const Json json = ReadJson(text);
    RuleStep step;
    const auto kind = json.at("kind").get<std::string>();
    std::size_t number = 0;
    while (kKinds.at(number) != kind) ++number;
    step.kind = static_cast<RuleStep::Kind>(number);
    step.event = json.at("event").get<std::int32_t>();
    step.before = WholeOf(json.at("before"));
    step.after = WholeOf(json.at("after"));
    const bool complete = (step.before.has_value() || step.kind == RuleStep::Kind::kMake) &&
                          (step.after.has_value() || step.kind == RuleStep::Kind::kDelete);
    if (!complete) throw base::Failure(base::number::kDeviceIo);
    return step;
  } catch (const std::exception&) {
    throw base::Failure(base::number::kDeviceIo, "A step of the events' history can't be read");
  }
}

std::string InQuotes(const std::string& name) { return "“" + name + "”"; }

std::string WordsOf(const RuleStep& step) {
  switch (step.kind) {
    case RuleStep::Kind::kMake: return "Making of " + InQuotes(step.after->rule.name);
    case RuleStep::Kind::kDelete: return "Deletion of " + InQuotes(step.before->rule.name);
    case RuleStep::Kind::kSwitch:
      return "Switching " + InQuotes(step.after->rule.name) + (step.after->rule.rule.on ? " on" : " off");
    case RuleStep::Kind::kChange: break;
  }
  const std::string& before = step.before->rule.name;
  const std::string& after = step.after->rule.name;
  if (before != after) return "Change of " + InQuotes(before) + ", now " + InQuotes(after);
  return "Change of " + InQuotes(after);
}

void RuleSteps::add(const RuleStep& step) {
  const std::string text = TextOf(step);
  database_.run("DELETE FROM event_step WHERE undone");
  database::Statement(database_, "INSERT INTO event_step (event, undone, size, data) VALUES (?, 0, ?, ?)")
      .with(step.event, text.size(), text)
      .run();
  database::Statement(database_,
                      "DELETE FROM event_step WHERE id IN "
                      "(SELECT id FROM event_step ORDER BY id DESC LIMIT -1 OFFSET ?)")
      .with(limits_.steps)
      .run();
  // From the newest on, as many as there is room for.
  database::Statement(
      database_,
      "DELETE FROM event_step WHERE id IN (SELECT id FROM (SELECT id, "
      "SUM(size) OVER (ORDER BY id DESC) AS sum, ROW_NUMBER() OVER (ORDER BY id DESC) AS place "
      "FROM event_step) WHERE sum > ? AND place > 1)")
      .with(limits_.bytes)
      .run();
}

void RuleSteps::turned(const RuleStep& step, bool undone) {
  const std::string text = TextOf(step);
  database::Statement(database_, "UPDATE event_step SET undone = ?, size = ?, data = ? WHERE id = ?")
      .with(undone, text.size(), text, step.id)
      .run();
}

void RuleSteps::drop(std::int64_t id) {
  database::Statement(database_, "DELETE FROM event_step WHERE id = ?").with(id).run();
}

std::optional<RuleStep> RuleSteps::next(const char* sql) {
  for (;;) {
    database::Statement row(database_, sql);
    if (!row.step()) return std::nullopt;
    const std::int64_t id = row.integer(0);
    try {
      RuleStep step = StepOfText(row.text(1));
      step.id = id;
      return step;
    } catch (const base::Failure&) {
      row.with();
      drop(id);
    }
  }
}

std::optional<RuleStep> RuleSteps::toUndo() {
  return next("SELECT id, data FROM event_step WHERE NOT undone ORDER BY id DESC LIMIT 1");
}

std::optional<RuleStep> RuleSteps::toRedo() {
  return next("SELECT id, data FROM event_step WHERE undone ORDER BY id LIMIT 1");
}

}  // namespace standin
