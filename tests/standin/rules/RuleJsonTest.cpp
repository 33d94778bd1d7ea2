// A rule's way to the pages and back, and what is told of one that is none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/rules/RuleJson.hpp"
#include "standin/rules/Rules.hpp"
#include "support/JsonText.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;

TEST(RuleJson, EveryKindComesBackAsItWas) {
  RuledEvent event = support::EventNamed("Good night");
  event.id = 12;
  event.version = 7;
  EXPECT_EQ(RuledEventOf(JsonOf(event)), event);
  EXPECT_EQ(RuleOfText(TextOf(event.rule)), event.rule);
}

TEST(RuleJson, HasTheFormThatThePagesKnow) {
  const Json json = JsonOf(support::EventNamed("Good night"));
  EXPECT_EQ(json.at("name"), "Good night");
  EXPECT_EQ(json.at("triggers").at(0).at("stored"),
            "Media Player\x02Media Player Triggers\x02Playback Ended");
  EXPECT_EQ(json.at("triggers").at(1), Json({{"kind", "time"}, {"at", "22:00"}, {"days", {1, 2, 3, 4, 5}}}));
  EXPECT_EQ(json.at("triggers").at(2),
            Json({{"kind", "sun"}, {"what", "sunset"}, {"offset", -30}, {"days", Json::array()}}));
  EXPECT_EQ(json.at("conditions").at(2),
            Json({{"kind", "window"}, {"from", "22:00"}, {"to", "06:00"}, {"not", false}}));
  EXPECT_EQ(json.at("actions").at(1),
            Json({{"kind", "device"}, {"ref", 5}, {"command", "press"}, {"caption", "Play"}}));
  EXPECT_EQ(json.at("again"), "queue");
}

TEST(RuleJson, WhatIsLeftOutHasItsUsualMeaning) {
  const RuledEvent event = RuledEventOf({{"name", "  Bare "}});
  EXPECT_EQ(event, (RuledEvent{.id = 0, .version = 0, .name = "Bare", .group = "", .rule = Rule()}));
  EXPECT_TRUE(event.rule.on);
}

TEST(RuleJson, TextsMayHoldWhateverIsPlainText) {
  RuledEvent event;
  event.name = "„Nacht“ <b>&\\ 夜 😴";
  event.rule.actions = {SpeakAction{"\x01\x02\x7F\n\t\xEF\xBF\xBF <script>"}};
  EXPECT_EQ(RuledEventOf(support::JsonOf(support::TextOf(JsonOf(event)))), event);
}

TEST(RuleJson, ATextThatIsNoPlainTextIsNotStored) {
  Rule rule;
  rule.actions = {SpeakAction{"\xFF"}};
  EXPECT_THROW(TextOf(rule), BadRule);
}

/// What is told of a rule that is none, and its place.
struct Wrong {
  const char* what;
  Json json;
  std::string place;
  std::string told;
};

Json With(const char* list, const Json& entry) { return {{"name", "x"}, {list, Json::array({entry})}}; }
Json Trigger(const Json& entry) { return With("triggers", entry); }
Json Condition(const Json& entry) { return With("conditions", entry); }
Json Action(const Json& entry) { return With("actions", entry); }
Json Many(const char* list, std::size_t count, const Json& entry) {
  return {{"name", "x"}, {list, Json(count, entry)}};
}
/// A whole with a name and one more field.
Json Whole(const char* field, const Json& value) { return {{"name", "x"}, {field, value}}; }
Json At(const char* time) { return Trigger({{"kind", "time"}, {"at", time}}); }
Json On(const Json& days) { return Trigger({{"kind", "time"}, {"at", "07:00"}, {"days", days}}); }
Json Above(const char* value) {
  return Trigger({{"kind", "device"}, {"ref", 1}, {"is", "above"}, {"value", value}});
}

std::vector<Wrong> WrongWholes() {
  const std::string long201(201, 'x');
  return {
      {"a list", Json::array(), "", "The event: is no object"},
      {"no name", Json::object(), "name", "name: is missing"},
      {"empty name", {{"name", " "}}, "name", "name: is empty"},
      {"name of two lines", {{"name", "a\nb"}}, "name", "name: must be one line"},
      {"long name", {{"name", long201}}, "name", "name: is longer than 200 characters"},
      {"number as name", {{"name", 5}}, "name", "name: must be a text"},
      {"null as name", {{"name", nullptr}}, "name", "name: must be a text"},
      {"long group", Whole("group", long201), "group", "group: is longer"},
      {"text as on", Whole("on", "yes"), "on", "on: must be true or false"},
      {"number as any", Whole("any", 1), "any", "any: must be true or false"},
      {"unknown again", Whole("again", "often"), "again", "again: must be leave, restart, queue or together"},
      {"negative id", Whole("id", -1), "id", "id: must be a whole number"},
      {"huge id", Whole("id", 1ULL << 63U), "id", "id: must be a whole number"},
      {"half a version", Whole("version", 1.5), "version", "version: must be a whole number"},
      {"object for a list", Whole("triggers", Json::object()), "triggers", "triggers: is no list"},
      {"too many triggers", Many("triggers", 101, {{"kind", "start"}}), "triggers",
       "triggers: holds more than 100"},
      {"too many conditions", Many("conditions", 101, {{"kind", "days"}}), "conditions",
       "conditions: holds more than 100"},
      {"too many actions", Many("actions", 201, {{"kind", "wait"}, {"seconds", 1}}), "actions",
       "actions: holds more than 200"}};
}

std::vector<Wrong> WrongTriggers() {
  return {
      {"a text", Trigger("start"), "triggers/0", "Trigger 1: is no object"},
      {"no kind", Trigger(Json::object()), "triggers/0/kind", "Trigger 1, kind: is missing"},
      {"unknown kind", Trigger({{"kind", "moon"}}), "triggers/0/kind",
       "Trigger 1, kind: must be plugin, time, sun, every, start, device or script"},
      {"plug-in's without its text", Trigger({{"kind", "plugin"}}), "triggers/0/stored",
       "Trigger 1, stored: is missing"},
      {"plug-in's with an empty text", Trigger({{"kind", "plugin"}, {"stored", ""}}), "triggers/0/stored",
       "Trigger 1, stored: is empty"},
      {"text with code 0", Trigger({{"kind", "plugin"}, {"stored", std::string("a\0b", 3)}}),
       "triggers/0/stored", "holds what is no character"},
      {"hour 24", At("24:00"), "triggers/0/at", "Trigger 1, at: must be a time of day"},
      {"minute 60", At("23:60"), "triggers/0/at", "must be a time of day"},
      {"short time", At("7:00"), "triggers/0/at", "must be a time of day"},
      {"time with a sign", At("+7:00"), "triggers/0/at", "must be a time of day"},
      {"day 0", On({1, 0}), "triggers/0/days/1", "Trigger 1, day 2: must be a whole number from 1 to 7"},
      {"day 8", On({8}), "triggers/0/days/0", "from 1 to 7"},
      {"a day's name", On({"Mon"}), "triggers/0/days/0", "from 1 to 7"},
      {"moonrise", Trigger({{"kind", "sun"}, {"what", "moonrise"}}), "triggers/0/what",
       "must be sunset or sunrise"},
      {"sun a day late", Trigger({{"kind", "sun"}, {"what", "sunset"}, {"offset", 721}}), "triggers/0/offset",
       "from -720 to 720"},
      {"every 0 minutes", Trigger({{"kind", "every"}, {"minutes", 0}}), "triggers/0/minutes",
       "from 1 to 1440"},
      {"every 1441 minutes", Trigger({{"kind", "every"}, {"minutes", 1441}}), "triggers/0/minutes",
       "from 1 to 1440"},
      {"device 0", Trigger({{"kind", "device"}, {"ref", 0}, {"is", "changes"}}), "triggers/0/ref",
       "must be a whole number from 1"},
      {"unknown field of a device",
       Trigger({{"kind", "device"}, {"ref", 1}, {"field", "hc"}, {"is", "changes"}}), "triggers/0/field",
       "must be status, value or text"},
      {"no comparison", Trigger({{"kind", "device"}, {"ref", 1}}), "triggers/0/is", "is missing"},
      {"above a word", Above("two"), "triggers/0/value", "must be a number"},
      {"above two signs", Above("+-5"), "triggers/0/value", "must be a number"},
      {"above infinity", Above("1e999"), "triggers/0/value", "must be a number"},
      {"above nothing", Above(""), "triggers/0/value", "must be a number"},
      {"a number to be equal to", Trigger({{"kind", "device"}, {"ref", 1}, {"is", "equals"}, {"value", 2}}),
       "triggers/0/value", "must be a text"}};
}

std::vector<Wrong> WrongConditions() {
  return {{"one that changes", Condition({{"kind", "device"}, {"ref", 1}, {"is", "changes"}}),
           "conditions/0/is", "Condition 1, is: must be equals, above or below"},
          {"unknown kind", Condition({{"kind", "start"}}), "conditions/0/kind",
           "must be plugin, device, window, days or event"},
          {"window of no length", Condition({{"kind", "window"}, {"from", "06:00"}, {"to", "06:00"}}),
           "conditions/0/to", "must differ"},
          {"text as not", Condition({{"kind", "days"}, {"not", "no"}}), "conditions/0/not",
           "must be true or false"}};
}

std::vector<Wrong> WrongActions() {
  const std::string long64(RuleBounds::kText + 1, 'x');
  return {
      {"unknown kind", Action({{"kind", "explode"}}), "actions/0/kind",
       "must be plugin, device, speak, wait, script, event, fade or wake"},
      {"unknown command", Action({{"kind", "device"}, {"ref", 1}, {"command", "dim"}}), "actions/0/command",
       "must be on, off, value or press"},
      {"too high a value", Action({{"kind", "device"}, {"ref", 1}, {"command", "value"}, {"value", 40000}}),
       "actions/0/value", "from 0 to 32767"},
      {"press of nothing", Action({{"kind", "device"}, {"ref", 1}, {"command", "press"}}),
       "actions/0/caption", "is missing"},
      {"nothing to say", Action({{"kind", "speak"}, {"text", ""}}), "actions/0/text", "is empty"},
      {"long speech", Action({{"kind", "speak"}, {"text", long64}}), "actions/0/text", "longer than 64 KiB"},
      {"wait of no time", Action({{"kind", "wait"}, {"seconds", 0}}), "actions/0/seconds", "from 1 to 86400"},
      {"wait of two days", Action({{"kind", "wait"}, {"seconds", 172800}}), "actions/0/seconds",
       "from 1 to 86400"},
      {"script without a name", Action({{"kind", "script"}}), "actions/0/name", "is missing"},
      {"event 0", Action({{"kind", "event"}, {"id", 0}}), "actions/0/id", "must be a whole number from 1"},
      {"louder than all", Action({{"kind", "fade"}, {"to", 101}, {"seconds", 1}}), "actions/0/to",
       "from 0 to 100"},
      {"fade of three hours", Action({{"kind", "fade"}, {"to", 0}, {"seconds", 10800}}), "actions/0/seconds",
       "from 1 to 7200"},
      {"fade and then what", Action({{"kind", "fade"}, {"to", 0}, {"seconds", 1}, {"then", "eject"}}),
       "actions/0/then", "must be nothing, pause or stop"},
      {"silent alarm", Action({{"kind", "wake"}, {"volume", 0}}), "actions/0/volume", "from 1 to 100"},
      {"empty choice", Action({{"kind", "wake"}, {"choices", {"a", ""}}}), "actions/0/choices/1",
       "Action 1, choice 2: is empty"},
      {"too many choices", Action({{"kind", "wake"}, {"choices", Json(21, "a")}}), "actions/0/choices",
       "holds more than 20"}};
}

class NoRule : public testing::TestWithParam<std::vector<Wrong> (*)()> {};

TEST_P(NoRule, IsRefusedWithItsPlace) {
  for (const Wrong& wrong : GetParam()()) {
    SCOPED_TRACE(wrong.what);
    try {
      RuledEventOf(wrong.json);
      ADD_FAILURE() << "taken for a rule";
    } catch (const BadRule& bad) {
      EXPECT_EQ(bad.place(), wrong.place);
      EXPECT_THAT(bad.description(), HasSubstr(wrong.told));
      EXPECT_EQ(bad.number(), base::number::kInvalidArgument);
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Of, NoRule,
                         testing::Values(&WrongWholes, &WrongTriggers, &WrongConditions, &WrongActions));

TEST(RuleJson, TheLastOfWhatIsAllowedIsTaken) {
  EXPECT_EQ(RuledEventOf(Many("triggers", 100, {{"kind", "start"}})).rule.triggers.size(), 100U);
  EXPECT_EQ(RuledEventOf(Many("conditions", 100, {{"kind", "days"}})).rule.conditions.size(), 100U);
  EXPECT_EQ(RuledEventOf(Many("actions", 200, {{"kind", "wait"}, {"seconds", 86400}})).rule.actions.size(),
            200U);
  EXPECT_NO_THROW(RuledEventOf(Action({{"kind", "speak"}, {"text", std::string(RuleBounds::kText, 'x')}})));
  std::string name;
  for (int i = 0; i < 200; ++i) name += "夜";
  EXPECT_EQ(RuledEventOf({{"name", name}}).name, name);
}

TEST(RuleJson, ATextThatIsNoJsonIsNoRule) {
  for (const char* text : {"", "{", "[]", "null", "\"x\"", "{\"triggers\":{}}"})
    EXPECT_THROW(RuleOfText(text), BadRule) << text;
}

}  // namespace
}  // namespace standin
