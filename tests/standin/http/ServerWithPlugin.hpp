#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/fakes/WebClient.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace standin::testing {

using support::FakePlugin;
using support::ServerProcess;
using support::WebClient;

/// The server's program with a plug-in.
class Server : public ::testing::Test {
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
    const nlohmann::json state = web.json("/api/state");
    return state.is_object() ? state.value(nlohmann::json::json_pointer("/plugin/state"), "") : "";
  }
  static std::int32_t refOf(WebClient& web, const std::string& name) {
    const nlohmann::json state = web.json("/api/state");
    for (const nlohmann::json& device : state.at("devices")) {
      if (device.at("name") == name) return device.at("ref").get<std::int32_t>();
    }
    return 0;
  }
  static bool logHas(WebClient& web, const std::string& text) {
    const nlohmann::json log = web.json("/api/log");
    for (const nlohmann::json& line : log.at("lines")) {
      if (line.at("text").get<std::string>().find(text) != std::string::npos) return true;
    }
    return false;
  }

  support::BusDaemon bus;
  support::TempFolder folder;
  std::filesystem::path data = folder.path() / "data";
};

}  // namespace standin::testing
