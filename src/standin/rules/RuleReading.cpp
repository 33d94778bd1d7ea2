// JSON as a rule.
#include <algorithm>
#include <limits>

#include "base/Text.hpp"
#include "standin/events/RuleNumber.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/rules/JsonPlace.hpp"
#include "standin/rules/RuleJson.hpp"
#include "standin/rules/RuleNames.hpp"

namespace standin {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMostValue = 32767;  // of a device, as its interface takes it
constexpr std::int32_t kHalfDay = 12 * 60;
constexpr std::int32_t kDay = 24 * 60;

template <class Enum, std::size_t N>
Enum WordAt(const JsonPlace& place, const std::array<const char*, N>& words) {
  return static_cast<Enum>(place.word(words));
}

std::int32_t ClockAt(const JsonPlace& place) {
  const std::string text = place.text();
  const auto digit = [&](std::size_t at) { return text[at] >= '0' && text[at] <= '9'; };
  const bool form = text.size() == 5 && digit(0) && digit(1) && text[2] == ':' && digit(3) && digit(4);
  const std::int32_t hours = form ? (text[0] - '0') * 10 + text[1] - '0' : 0;
  const std::int32_t minutes = form ? (text[3] - '0') * 10 + text[4] - '0' : 0;
  if (!form || hours > 23 || minutes > 59) place.refuse("must be a time of day from 00:00 to 23:59");
  return hours * 60 + minutes;
}

Weekdays DaysAt(const JsonPlace& place) {
  unsigned days = 0;
  for (std::size_t i = 0; i < place.size(100); ++i) days |= 1U << (place.entry(i, "day").number(1, 7) - 1);
  return static_cast<Weekdays>(days);
}

/// What triggers and conditions ask of devices; `least` is the first comparison allowed.
template <class Asked>
Asked DeviceAt(const JsonPlace& place, bool mayChange) {
  Asked asked;
  asked.ref = place.needed("ref").number(1, kMost);
  const JsonPlace field = place.field("field");
  if (field.given()) asked.field = WordAt<DeviceField>(field, rulenames::kFields);
  const JsonPlace is = place.needed("is");
  asked.is = WordAt<Compared>(is, rulenames::kCompared);
  if (asked.is == Compared::kChanges) {
    if (!mayChange) is.refuse("must be equals, above or below");
    return asked;
  }
  const JsonPlace value = place.needed("value");
  asked.value = value.text();
  if (asked.is != Compared::kEquals && !RuleNumber(asked.value)) value.refuse("must be a number");
  return asked;
}

/// One kind of something, by its word.
template <class Made>
struct Kind {
  const char* word;
  Made (*read)(const JsonPlace& place);
};

template <class Made, std::size_t N>
Made KindAt(const JsonPlace& place, const Kind<Made> (&kinds)[N]) {
  std::array<const char*, N> words{};
  std::transform(std::begin(kinds), std::end(kinds), words.begin(),
                 [](const auto& kind) { return kind.word; });
  return kinds[place.needed("kind").word(words)].read(place);
}

constexpr Kind<Trigger> kTriggers[] = {
    {"plugin",
     [](const JsonPlace& place) -> Trigger { return PluginTrigger{place.needed("stored").someText()}; }},
    {"time",
     [](const JsonPlace& place) -> Trigger {
       return TimeTrigger{ClockAt(place.needed("at")), DaysAt(place.field("days"))};
     }},
    {"sun",
     [](const JsonPlace& place) -> Trigger {
       static constexpr std::array kWhat{"sunset", "sunrise"};
       const bool rise = place.needed("what").word(kWhat) == 1;
       const JsonPlace offset = place.field("offset");
       return SunTrigger{rise, offset.given() ? offset.number(-kHalfDay, kHalfDay) : 0,
                         DaysAt(place.field("days"))};
     }},
    {"every",
     [](const JsonPlace& place) -> Trigger { return EveryTrigger{place.needed("minutes").number(1, kDay)}; }},
    {"start", [](const JsonPlace&) -> Trigger { return StartTrigger{}; }},
    {"device", [](const JsonPlace& place) -> Trigger { return DeviceAt<DeviceTrigger>(place, true); }},
    {"script", [](const JsonPlace&) -> Trigger { return ScriptTrigger{}; }}};

using Asked = decltype(Condition::asked);
constexpr Kind<Asked> kConditions[] = {
    {"plugin",
     [](const JsonPlace& place) -> Asked { return PluginCondition{place.needed("stored").someText()}; }},
    {"device", [](const JsonPlace& place) -> Asked { return DeviceAt<DeviceCondition>(place, false); }},
    {"window",
     [](const JsonPlace& place) -> Asked {
       const JsonPlace to = place.needed("to");
       const WindowCondition window{ClockAt(place.needed("from")), ClockAt(to)};
       if (window.from == window.to) to.refuse("must differ from the beginning");
       return window;
     }},
    {"days", [](const JsonPlace& place) -> Asked { return DaysCondition{DaysAt(place.field("days"))}; }},
    {"event",
     [](const JsonPlace& place) -> Asked { return EventCondition{place.needed("id").number(1, kMost)}; }}};

Action DeviceActionAt(const JsonPlace& place) {
  DeviceAction action;
  action.ref = place.needed("ref").number(1, kMost);
  action.kind = WordAt<DeviceAction::Kind>(place.needed("command"), rulenames::kCommands);
  if (action.kind == DeviceAction::Kind::kValue) action.value = place.needed("value").number(0, kMostValue);
  if (action.kind == DeviceAction::Kind::kPress) action.caption = place.needed("caption").someText();
  return action;
}

Action WakeActionAt(const JsonPlace& place) {
  WakeAction wake;
  const JsonPlace choices = place.field("choices");
  for (std::size_t i = 0; i < choices.size(RuleBounds::kChoices); ++i)
    wake.choices.push_back(choices.entry(i, "choice").someText());
  const JsonPlace words = place.field("words");
  if (words.given()) wake.words = words.text();
  const JsonPlace volume = place.field("volume");
  if (volume.given()) wake.volume = volume.number(1, 100);
  const JsonPlace seconds = place.field("seconds");
  if (seconds.given()) wake.seconds = seconds.number(0, 3600);
  return wake;
}

constexpr Kind<Action> kActions[] = {
    {"plugin",
     [](const JsonPlace& place) -> Action { return PluginAction{place.needed("stored").someText()}; }},
    {"device", &DeviceActionAt},
    {"speak", [](const JsonPlace& place) -> Action { return SpeakAction{place.needed("text").someText()}; }},
    {"wait",
     [](const JsonPlace& place) -> Action { return WaitAction{place.needed("seconds").number(1, 86'400)}; }},
    {"script",
     [](const JsonPlace& place) -> Action { return ScriptAction{place.needed("name").someText()}; }},
    {"event",
     [](const JsonPlace& place) -> Action { return EventAction{place.needed("id").number(1, kMost)}; }},
    {"fade",
     [](const JsonPlace& place) -> Action {
       FadeAction fade{place.needed("to").number(0, 100), place.needed("seconds").number(1, 7200)};
       const JsonPlace then = place.field("then");
       if (then.given()) fade.then = WordAt<FadeAction::Then>(then, rulenames::kThen);
       return fade;
     }},
    {"wake", &WakeActionAt}};

/// One line without blanks around it.
std::string NameAt(const JsonPlace& place) {
  std::string name = base::TrimBlanks(place.text());
  const auto control = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  if (std::any_of(name.begin(), name.end(), control)) place.refuse("must be one line");
  if (base::CountCharacters(name) > RuleBounds::kName) place.refuse("is longer than 200 characters");
  return name;
}

Rule RuleAt(const JsonPlace& whole) {
  whole.mustBeObject();
  Rule rule;
  rule.on = whole.field("on").flag(true);
  rule.any = whole.field("any").flag(false);
  const JsonPlace triggers = whole.field("triggers");
  for (std::size_t i = 0; i < triggers.size(RuleBounds::kTriggers); ++i)
    rule.triggers.push_back(KindAt(triggers.entry(i, "Trigger"), kTriggers));
  const JsonPlace conditions = whole.field("conditions");
  for (std::size_t i = 0; i < conditions.size(RuleBounds::kConditions); ++i) {
    const JsonPlace condition = conditions.entry(i, "Condition");
    rule.conditions.push_back({KindAt(condition, kConditions), condition.field("not").flag(false)});
  }
  const JsonPlace actions = whole.field("actions");
  for (std::size_t i = 0; i < actions.size(RuleBounds::kActions); ++i)
    rule.actions.push_back(KindAt(actions.entry(i, "Action"), kActions));
  const JsonPlace again = whole.field("again");
  if (again.given()) rule.again = WordAt<Again>(again, rulenames::kAgain);
  return rule;
}

}  // namespace

Rule RuleOf(const nlohmann::json& json) { return RuleAt(JsonPlace(json)); }

RuledEvent RuledEventOf(const nlohmann::json& json) {
  const JsonPlace whole(json);
  RuledEvent event;
  event.rule = RuleAt(whole);
  const JsonPlace id = whole.field("id");
  if (id.given()) event.id = id.number(0, kMost);
  const JsonPlace version = whole.field("version");
  if (version.given()) event.version = version.whole(0, std::numeric_limits<std::int64_t>::max());
  const JsonPlace name = whole.needed("name");
  event.name = NameAt(name);
  if (event.name.empty()) name.refuse("is empty");
  const JsonPlace group = whole.field("group");
  if (group.given()) event.group = NameAt(group);
  return event;
}

Rule RuleOfText(const std::string& text) {
  const nlohmann::json json = ReadJson(text);
  if (json.is_discarded()) throw BadRule({}, "The event: is no JSON");
  return RuleOf(json);
}

}  // namespace standin
