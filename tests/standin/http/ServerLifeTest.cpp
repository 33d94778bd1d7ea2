// The plug-in's start, loss and end, as the server's program sees them.
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

}  // namespace
}  // namespace standin::testing
