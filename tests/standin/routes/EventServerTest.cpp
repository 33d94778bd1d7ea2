// Events in the server as its users run it: the plug-in's words, a pulled plug.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/LivePage.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/rules/Rules.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using Json = nlohmann::json;
using support::Eventually;
using support::Stored;

class EventServer : public testing::Test {
 protected:
  static Json worded() {
    const auto plugin = [](const char* text) {
      return Json::array({{{"kind", "plugin"}, {"stored", Stored(text)}}});
    };
    return {{"name", "Good night"},
            {"triggers", plugin("Media Player¦Media Player Triggers¦Playback Ended")},
            {"conditions", plugin("Media Player¦Media Player Status¦Muted¦No")},
            {"actions", plugin("Media Player¦Media Player Actions¦Stop¦x")}};
  }
  static Json firstOf(support::WebClient& web) {
    const Json list = web.json("/api/events");
    return list.at("events").at(0);
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::filesystem::path data = folder.path() / "data";
};

TEST_F(EventServer, TheListHasThePluginsWordsOnceItHasToldThem) {
  support::ServerProcess server(bus.address(), data);
  support::WebClient web(server);
  EXPECT_EQ(web.post("/api/event/save", worded()), 200) << web.last;
  EXPECT_EQ(firstOf(web).at("when"), Json({"Playback Ended"}));
  support::LivePage page(server);
  support::FakePlugin plugin(bus.address());
  EXPECT_TRUE(page.hears(R"({"id":0})")) << page.heard();
  const Json row = firstOf(web);
  EXPECT_EQ(row.at("when"), Json({"TriggerUIFormat of Playback Ended"}));
  EXPECT_EQ(row.at("if"), Json({"ConditionUIFormat of No"}));
  EXPECT_EQ(row.at("do"), Json({"ActionUIFormat of x"}));
  const auto calls = plugin.calls();
  EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                          [](const std::string& call) { return call.find("UIFormat") != std::string::npos; }),
            3);
}

TEST_F(EventServer, WhatWasSavedIsThereAfterThePlugWasPulled) {
  Json first;
  {
    support::ServerProcess server(bus.address(), data);
    support::WebClient web(server);
    EXPECT_EQ(web.post("/api/event/save", worded()), 200) << web.last;
    first = firstOf(web);
    EXPECT_EQ(server.end(SIGKILL), -SIGKILL);
  }
  support::ServerProcess server(bus.address(), data);
  support::WebClient web(server);
  EXPECT_EQ(firstOf(web), first);
  EXPECT_EQ(web.post("/api/events/undo", Json::object()), 200) << web.last;
  EXPECT_EQ(web.json("/api/events").at("events"), Json::array());
}

}  // namespace
