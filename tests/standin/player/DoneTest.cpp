// What a page says was done is what was done.
#include <gtest/gtest.h>

#include "standin/fakes/PlaylistHouse.hpp"

namespace {

using nlohmann::json;
using support::FakePlaylists;
using support::FakePlugin;

class Done : public testing::Test {
 protected:
  static void furnish(base::Object&, base::Object& host, const base::ObjectRef&) {
    for (const auto& [name, code] : {std::pair("Status", 1), std::pair("Title", 2)}) {
      const base::ObjectRef device = base::ToObject(host.invoke("GetDevice", host.invoke("NewDevice", name)));
      device->put("location", "Media Player");
      device->put("hc", "Q");
      device->put("dc", static_cast<std::int16_t>(code));
      device->put("interface", "Media Player");
    }
    host.invoke("DeviceButtonAdd", "Q2", "Media Player", "Add to PlayList");
  }
  /// What the plug-in does when it is to add what was played.
  void add() {
    if (adds) lists->put("Vantorix", {{"River", "Blue/River"}, {"Outside", "Blue/Outside"}});
  }
  FakePlugin::Manner manner() {
    FakePlugin::Manner manner;
    manner.init = &Done::furnish;
    manner.library.playlists = lists;
    manner.press = [this] { add(); };
    manner.act = [this](base::Object& host) {
      add();
      if (!error.empty()) host.invoke("WriteLog", "Error", error);
    };
    return manner;
  }
  void SetUp() override {
    lists->put("Vantorix", {{"River", "Blue/River"}});
    ASSERT_TRUE(support::Eventually([&] {
      const json state = web.json("/api/state");
      return state.is_object() && state.value("/plugin/state"_json_pointer, "") == "ready";
    }));
  }
  int press() {
    const json state = web.json("/api/state");
    for (const json& device : state.at("devices"))
      if (device.at("name") == "Title")
        return web.post("/api/press", {{"ref", device.at("ref")}, {"caption", "Add to PlayList"}});
    return 0;
  }
  int say(const std::string& text) { return web.post("/api/voice", {{"text", text}}); }
  json answer() { return support::JsonOf(web.last); }

  bool adds = false;
  std::string error;
  std::shared_ptr<FakePlaylists> lists = std::make_shared<FakePlaylists>();
  support::BusDaemon bus;
  support::TempFolder folder;
  FakePlugin plugin{bus.address(), manner()};
  support::ServerProcess server{bus.address(), folder.path() / "data"};
  support::WebClient web{server};
};

constexpr const char* kNothing = "Nothing was added: choose something of the library to play first";

}  // namespace

TEST_F(Done, WhatIsInTheListAlreadyIsNotToldAsAdded) {
  EXPECT_EQ(press(), 409);  // though River plays, and is in the list
  EXPECT_EQ(answer().at("error"), kNothing);
  EXPECT_EQ(say("add to playlist"), 409);
  EXPECT_EQ(answer().at("error"), kNothing);
}

TEST_F(Done, WhatWasAddedIsToldByTheNameThatItHasInTheList) {
  adds = true;
  EXPECT_EQ(press(), 200);
  EXPECT_EQ(answer().at("added"), "Outside");
  EXPECT_EQ(answer().at("list"), "Vantorix");
  lists->drop("Vantorix");
  EXPECT_EQ(say("please add to playlist"), 200);
  EXPECT_EQ(answer().at("done"), "Added Outside to Vantorix");
}

TEST_F(Done, WhatThePlayerCouldNotDoIsToldInItsWords) {
  EXPECT_EQ(say("next"), 200);
  EXPECT_EQ(answer().at("done"), "Going to the next title");
  error = "Media Player: Cannot 'Play': Album 'Blue' is non-existent";
  EXPECT_EQ(say("next"), 409);
  EXPECT_EQ(answer().at("error"), error);
  error = "Another program: out of paper";
  EXPECT_EQ(say("next"), 200);
}
