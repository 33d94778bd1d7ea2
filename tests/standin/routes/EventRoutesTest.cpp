// What the pages may ask of the house's events.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/fakes/WebHouse.hpp"
#include "standin/rules/RuleJson.hpp"
#include "standin/rules/Rules.hpp"

namespace {

using Json = nlohmann::json;
using standin::Outcome;
using testing::ElementsAre;
using testing::HasSubstr;

class EventPages : public testing::Test {
 protected:
  EventPages() { web.cookie = house.sessionOf(standin::kFirstUser); }
  int post(const std::string& path, const Json& body) {
    const int status = web.post(path, body);
    answer = support::JsonIfAny(web.last);
    return status;
  }
  Json save(const Json& rule) {
    EXPECT_EQ(post("/api/event/save", rule), 200) << web.last;
    return answer;
  }
  static Json simple(const std::string& name) {
    return {{"name", name},
            {"group", "Evening"},
            {"triggers", {{{"kind", "time"}, {"at", "22:00"}, {"days", {1, 2}}}}},
            {"conditions", {{{"kind", "window"}, {"from", "22:00"}, {"to", "06:00"}, {"not", true}}}},
            {"actions", {{{"kind", "wait"}, {"seconds", 90}}}}};
  }
  Json list() { return web.json("/api/events"); }

  support::WebHouse house;
  support::WebClient web{house.port()};
  Json answer;
};

TEST_F(EventPages, AnEventThatIsSavedIsListedInWords) {
  const Json saved = save(simple("Good night"));
  EXPECT_EQ(saved.at("version"), 1);
  const Json all = list();
  ASSERT_EQ(all.at("events").size(), 1U);
  EXPECT_EQ(all.at("events").at(0), Json({{"id", saved.at("id")},
                                          {"version", 1},
                                          {"name", "Good night"},
                                          {"group", "Evening"},
                                          {"on", true},
                                          {"when", {"22:00 on Mon, Tue"}},
                                          {"if", {"It is not between 22:00 and 06:00"}},
                                          {"any", false},
                                          {"do", {"Wait 90 seconds"}},
                                          {"last", nullptr},
                                          {"running", 0},
                                          {"next", nullptr}}));
  EXPECT_EQ(all.at("undo"), "Making of “Good night”");
  EXPECT_EQ(all.at("redo"), "");
  EXPECT_EQ(all.at("place"), nullptr);
}

TEST_F(EventPages, EventsStandByGroupAndName) {
  save({{"name", "b"}, {"group", "Evening"}});
  save({{"name", "A"}, {"group", "evening"}});
  save({{"name", "z"}});
  std::vector<std::string> names;
  const Json all = list();
  for (const Json& event : all.at("events")) names.push_back(event.at("name"));
  EXPECT_THAT(names, ElementsAre("z", "A", "b"));
}

TEST_F(EventPages, NamesOfAnyKindAreListedAsTheyAre) {
  for (const char* name : {"\"quoted\" \\ and /", "<b>&amp;</b>", "夜 😴 \xEF\xBF\xBF", "‘’“”…"}) {
    Json rule = simple(name);
    rule["actions"] = {{{"kind", "speak"}, {"text", std::string("\x01\n\t\x7F ") + name}}};
    const Json id = save(rule).at("id");
    const Json row = list().at("events").at(0);
    EXPECT_EQ(row.at("name"), name);
    EXPECT_EQ(row.at("do"), Json({std::string("Say “\x01\n\t\x7F ") + name + "”"}));
    EXPECT_EQ(post("/api/event/delete", {{"id", id}, {"version", 1}}), 200);
  }
}

TEST_F(EventPages, EventsThatThePluginHasMadeAreNotListed) {
  house.onLoop([](standin::House& all) { all.events.create("Album VR"); });
  EXPECT_EQ(list().at("events"), Json::array());
}

TEST_F(EventPages, OneIsReadWithAllThatItDoesAndHowThatReads) {
  const Json saved = save(simple("Good night"));
  Json one = web.json("/api/event?id=" + saved.at("id").dump());
  EXPECT_EQ(one.at("words"), Json({{"triggers", {"22:00 on Mon, Tue"}},
                                   {"conditions", {"It is not between 22:00 and 06:00"}},
                                   {"actions", {"Wait 90 seconds"}}}));
  one["name"] = "Sleep well";  // what was read can be saved as it is
  EXPECT_EQ(save(one).at("version"), 2);
  EXPECT_EQ(web.get("/api/event?id=999")->status, 404);
  EXPECT_EQ(web.get("/api/event")->status, 404);
}

TEST_F(EventPages, AClashShowsBoth) {
  Json mine = simple("Good night");
  mine["id"] = save(mine).at("id");
  mine["version"] = 1;
  Json theirs = mine;
  theirs["name"] = "Theirs";
  save(theirs);
  mine["name"] = "Mine";
  EXPECT_EQ(post("/api/event/save", mine), 409);
  EXPECT_EQ(answer.at("error"), "“Theirs” has been changed meanwhile");
  EXPECT_EQ(answer.at("theirs").at("name"), "Theirs");
  EXPECT_EQ(answer.at("theirs").at("version"), 2);
  EXPECT_EQ(post("/api/event/delete", {{"id", mine["id"]}, {"version", 1}}), 409);
  EXPECT_EQ(answer.at("theirs").at("version"), 2);
}

TEST_F(EventPages, WhatIsGoneIsToldAsGone) {
  for (const char* path : {"switch", "delete", "run", "trigger", "stop", "dry"}) {
    EXPECT_EQ(post(std::string("/api/event/") + path, {{"id", 99}, {"on", true}, {"version", 1}}), 404)
        << path;
  }
  Json rule = simple("Good night");
  rule["id"] = 99;
  EXPECT_EQ(post("/api/event/save", rule), 404);
}

TEST_F(EventPages, WhatIsNoRuleIsRefusedWithItsPlace) {
  Json rule = simple("Good night");
  rule["actions"][0]["seconds"] = "long";
  EXPECT_EQ(post("/api/event/save", rule), 400);
  EXPECT_THAT(std::string(answer.at("error")), HasSubstr("Action 1, seconds: must be a whole number"));
  EXPECT_EQ(answer.at("place"), "actions/0/seconds");
  EXPECT_EQ(post("/api/event/dry", {{"rule", rule}}), 400);
  EXPECT_EQ(post("/api/event/save", Json::object()), 400);
  EXPECT_EQ(post("/api/event/switch", {{"id", "one"}, {"on", true}}), 400);
  EXPECT_EQ(list().at("events"), Json::array());
}

TEST_F(EventPages, ANameThatAnotherEventHasIsRefused) {
  save(simple("Good night"));
  EXPECT_EQ(post("/api/event/save", simple("GOOD NIGHT")), 400);
  EXPECT_EQ(answer.at("place"), "name");
  EXPECT_EQ(answer.at("error"), "Name: Another event has the name “Good night”");
}

TEST_F(EventPages, EveryChangeIsUndoneAndRedone) {
  const Json id = save(simple("Good night")).at("id");
  EXPECT_EQ(post("/api/event/switch", {{"id", id}, {"on", false}}), 200);
  EXPECT_EQ(answer.at("version"), 2);
  EXPECT_EQ(post("/api/event/delete", {{"id", id}, {"version", 2}}), 200);
  EXPECT_EQ(answer.at("undo"), "Deletion of “Good night”");
  EXPECT_EQ(list().at("undo"), "Deletion of “Good night”");
  EXPECT_EQ(post("/api/events/undo", Json::object()), 200);
  EXPECT_EQ(answer, Json({{"done", "Deletion of “Good night” undone"}, {"id", id}}));
  EXPECT_EQ(list().at("redo"), "Deletion of “Good night”");
  EXPECT_EQ(post("/api/events/redo", Json::object()), 200);
  EXPECT_EQ(answer.at("done"), "Deletion of “Good night” redone");
  EXPECT_EQ(post("/api/events/redo", Json::object()), 409);
  EXPECT_EQ(answer.at("error"), "There is nothing to redo");
}

TEST_F(EventPages, AStepInTheWayIsToldAndCanBeSkipped) {
  save(simple("One"));
  const std::int32_t two = save(simple("Two")).at("id");
  house.onLoop([&](standin::House& all) { all.events.put(two, &standin::Event::name, "Three"); });
  EXPECT_EQ(post("/api/events/undo", Json::object()), 409);
  EXPECT_EQ(answer.at("error"), "“Two” has been changed since");
  EXPECT_EQ(post("/api/events/undo", {{"skip", true}}), 200);
  EXPECT_EQ(answer.at("undo"), "Making of “One”");
  EXPECT_EQ(post("/api/events/undo", Json::object()), 200);
  EXPECT_EQ(list().at("events").size(), 1U);
}

TEST_F(EventPages, WhatRunsAndWhatCameOfItIsListed) {
  const std::int32_t id = save(simple("Good night")).at("id");
  house.onLoop([&](standin::House&) {
    house.control().runs[id] = 2;
    house.control().times[id] = 1'700'000'000'000;
    standin::Evaluation evaluation;
    evaluation.event = id;
    evaluation.time = 1'600'000'000'000;
    evaluation.trigger = "22:00";
    evaluation.outcome = Outcome::kRefused;
    evaluation.why = "Media Player Muted: No";
    evaluation.conditions = {{"Media Player Muted: No", "no", false}};
    house.evaluations().end(evaluation);
  });
  const Json row = list().at("events").at(0);
  EXPECT_EQ(row.at("running"), 2);
  EXPECT_EQ(row.at("next"), 1'700'000'000'000);
  EXPECT_EQ(row.at("last"), Json({{"time", 1'600'000'000'000},
                                  {"outcome", "refused"},
                                  {"why", "Media Player Muted: No"},
                                  {"trigger", "22:00"}}));
  const Json history = web.json("/api/event/history?id=" + std::to_string(id));
  EXPECT_FALSE(history.at("more"));
  ASSERT_EQ(history.at("evaluations").size(), 1U);
  EXPECT_EQ(history.at("evaluations").at(0).at("name"), "Good night");
  EXPECT_EQ(history.at("evaluations").at(0).at("conditions"),
            Json({{{"words", "Media Player Muted: No"}, {"saw", "no"}, {"holds", false}}}));
  EXPECT_EQ(web.json("/api/event/history?id=77").at("evaluations"), Json::array());
  EXPECT_EQ(web.json("/api/event/history").at("evaluations").size(), 1U);
}

TEST_F(EventPages, AnEventIsRunTriggeredAndStoppedByHand) {
  const std::int32_t id = save(simple("Good night")).at("id");
  house.onLoop([&](standin::House&) {
    house.control().answer.id = 5;
    house.control().answer.outcome = Outcome::kRunning;
  });
  EXPECT_EQ(post("/api/event/run", {{"id", id}}), 200);
  EXPECT_EQ(answer.at("evaluation"), 5);
  house.onLoop([&](standin::House&) {
    house.control().answer = {};
    house.control().answer.outcome = Outcome::kRefused;
    house.control().answer.conditions = {{"It is Sat", "Sun", false}};
  });
  EXPECT_EQ(post("/api/event/trigger", {{"id", id}}), 200);
  EXPECT_EQ(answer.at("outcome"), "refused");
  EXPECT_EQ(answer.at("conditions").at(0).at("holds"), false);
  EXPECT_EQ(post("/api/event/stop", {{"id", id}}), 200);
  const std::string number = std::to_string(id);
  EXPECT_THAT(house.control().calls, ElementsAre("run " + number, "trigger " + number, "stop " + number));
}

TEST_F(EventPages, WhatWouldHappenIsAskedOfAStoredEventAndOfADraft) {
  const std::int32_t id = save(simple("Good night")).at("id");
  house.onLoop([&](standin::House&) {
    house.control().foreseen = {{{"It is Sat", "Sun", false}}, false, {"Wait 90 seconds"}, "It is Sat: no"};
  });
  EXPECT_EQ(post("/api/event/dry", {{"id", id}}), 200);
  EXPECT_EQ(answer, Json({{"conditions", {{{"words", "It is Sat"}, {"saw", "Sun"}, {"holds", false}}}},
                          {"would", false},
                          {"actions", {"Wait 90 seconds"}},
                          {"why", "It is Sat: no"}}));
  EXPECT_EQ(post("/api/event/dry", {{"rule", {{"actions", Json::array()}}}}), 200);
  EXPECT_THAT(house.control().calls, ElementsAre("dry 1", "dry 0"));
  EXPECT_EQ(list().at("events").size(), 1U);
}

TEST_F(EventPages, ThePlaceIsSetOnceAndTellsTheSun) {
  EXPECT_EQ(web.json("/api/events/place"), nullptr);
  house.onLoop([&](standin::House&) { house.control().today = {6 * 60 + 12, std::nullopt}; });
  EXPECT_EQ(post("/api/events/place", {{"latitude", 52.5}, {"longitude", -13}}), 200);
  EXPECT_EQ(answer.at("sunrise"), "06:12");
  EXPECT_EQ(answer.at("sunset"), nullptr);
  EXPECT_EQ(web.json("/api/events/place").at("latitude"), 52.5);
  EXPECT_EQ(list().at("place"), Json({{"latitude", 52.5}, {"longitude", -13.0}}));
  for (const Json& wrong :
       {Json({{"latitude", 90.1}, {"longitude", 0}}), Json({{"latitude", 0}, {"longitude", -181}}),
        Json({{"latitude", "north"}, {"longitude", 0}}), Json({{"latitude", 1}})})
    EXPECT_EQ(post("/api/events/place", wrong), 400) << wrong;
}

TEST_F(EventPages, TheChoicesNameDevicesScriptsAndEvents) {
  save(simple("Good night"));
  house.onLoop([](standin::House& all) {
    const std::int32_t ref = all.devices.create("Mute").ref;
    all.devices.put(ref, &standin::Device::location, "Media Player");
    all.devices.addButton(ref, "Media Player", "Mute toggle");
  });
  const Json choices = web.json("/api/event/choices");
  EXPECT_EQ(choices.at("devices").at(0), Json({{"ref", 1},
                                               {"name", "Mute"},
                                               {"location", "Media Player"},
                                               {"buttons", {"Mute toggle"}},
                                               {"values", false}}));
  EXPECT_EQ(choices.at("events").at(0).at("name"), "Good night");
  EXPECT_TRUE(choices.at("scripts").is_array());
}

TEST_F(EventPages, GuestsSeeEventsAndChangeNothing) {
  const Json id = save(simple("Good night")).at("id");
  house.onLoop([](standin::House& all) { all.users.setHash(standin::kGuest, standin::kAdmitted); });
  web.cookie = house.sessionOf(standin::kGuest);
  EXPECT_EQ(list().at("events").size(), 1U);
  EXPECT_EQ(web.get("/api/event?id=" + id.dump())->status, 200);
  for (const char* path : {"event/save", "event/delete", "event/switch", "event/run", "event/trigger",
                           "event/stop", "event/dry", "events/undo", "events/redo", "events/place"}) {
    EXPECT_EQ(post(std::string("/api/") + path, {{"id", id}}), 403) << path;
    EXPECT_EQ(answer.at("error"), "Guests see events and change nothing") << path;
  }
}

}  // namespace
