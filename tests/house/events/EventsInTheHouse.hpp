#pragma once
#include <gtest/gtest.h>

#include <string>

#include "EventUser.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace support {

/// A house with a little music and a lamp, whose events are made in a browser.
class EventsInTheHouse : public testing::Test {
 protected:
  using Json = nlohmann::json;

  EventsInTheHouse() {
    EXPECT_TRUE(house.startReady()) << house.server().output();
    run("local lamp = host.GetDevice(host.NewDevice('Lamp')); lamp.location = 'Hall'; lamp.misc = 8");
    lamp = house.device("Lamp")["ref"].get<int>();
  }
  /// Runs a script to its end.
  void run(const std::string& text) {
    ASSERT_EQ(house.post("/api/script/run", {{"name", "test"}, {"text", text}}), 200);
    ASSERT_TRUE(Eventually([&] {
      const Json told = JsonOf(house.get("/api/script/run"));
      return !told.value("running", true);
    }));
    ASSERT_EQ(JsonOf(house.get("/api/script/run")).value("error", ""), "");
  }
  /// As its switch on the page does.
  void turnLamp(bool on) {
    ASSERT_EQ(house.post("/api/command", {{"ref", lamp}, {"command", on ? "on" : "off"}}), 200);
    ASSERT_EQ(house.device("Lamp")["status"], on ? 2 : 3);
  }
  Json ask(const std::string& path) { return JsonOf(house.get(path)); }
  /// The event of that name in the list; null when there is none.
  Json listed(const std::string& name) {
    const Json all = ask("/api/events");
    for (const Json& event : all["events"])
      if (event["name"] == name) return event;
    return nullptr;
  }
  /// The rule of that event.
  Json rule(const std::string& name) {
    const Json event = listed(name);
    return event.is_null() ? event : ask("/api/event?id=" + std::to_string(event["id"].get<int>()));
  }
  /// Stores an event; `rest` in place of what it has by itself. Answers its number.
  int store(const std::string& name, const Json& rest = Json::object()) {
    Json rule{{"name", name},
              {"group", ""},
              {"on", true},
              {"triggers", Json::array()},
              {"any", false},
              {"conditions", Json::array()},
              {"actions", Json::array({{{"kind", "wait"}, {"seconds", 1}}})},
              {"again", "leave"}};
    rule.update(rest);
    EXPECT_EQ(house.post("/api/event/save", rule), 200) << name;
    const Json event = listed(name);
    return event.is_null() ? 0 : event["id"].get<int>();
  }
  std::string history(int id) { return house.get("/api/event/history?id=" + std::to_string(id)); }

  SmallMusic music;
  RealHouse house{{.music = music.path()}};
  int lamp = 0;
};

/// At a desk and on a phone.
class EventsAtAnyWidth : public EventsInTheHouse, public testing::WithParamInterface<int> {
 protected:
  std::string window() { return GetParam() < 500 ? "a phone" : "a desk"; }

  EventUser user{house, GetParam()};
};

}  // namespace support
