// The server's program with a plug-in: start, commands, loss, end.
#include <gtest/gtest.h>

#include <fstream>
#include <future>
#include <memory>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::FakePlugin;
using support::ServerProcess;
using support::WebClient;

class Server : public testing::Test {
 protected:
  /// Makes a status device with a button and a quick-play device, and registers all there is to register.
  static void furnish(base::Object& callback, base::Object& host, const base::ObjectRef& self) {
    for (const auto& [name, code] : {std::pair("Status", 1), std::pair("Quick Album", 12)}) {
      const auto key = host.invoke("NewDevice", name);
      const base::ObjectRef device = base::ToObject(host.invoke("GetDevice", key));
      device->put("location", "Media Player");
      device->put("hc", "Q");
      device->put("dc", static_cast<std::int16_t>(code));
      device->put("interface", "Media Player");
      device->put("misc", std::int16_t{24});
    }
    host.invoke("DeviceButtonAdd", "Q1", "Media Player", "Pause");
    host.invoke("DeviceValuesAdd", "Q12",
                " \x02"
                "0\x01*Refresh Albums*\x02"
                "1\x01"
                "Blue\x02"
                "2",
                true);
    callback.invoke("registermenu", "Media Player", "Stop");
    callback.invoke("registermenu", "Media Player", "Setup");
    callback.invoke("writesplash", "Media Player version: 1.0.23");
    host.invoke("RegisterEventCB", std::int16_t{8}, self);
    host.invoke("RegisterLink", self);
    const auto id = host.invoke("NewEvent", "Album VR");
    const base::ObjectRef event = base::ToObject(host.invoke("GetEvent", id));
    event->put("vcmd", "Play [Album] (Blue|Green Night)");
    const base::ObjectRef entry = base::ToObject(host.call("NewDevFunc"));
    entry->put("devid", base::Deref(host.invoke("GetDeviceEx", "Media Player Quick Album")).get("ref"));
    entry->put("func", std::int16_t{13});
    base::Deref(event->get("ev_devices")).invoke("Add", entry);
    host.invoke("WriteLog", "Startup", "Media Player foreground initialization completed");
  }
  static FakePlugin::Manner furnishing() {
    FakePlugin::Manner manner;
    manner.init = &Server::furnish;
    return manner;
  }
  static std::string told(WebClient& web, const ServerProcess& server) {
    return web.json("/api/state").dump() + web.json("/api/log").dump() + server.errors();
  }
  static std::string stateOf(WebClient& web) {
    const json state = web.json("/api/state");
    return state.is_object() ? state.value("/plugin/state"_json_pointer, "") : "";
  }
  static std::int32_t refOf(WebClient& web, const std::string& name) {
    const json state = web.json("/api/state");
    for (const json& device : state.at("devices")) {
      if (device.at("name") == name) return device.at("ref").get<std::int32_t>();
    }
    return 0;
  }
  static bool logHas(WebClient& web, const std::string& text) {
    const json log = web.json("/api/log");
    for (const json& line : log.at("lines")) {
      if (line.at("text").get<std::string>().find(text) != std::string::npos) return true;
    }
    return false;
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::filesystem::path data = folder.path() / "data";
};

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
  EXPECT_EQ(json::parse(web.last).at("done"), "Album VR");
  EXPECT_EQ(web.post("/api/voice", {{"text", "stop the music"}}), 200);
  EXPECT_EQ(json::parse(web.last).at("done"), "Stop");
  EXPECT_EQ(web.post("/api/voice", {{"text", "make me a coffee"}}), 404);
  EXPECT_EQ(json::parse(web.last).at("error"),
            "“make me a coffee” was not understood. Try “stop”, “next” or “volume up”");
  const auto calls = plugin.calls();
  const std::vector<std::string> expected{"ButtonPress Pause",
                                          "SetIO Status Q 1 2 0 0 0 after ",
                                          "SetIO Status Q 1 3 0 0 0 after ",
                                          "SetIO Quick Album Q 12 19 2 0 0 after ",
                                          "SelectMenu Stop",
                                          "SetIO Quick Album Q 12 13 0 0 0 after Play album green NIGHT",
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

TEST_F(Server, ARefusalToStartIsShownAndNotRepeatedUntilTheUserAsks) {
  FakePlugin::Manner manner;
  manner.refusal = "Error: no player <here>";
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "failed"; }));
  EXPECT_EQ(web.json("/api/state").at("plugin").at("reason"), "Error: no player <here>");
  EXPECT_TRUE(logHas(web, "Error: no player <here>"));
  EXPECT_EQ(web.post("/api/press", {{"ref", 1}, {"caption", "x"}}), 404);
  EXPECT_EQ(plugin.calls().size(), 2U);
  EXPECT_EQ(web.post("/api/plugin", json::object()), 200);
  EXPECT_TRUE(Eventually([&] { return plugin.calls().size() >= 5; }));
  const auto calls = plugin.calls();
  EXPECT_EQ(calls[2], "ShutdownIO");
  EXPECT_EQ(calls[3], "RegisterCallback");
}

TEST_F(Server, ALostPluginIsShownLoggedAndStartedAgain) {
  auto plugin = std::make_unique<FakePlugin>(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  plugin.reset();
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "lost"; }));
  EXPECT_TRUE(logHas(web, "The plug-in has been lost"));
  EXPECT_TRUE(web.json("/api/state").at("menu").empty());
  EXPECT_TRUE(web.json("/api/state").at("links").empty());
  plugin = std::make_unique<FakePlugin>(bus.address());
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  EXPECT_EQ(plugin->calls().at(0), "RegisterCallback");
}

TEST_F(Server, ThePluginIsReadyWhenItSaysSo) {
  std::atomic<bool> ready = false;
  FakePlugin::Manner slow;
  slow.ready = [&] { return ready.load(); };
  FakePlugin plugin(bus.address(), slow);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(plugin.heard("InitIO " + std::to_string(server.port())));
  EXPECT_EQ(stateOf(web), "starting");
  ready = true;
  EXPECT_TRUE(Eventually([&] { return stateOf(web) == "ready"; }));
}

TEST_F(Server, AFailureAfterTheStartIsShownToo) {
  FakePlugin::Manner failing;
  failing.ready = [] { return false; };
  FakePlugin plugin(bus.address(), failing);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(plugin.heard("InitIO " + std::to_string(server.port())));
  plugin.withHost([](base::Object&, base::Object& host) {
    host.invoke("WriteLog", "Error", "Media Player background initialization FAILED: no codes left");
  });
  EXPECT_TRUE(Eventually([&] { return stateOf(web) == "failed"; }));
  EXPECT_EQ(web.json("/api/state").at("plugin").at("reason"),
            "Media Player background initialization FAILED: no codes left");
}

class ServerWithService : public Server {
 protected:
  /// The process behind the plug-in's name.
  pid_t process() const { return processAt(services); }
  static pid_t processAt(const support::BusDaemon& daemon) {
    bus::PollLoop loop;
    bus::Connection connection(loop, daemon.address());
    return connection.hasOwner(kName) ? static_cast<pid_t>(connection.processOf(kName)) : 0;
  }
  static constexpr const char* kName = "org.vantorix.vxif_WMP9";
  support::BusDaemon services{{{kName, FAKE_PLUGIN}}};
};

TEST_F(ServerWithService, TheBusStartsThePluginAndAKilledOneIsStartedAgain) {
  ServerProcess server(services.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const pid_t first = process();
  ASSERT_GT(first, 0);
  kill(first, SIGKILL);
  ASSERT_TRUE(Eventually([&] { return logHas(web, "The plug-in has been lost"); }));
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  EXPECT_NE(process(), first);
  EXPECT_EQ(server.end(), 0);
  EXPECT_EQ(process(), 0);
}

TEST_F(ServerWithService, APluginThatDoesNotEndIsEndedByForce) {
  const support::BusDaemon stubborn{{{kName, std::string(FAKE_PLUGIN) + " stubborn"}}};
  ServerProcess server(stubborn.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  EXPECT_EQ(server.end(), 0);  // such a plug-in never ends by itself
}

TEST_F(ServerWithService, APluginThatHangsInItsStartIsStartedAgainWhenTheUserAsks) {
  const support::BusDaemon hanging{{{kName, std::string(FAKE_PLUGIN) + " hanging"}}};
  ServerProcess server(hanging.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return processAt(hanging) != 0; })) << told(web, server);
  EXPECT_EQ(stateOf(web), "starting");
  const pid_t first = processAt(hanging);
  EXPECT_EQ(web.post("/api/plugin", json::object()), 200);
  EXPECT_TRUE(Eventually([&] {
    const pid_t now = processAt(hanging);
    return now != 0 && now != first;
  })) << told(web, server);
  EXPECT_EQ(server.end(), 0);
}

TEST_F(Server, AWaitOfThePluginsDoesntHoldUpTheEnd) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  std::atomic<bool> waiting = false;
  std::thread wait([&] {
    plugin.withHost([&](base::Object&, base::Object& host) {
      host.invoke("WriteLog", "Info", "it waits");
      waiting = true;
      try {
        host.invoke("WaitSecs", std::int16_t{3600});
      } catch (const base::Failure&) {  // the server may end before its answer has left
      }
    });
  });
  ASSERT_TRUE(Eventually([&] { return waiting.load(); }));
  EXPECT_EQ(server.end(SIGINT), 0);  // an hour before the wait is over
  wait.join();
}

TEST_F(Server, PagesOfThePluginAreFramedAndKnowTheirUser) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const auto page = web.get("/wmp_plistedit");
  ASSERT_TRUE(page);
  EXPECT_EQ(page->status, 200);
  EXPECT_NE(page->body.find("<p>page WMP_PListEdit for owner</p>"), std::string::npos);
  EXPECT_NE(page->body.find("<title>Vantorix Media Player</title>"), std::string::npos);
  const std::string policy = page->get_header_value("Content-Security-Policy");
  EXPECT_NE(policy.find("default-src 'self';"), std::string::npos);
  EXPECT_NE(policy.find("script-src 'nonce-"), std::string::npos);
  EXPECT_NE(policy.find("form-action 'self'"), std::string::npos);
  EXPECT_EQ(page->get_header_value_count("Content-Security-Policy"), 1U);

  const std::string form = "application/x-www-form-urlencoded";
  EXPECT_EQ(
      web.postText("/WMP_PListEdit", "button=Update&wmp_page=Setup_Page", form, {{"Origin", web.origin()}}),
      200);
  EXPECT_NE(web.last.find("<p>put 33:button=Update&wmp_page=Setup_Page</p>"), std::string::npos);
  const std::string large = "a=" + std::string(200000, 'x');
  EXPECT_EQ(web.postText("/WMP_PListEdit", large, form, {{"Origin", web.origin()}}), 200);
  EXPECT_NE(web.last.find("<p>put 200002:"), std::string::npos);
  EXPECT_EQ(web.postText("/WMP_PListEdit", "a=b", form, {{"Origin", "http://evil.example"}}), 403);

  EXPECT_EQ(web.post("/api/login", {{"name", "guest"}}), 200);
  EXPECT_NE(web.get("/WMP_PListEdit")->body.find("for guest</p>"), std::string::npos);
  EXPECT_EQ(web.postText("/WMP_PListEdit", "a=b", form, {{"Origin", web.origin()}}), 403);
  EXPECT_EQ(web.post("/api/menu", {{"item", "Stop"}}), 403);
  EXPECT_EQ(web.post("/api/plugin", json::object()), 403);
}

TEST_F(Server, APostReachesThePluginAsItIs) {
  FakePlugin::Manner manner = furnishing();
  std::string heard;
  manner.pagePut = [&](const std::string& data) {
    heard = data;
    return std::string("<p>heard</p>");
  };
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  std::string pairs = "a=0";
  for (int i = 1; i < 10000; ++i) pairs += "&name" + std::to_string(i) + "=value+%41";
  const std::vector<std::string> bodies{"no pair at all",
                                        "&&&",
                                        "100%&a=%&b=%zz&c=%u0041",
                                        std::string("a=\0\0&b\0=1", 10),
                                        "a=\xff\xfe broken text",
                                        "title=Über&a=<script>",
                                        pairs};
  for (const std::string& body : bodies) {
    EXPECT_EQ(
        web.postText("/WMP_PListEdit", body, "application/x-www-form-urlencoded", {{"Origin", web.origin()}}),
        200);
    EXPECT_EQ(heard, body);
  }
}

TEST_F(Server, APluginThatFailsOnAPageLeavesAWayBack) {
  FakePlugin::Manner manner = furnishing();
  manner.genPage = [](const std::string&) -> std::string { throw base::Failure(13, "Wrong <b>type</b>"); };
  manner.pagePut = [](const std::string&) { return std::string(); };
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const auto page = web.get("/WMP_PListEdit", {{"Accept", "text/html"}});
  EXPECT_EQ(page->status, 502);
  EXPECT_NE(page->body.find("<h1>The player gave no page</h1>"), std::string::npos);
  EXPECT_NE(page->body.find("Wrong &lt;b&gt;type&lt;/b&gt;"), std::string::npos) << page->body;
  EXPECT_NE(page->body.find("href=\"/WMP_PListEdit\""), std::string::npos);
  EXPECT_NE(page->body.find("id=\"nav\""), std::string::npos);
  // An answer without text is a page, an empty one.
  EXPECT_EQ(
      web.postText("/WMP_PListEdit", "a=b", "application/x-www-form-urlencoded", {{"Origin", web.origin()}}),
      200);
  EXPECT_NE(web.last.find("<section class=\"plugin-page\"><script type=\"text/plain\"></script></section>"),
            std::string::npos);
  EXPECT_EQ(web.get("/api/state")->status, 200);
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
