// What the pages ask of the house's events. Guests look and change nothing.
#include <cmath>

#include "base/Failure.hpp"
#include "standin/routes/EventAnswers.hpp"
#include "standin/rules/EvaluationJson.hpp"
#include "standin/rules/RuleJson.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kUsualPage = 50;

WebAnswer With(int status, const Json& json) {
  WebAnswer answer = Told(json);
  answer.status = status;
  return answer;
}

WebAnswer Gone() { return Refusal(404, "There is no such event"); }

WebAnswer Misplaced(const std::string& place, const std::string& text) {
  return With(400, {{"error", text}, {"place", place}});
}

/// What stands against a change of the event. Only to be called inside a catch block.
WebAnswer Objection(const EventParts& parts, std::int32_t event) {
  try {
    throw;
  } catch (const BadRule& bad) {
    return Misplaced(bad.place(), bad.description());
  } catch (const base::Failure& failure) {
    if (failure.number() == base::number::kFileNotFound) return Gone();
    if (failure.number() == base::number::kKeyInUse)
      return Misplaced("name", "Name: " + failure.description());
    if (failure.number() == base::number::kOverflow) return Refusal(400, failure.description());
    if (failure.number() != base::number::kChangedMeanwhile) throw;
    Json json{{"error", failure.description()}};
    const RuledEvent* theirs = parts.rules.byId(event);
    if (theirs != nullptr) json["theirs"] = JsonOf(*theirs);
    return With(409, json);
  }
}

std::int32_t IdIn(const Json& json) { return json.at("id").get<std::int32_t>(); }

WebAnswer One(const EventParts& parts, const WebCall& call) {
  const RuledEvent* event = parts.rules.byId(call.number<std::int32_t>("id"));
  return event == nullptr ? Gone() : Told(EventJson(parts, *event));
}

WebAnswer Save(const EventParts& parts, const WebCall& call) {
  std::int32_t id = 0;
  try {
    const RuledEvent given = RuledEventOf(call.json);
    id = given.id;
    const RuledEvent& saved = id == 0 ? parts.rules.make(given) : parts.rules.change(given);
    return Told({{"id", saved.id}, {"version", saved.version}});
  } catch (const base::Failure&) {
    return Objection(parts, id);
  }
}

WebAnswer Delete(const EventParts& parts, const WebCall& call) {
  const std::int32_t id = IdIn(call.json);
  try {
    parts.rules.remove(id, call.json.at("version").get<std::int64_t>());
    return Told({{"undo", parts.rules.toUndo()}});
  } catch (const base::Failure&) {
    return Objection(parts, id);
  }
}

WebAnswer Switch(const EventParts& parts, const WebCall& call) {
  const std::int32_t id = IdIn(call.json);
  try {
    return Told({{"version", parts.rules.turn(id, call.json.at("on").get<bool>()).version}});
  } catch (const base::Failure&) {
    return Objection(parts, id);
  }
}

/// "skip" forgets the step instead, so that those before it can be reached.
WebAnswer Turn(const EventParts& parts, const WebCall& call, bool undo) {
  if (call.json.value("skip", false)) {
    undo ? parts.rules.skipUndo() : parts.rules.skipRedo();
    return Told({{"undo", parts.rules.toUndo()}, {"redo", parts.rules.toRedo()}});
  }
  try {
    const RuleStore::Turned turned = undo ? parts.rules.undo() : parts.rules.redo();
    return Told({{"done", turned.words + (undo ? " undone" : " redone")}, {"id", turned.event}});
  } catch (const base::Failure& failure) {
    const bool expected = failure.number() == base::number::kChangedMeanwhile ||
                          failure.number() == base::number::kFileNotFound;
    if (!expected) throw;
    return Refusal(409, failure.description());
  }
}

void Start(const EventParts& parts, const WebCall& call, const Reply& reply, bool asTriggered) {
  const std::int32_t id = IdIn(call.json);
  if (parts.rules.byId(id) == nullptr) return reply(Gone());
  const auto told = [reply](const Evaluation& evaluation) { reply(Told(EvaluationJson(evaluation))); };
  asTriggered ? parts.control.trigger(id, told) : parts.control.run(id, told);
}

WebAnswer Stop(const EventParts& parts, const WebCall& call) {
  const std::int32_t id = IdIn(call.json);
  if (parts.rules.byId(id) == nullptr) return Gone();
  parts.control.stop(id);
  return {};
}

void Dry(const EventParts& parts, const WebCall& call, const Reply& reply) {
  const auto told = [reply](const DryRun& run) { reply(Told(DryRunJson(run))); };
  if (call.json.contains("rule")) {
    try {
      return parts.control.dry(call.json.value("id", 0), RuleOf(call.json.at("rule")), told);
    } catch (const BadRule& bad) {
      return reply(Misplaced(bad.place(), bad.description()));
    }
  }
  const RuledEvent* event = parts.rules.byId(IdIn(call.json));
  if (event == nullptr) return reply(Gone());
  parts.control.dry(event->id, event->rule, told);
}

WebAnswer History(const EventParts& parts, const WebCall& call) {
  const auto count = call.number<std::size_t>("count");
  const EvaluationStore::Page page = parts.evaluations.page(
      call.number<std::int32_t>("id"), call.number<std::int64_t>("before"), count == 0 ? kUsualPage : count);
  Json rows = Json::array();
  for (const EvaluationStore::Named& each : page.evaluations) {
    rows.push_back(JsonOf(each.evaluation));
    rows.back()["name"] = each.name;
  }
  return Told({{"evaluations", std::move(rows)}, {"more", page.more}});
}

WebAnswer SetPlace(const EventParts& parts, const WebCall& call) {
  const Place place{call.json.at("latitude").get<double>(), call.json.at("longitude").get<double>()};
  // Written so that what is no number at all is refused too.
  if (!(std::abs(place.latitude) <= 90)) return Misplaced("latitude", "Latitude: must be from -90 to 90");
  if (!(std::abs(place.longitude) <= 180))
    return Misplaced("longitude", "Longitude: must be from -180 to 180");
  parts.rules.setPlace(place);
  return Told(PlaceJson(parts));
}

}  // namespace

Routes EventRoutes(const EventParts& parts) {
  const auto look = [parts](const char* path, auto answer) {
    return Route{Method::kGet, path, Role::kGuest,
                 Now{[parts, answer](const WebCall& call) { return answer(parts, call); }}};
  };
  constexpr const char* kRefused = "Guests see events and change nothing";
  const auto change = [parts](const char* path, auto answer, std::size_t limit = Route::kUsualBody) {
    return Route{Method::kPost, path,
                 Role::kOwner,  Now{[parts, answer](const WebCall& call) { return answer(parts, call); }},
                 kRefused,      limit};
  };
  const auto act = [parts](const char* path, auto answer, std::size_t limit = Route::kUsualBody) {
    return Route{
        Method::kPost,
        path,
        Role::kOwner,
        Later{[parts, answer](const WebCall& call, const Reply& reply) { answer(parts, call, reply); }},
        kRefused,
        limit};
  };
  const auto turn = [](bool undo) {
    return [undo](const EventParts& given, const WebCall& call) { return Turn(given, call, undo); };
  };
  const auto start = [](bool asTriggered) {
    return [asTriggered](const EventParts& given, const WebCall& call, const Reply& reply) {
      Start(given, call, reply, asTriggered);
    };
  };
  return {look("/api/events", [](const EventParts& given,
                                 const WebCall&) { return WebAnswer{.body = EventListText(given)}; }),
          look("/api/event", &One),
          look("/api/event/choices",
               [](const EventParts& given, const WebCall&) { return Told(EventChoicesJson(given)); }),
          look("/api/event/history", &History),
          look("/api/events/place",
               [](const EventParts& given, const WebCall&) { return Told(PlaceJson(given)); }),
          change("/api/event/save", &Save, Route::kLargestBody),
          change("/api/event/delete", &Delete),
          change("/api/event/switch", &Switch),
          change("/api/events/undo", turn(true)),
          change("/api/events/redo", turn(false)),
          change("/api/events/place", &SetPlace),
          change("/api/event/stop", &Stop),
          act("/api/event/run", start(false)),
          act("/api/event/trigger", start(true)),
          act("/api/event/dry", &Dry, Route::kLargestBody)};
}

}  // namespace standin
