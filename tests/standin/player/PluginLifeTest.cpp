// How the server sees its plug-in start, hang and go.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/LivePage.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using support::Eventually;
using support::FakePlugin;
using support::ServerProcess;
using support::WebClient;

class PluginLife : public testing::Test {
 protected:
  static std::string stateOf(WebClient& web) {
    return web.json("/api/state").value("/plugin/state"_json_pointer, "");
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  const std::filesystem::path data = folder.path() / "data";
};

TEST_F(PluginLife, SomebodyElsesErrorInASlowStartIsNoFailure) {
  FakePlugin::Manner slow;
  std::atomic<int> asked = 0;
  slow.ready = [&] { return ++asked > 12; };
  FakePlugin plugin(bus.address(), slow);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(plugin.heard("InitIO " + std::to_string(server.port())));
  plugin.withHost([](base::Object&, base::Object& host) {
    host.invoke("WriteLog", "Error", "Settings stay in the journal: no space");
    host.invoke("WriteLog", "Info", "Media Player background initialization FAILED: a line of another type");
  });
  std::string state;
  ASSERT_TRUE(Eventually([&] { return (state = stateOf(web)) != "starting"; }));
  EXPECT_EQ(state, "ready");
}

TEST_F(PluginLife, APluginThatIsLostAfterAFailedStartIsStartedAgain) {
  FakePlugin::Manner failing;
  failing.ready = [] { return false; };
  auto plugin = std::make_unique<FakePlugin>(bus.address(), failing);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(plugin->heard("InitIO " + std::to_string(server.port())));
  plugin->withHost([](base::Object&, base::Object& host) {
    host.invoke("WriteLog", "Error", "Media Player background initialization FAILED: no codes left");
  });
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "failed"; }));
  plugin.reset();
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "lost"; }));
  plugin = std::make_unique<FakePlugin>(bus.address());
  EXPECT_TRUE(Eventually([&] { return stateOf(web) == "ready"; }));
}

TEST_F(PluginLife, APluginThatHangsWhileItIsAskedForNothingIsSeenByWhoLooks) {
  std::promise<void> answers;
  std::atomic<bool> hangs = false;
  FakePlugin::Manner manner;
  manner.ready = [&hangs, waits = answers.get_future().share()] {
    if (hangs) waits.wait();
    return true;
  };
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; }));
  hangs = true;
  const support::LivePage page(server);
  EXPECT_TRUE(Eventually([&] { return web.json("/api/state").at("plugin").at("stuck") == true; }));
  hangs = false;
  answers.set_value();
  EXPECT_TRUE(Eventually([&] { return web.json("/api/state").at("plugin").at("stuck") == false; }));
}

TEST_F(PluginLife, APluginThatHangsInTheSecondHalfOfItsStartIsSeenToHang) {
  std::promise<void> answers;
  FakePlugin::Manner manner;
  manner.ready = [waits = answers.get_future().share()] {
    waits.wait();
    return true;
  };
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  EXPECT_TRUE(Eventually([&] { return web.json("/api/state").at("plugin").at("stuck") == true; }));
  EXPECT_EQ(stateOf(web), "starting");
  answers.set_value();
  EXPECT_TRUE(Eventually([&] { return stateOf(web) == "ready"; }));
}

}  // namespace
