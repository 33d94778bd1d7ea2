// The server's program with a plug-in: commands, live pages, other servers, a kill.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <future>
#include <memory>
#include <thread>

#include "standin/http/ServerWithPlugin.hpp"

namespace standin::testing {
namespace {

using nlohmann::json;
using support::Eventually;

TEST_F(Server, ThePluginIsGivenItsCallbackAndThenStarted) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const auto calls = plugin.calls();
  ASSERT_GE(calls.size(), 2U);
  EXPECT_EQ(calls[0], "RegisterCallback");
  EXPECT_EQ(calls[1], "InitIO " + std::to_string(server.port()));
  const json state = web.json("/api/state");
  EXPECT_EQ(state.at("menu").size(), 2U);
  EXPECT_EQ(state.at("menu")[0].at("item"), "Stop");
  EXPECT_EQ(state.at("links")[0].at("text"), "PlayList Editor");
  EXPECT_EQ(state.at("devices").size(), 2U);
  EXPECT_TRUE(logHas(web, "foreground initialization completed"));
  EXPECT_EQ(server.end(), 0);
  EXPECT_EQ(plugin.calls().back(), "ShutdownIO");
}

TEST_F(Server, AValueThatWasChosenByAnotherNameIsNotSet) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const std::int32_t quick = refOf(web, "Quick Album");
  const auto choose = [&](const json& name) {
    return web.post("/api/command", {{"ref", quick}, {"command", "value"}, {"value", 2}, {"name", name}});
  };
  EXPECT_EQ(choose("Green"), 409);
  EXPECT_EQ(json::parse(web.last).at("error"), "The list has changed meanwhile. Choose again");
  EXPECT_EQ(choose("blue"), 409);
  EXPECT_EQ(choose(2), 400);
  EXPECT_EQ(choose("Blue"), 200);
  EXPECT_EQ(json::parse(web.last).at("done"), "Blue");
  EXPECT_EQ(plugin.calls().back(), "SetIO Quick Album Q 12 19 2 0 0 after ");
  plugin.withHost([&](base::Object&, base::Object& host) {
    base::Deref(host.invoke("GetDeviceEx", "Media Player Quick Album"))
        .put("Values",
             "Blau\x02"
             "2");
  });
  EXPECT_EQ(choose("Blue"), 409);
  EXPECT_EQ(choose("Blau"), 200);
}

TEST_F(Server, CommandsReachThePlugin) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const std::int32_t status = refOf(web, "Status");
  const std::int32_t quick = refOf(web, "Quick Album");
  EXPECT_EQ(web.post("/api/press", {{"ref", status}, {"caption", "Pause"}}), 200);
  EXPECT_EQ(web.post("/api/press", {{"ref", status}, {"caption", "Explode"}}), 404);
  EXPECT_EQ(web.post("/api/command", {{"ref", status}, {"command", "on"}}), 200);
  EXPECT_EQ(web.post("/api/command", {{"ref", status}, {"command", "off"}}), 200);
  EXPECT_EQ(web.post("/api/command", {{"ref", quick}, {"command", "value"}, {"value", 2}}), 200);
  EXPECT_EQ(web.post("/api/command", {{"ref", quick}, {"command", "value"}, {"value", 70000}}), 400);
  EXPECT_EQ(web.post("/api/menu", {{"item", "Stop"}}), 200);
  EXPECT_EQ(web.post("/api/menu", {{"item", "Explode"}}), 404);
  EXPECT_EQ(web.post("/api/voice", {{"text", "Play album green NIGHT"}}), 200);
  EXPECT_EQ(json::parse(web.last).at("done"), "Playing Green Night");
  EXPECT_EQ(json::parse(web.last).at("events"), json({"Album VR"}));
  EXPECT_EQ(web.post("/api/voice", {{"text", "stop the music"}}), 200);
  EXPECT_EQ(json::parse(web.last).at("done"), "Stopping");
  EXPECT_EQ(web.post("/api/voice", {{"text", "make me a coffee"}}), 404);
  EXPECT_EQ(json::parse(web.last).at("error"),
            "“make me a coffee” was not understood. Try “stop”, “next” or “volume up”");
  const auto calls = plugin.calls();
  const std::vector<std::string> expected{"ButtonPress Pause",
                                          "SetIO Status Q 1 2 0 0 0 after ",
                                          "SetIO Status Q 1 3 0 0 0 after ",
                                          "SetIO Quick Album Q 12 19 2 0 0 after ",
                                          "SelectMenu Stop",
                                          "SetIO Quick Album Q 12 13 0 0 0 after Play Album Green Night",
                                          "SetIO Status Q 1 13 0 0 0 after stop the music"};
  ASSERT_EQ(calls.size(), expected.size() + 2);
  EXPECT_EQ(std::vector<std::string>(calls.begin() + 2, calls.end()), expected);
}

TEST_F(Server, TheValuesOfADeviceAreFoundByTheirWordsAsTheLibraryIs) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  plugin.withHost([](base::Object&, base::Object& host) {
    host.invoke("DeviceValuesAdd", "Q12",
                "Björk\x02"
                "7\x01"
                "Anna Cohen\x02"
                "8",
                true);
  });
  const auto found = [&](const std::string& sought) {
    json names = json::array();
    const std::string ref = std::to_string(refOf(web, "Quick Album"));
    const json answer =
        web.json("/api/values?ref=" + ref + "&q=" + httplib::detail::encode_query_param(sought));
    for (const json& each : answer.at("values")) names.push_back(each.at("name"));
    EXPECT_EQ(answer.at("total"), names.size());
    return names;
  };
  EXPECT_EQ(found("bjork"), json({"Björk"}));
  EXPECT_EQ(found("cohen anna"), json({"Anna Cohen"}));
  EXPECT_EQ(found("anna bjork"), json::array());
  EXPECT_EQ(found(""), json({" ", "*Refresh Albums*", "Blue", "Björk", "Anna Cohen"}));
}

TEST_F(Server, TheHouseAnswersWhileThePluginIsBusy) {
  FakePlugin::Manner slow = furnishing();
  std::promise<void> enough;
  slow.press = [waits = enough.get_future().share()] { waits.wait(); };
  FakePlugin plugin(bus.address(), slow);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const std::int32_t ref = refOf(web, "Status");
  std::atomic<bool> pressed = false;
  std::thread press([&] {
    WebClient other(server);
    EXPECT_EQ(other.post("/api/press", {{"ref", ref}, {"caption", "Pause"}}), 200);
    pressed = true;
  });
  ASSERT_TRUE(plugin.heard("ButtonPress Pause"));
  EXPECT_EQ(stateOf(web), "ready");
  EXPECT_FALSE(pressed);
  enough.set_value();
  press.join();
}

TEST_F(Server, APluginThatHangsIsShownAsSuchUntilItAnswers) {
  FakePlugin::Manner manner = furnishing();
  std::promise<void> answers;
  manner.genPage = [&](const std::string&) {
    answers.get_future().wait();
    return std::string("<p>at last</p>");
  };
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const auto stuck = [&] { return web.json("/api/state").at("plugin").at("stuck") == true; };
  EXPECT_FALSE(stuck());
  std::thread reader([&] {
    WebClient other(server);
    EXPECT_NE(other.get("/WMP_PListEdit")->body.find("at last"), std::string::npos);
  });
  EXPECT_TRUE(Eventually(stuck));
  EXPECT_TRUE(logHas(web, "The plug-in takes long to answer"));
  answers.set_value();
  reader.join();
  EXPECT_TRUE(Eventually([&] { return !stuck(); }));
  EXPECT_EQ(stateOf(web), "ready");
}

TEST_F(Server, ALivePageHearsOfADeviceChange) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  std::string heard;
  std::atomic<bool> open = false;
  std::thread page([&] {
    httplib::Client client("127.0.0.1", server.port());
    client.set_default_headers({{"Cookie", web.cookie}});
    client.set_read_timeout(30);
    client.Get("/api/live", [&](const char* text, std::size_t size) {
      heard.append(text, size);
      open = true;
      return heard.find("A new song") == std::string::npos;
    });
  });
  ASSERT_TRUE(Eventually([&] { return open.load(); }));
  plugin.withHost([](base::Object&, base::Object& host) {
    host.invoke("SetDeviceStringByName", "Media Player Status", "A new song", true);
  });
  page.join();
  EXPECT_NE(heard.find("event: device\ndata: {"), std::string::npos);
  EXPECT_NE(heard.find("A new song"), std::string::npos);
}

TEST_F(Server, OpenLivePagesDontHoldUpTheEnd) {
  ServerProcess server(bus.address(), data);
  const WebClient web(server);
  std::atomic<int> open = 0;
  std::vector<std::thread> pages;
  for (int i = 0; i < 5; ++i) {
    pages.emplace_back([&] {
      httplib::Client client("127.0.0.1", server.port());
      client.set_default_headers({{"Cookie", web.cookie}});
      bool first = true;
      client.Get("/api/live", [&](const char*, std::size_t) {
        if (std::exchange(first, false)) ++open;
        return true;
      });
    });
  }
  EXPECT_TRUE(Eventually([&] { return open == 5; }));
  EXPECT_EQ(server.end(SIGINT), 0);  // no page goes by itself
  for (std::thread& page : pages) page.join();
}

TEST_F(Server, ASecondServerIsRefusedBeforeItTouchesAnything) {
  ServerProcess first(bus.address(), data);
  ServerProcess sameBus(bus.address(), folder.path() / "second");
  EXPECT_EQ(sameBus.wait(), 1);
  EXPECT_FALSE(sameBus.errors().empty());
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "second"));

  const support::BusDaemon otherBus;
  ServerProcess samePort(otherBus.address(), folder.path() / "third",
                         {"--port", std::to_string(first.port())});
  EXPECT_EQ(samePort.wait(), 1);
  EXPECT_NE(samePort.errors().find("in use"), std::string::npos) << samePort.errors();
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "third"));

  ServerProcess sameData(otherBus.address(), data);
  EXPECT_EQ(sameData.wait(), 1);
  EXPECT_NE(sameData.errors().find("in use"), std::string::npos) << sameData.errors();
  EXPECT_EQ(first.end(), 0);
}

TEST_F(Server, OthersMayReachItOnlyWhenItsOwnerHasAPassword) {
  ServerProcess bare(bus.address(), data, {"--listen", "0.0.0.0"});
  EXPECT_EQ(bare.wait(), 1);
  EXPECT_NE(bare.errors().find("password"), std::string::npos);
  {
    ServerProcess local(bus.address(), data);
    WebClient web(local);
    EXPECT_EQ(web.post("/api/password", {{"password", "s3cret-enough"}}), 200);
    EXPECT_EQ(local.end(), 0);
  }
  ServerProcess open(bus.address(), data, {"--listen", "0.0.0.0"});
  ASSERT_FALSE(open.line().empty()) << open.errors();
  WebClient web(open);
  EXPECT_EQ(web.get("/api/state")->status, 401);
  EXPECT_EQ(web.post("/api/login", {{"name", "owner"}, {"password", "s3cret-enough"}}), 200);
  EXPECT_EQ(web.get("/api/state")->status, 200);
  EXPECT_EQ(web.post("/api/password", {{"old", "s3cret-enough"}, {"password", ""}}), 403);
}

TEST_F(Server, WhatThePluginStoredSurvivesAKillOfTheServer) {
  {
    FakePlugin plugin(bus.address(), furnishing());
    ServerProcess server(bus.address(), data);
    WebClient web(server);
    ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
    plugin.withHost([](base::Object&, base::Object& host) {
      host.invoke("SaveINISetting", "Settings", "Volume", std::int32_t{77}, "vxif_WMP.ini");
      host.invoke("SetDeviceStringByName", "Media Player Status", "Stopped", true);
    });
    EXPECT_EQ(server.end(SIGKILL), -SIGKILL);
  }
  FakePlugin plugin(bus.address());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  plugin.withHost([](base::Object&, base::Object& host) {
    EXPECT_EQ(host.invoke("GetINISetting", "Settings", "Volume", std::int16_t{50}, "vxif_WMP.ini"),
              base::Value("77"));
    EXPECT_EQ(host.call("DeviceCount"), base::Value(2));
  });
  EXPECT_EQ(web.json("/api/state").at("devices")[0].at("text"), "Stopped");
  EXPECT_EQ(server.end(), 0);
  EXPECT_TRUE(std::filesystem::exists(data / "config/vxif_WMP.ini"));
}

}  // namespace
}  // namespace standin::testing
