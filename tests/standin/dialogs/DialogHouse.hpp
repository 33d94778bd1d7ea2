#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "standin/dialogs/PluginTexts.hpp"
#include "standin/fakes/FakeDialogs.hpp"
#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/LivePage.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// A server whose plug-in has dialogs.
class DialogHouse : public testing::Test {
 protected:
  using json = nlohmann::json;
  DialogHouse() {
    dialogs->action = ActionText();
    dialogs->trigger = TriggerText();
    dialogs->condition = ConditionText();
    startPlugin();
    server.emplace(bus.address(), folder.path() / "data");
    web.emplace(*server);
    EXPECT_TRUE(becomes("ready"));
  }
  void startPlugin() {
    FakePlugin::Manner manner;
    manner.more = dialogs->members();
    plugin.emplace(bus.address(), manner);
  }
  /// The plug-in's end, as the house sees it.
  void losePlugin() {
    plugin->withHost([this](base::Object&, base::Object&) { dialogs->controls = nullptr; });
    plugin.reset();
  }
  bool becomes(const std::string& state) {
    return Eventually([&] {
      const json now = web->json("/api/state");
      return now.is_object() && now.value("/plugin/state"_json_pointer, "") == state;
    });
  }
  json open(const std::string& what, const std::string& stored = {}, bool take = false) {
    return ask(*web, "open", {{"what", what}, {"stored", stored}, {"take", take}});
  }
  json ask(WebClient& client, const std::string& what, const json& body) {
    status = client.post("/api/dialog/" + what, body);
    return json::parse(client.last);
  }
  json ask(const std::string& what, const json& body) { return ask(*web, what, body); }
  json look(const json& opened) { return web->json("/api/dialog?dialog=" + id(opened)); }
  static std::string id(const json& opened) { return std::to_string(opened.value("dialog", 0LL)); }
  static json field(const json& form, int number) {
    for (const json& each : form.at("fields"))
      if (each.at("number") == number) return each;
    return {};
  }
  /// With "|" for the separator.
  static std::string readable(std::string stored) {
    std::replace(stored.begin(), stored.end(), '\x02', '|');
    return stored;
  }

  BusDaemon bus;
  TempFolder folder;
  std::shared_ptr<FakeDialogs> dialogs = std::make_shared<FakeDialogs>();
  std::optional<FakePlugin> plugin;
  std::optional<ServerProcess> server;
  std::optional<WebClient> web;
  int status = 0;
};

}  // namespace support
