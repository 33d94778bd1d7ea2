#pragma once
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "database/Database.hpp"
#include "standin/house/DeviceStore.hpp"
#include "standin/house/EventStore.hpp"
#include "standin/house/HouseLog.hpp"
#include "standin/house/LiveFeed.hpp"
#include "standin/house/Menu.hpp"
#include "standin/house/Users.hpp"
#include "standin/settings/SettingsStore.hpp"

namespace standin {

/// Somebody hears of each change of a device, for as long as this is kept.
using DeviceHearing = std::shared_ptr<const void>;

/// Everything that belongs to the host, in one place and on one thread. It tells the live feed of every
/// change of a device, the menu, the links and the log.
class House {
 public:
  /// Opens or makes the house in the data folder. Throws as files and databases do.
  explicit House(const std::filesystem::path& folder);

  const std::filesystem::path folder;
  SettingsStore settings;
  database::Database database;
  DeviceStore devices;
  EventStore events;
  HouseLog log;
  Users users;
  LiveFeed live;
  Menu menu;
  std::vector<PageLink> links;
  std::vector<EventSink> eventSinks;

  // Set by whoever carries out the house's events.
  /// The plug-in tells a trigger; true when an event has it.
  std::function<bool(const std::string& composed)> onTrigger = [](const std::string&) { return false; };
  /// A script triggers an event by its name; false when it can't.
  std::function<bool(const std::string& event)> onScriptTrigger = [](const std::string&) { return false; };
  /// A script says something to the house; answers what the house says to it.
  std::function<std::string(const std::string& text)> onSay = [](const std::string&) {
    return std::string();
  };

  using DeviceHeard = std::function<void(const Device& device)>;
  /// Those who hear longer hear first.
  [[nodiscard]] DeviceHearing hearDevices(DeviceHeard heard);

  std::string version = "1.7.0";  ///< what the host says of itself
  int webPort = 0;
  /// The one address that its web server is reached at, as addresses of pages have it; empty where any of the
  /// machine's is one.
  std::string webHost;
  /// PEM file by which its web server is known; empty where it speaks plain http.
  std::string webCertificate;
  std::string lastVoiceCommand;
  std::string webUser;  ///< of the page request that the plug-in is answering now
  std::string splash;   ///< the last line of the start-up screen

  [[nodiscard]] std::filesystem::path htmlFolder() const { return folder / "html"; }
  /// Null when no page has that link; without regard to case.
  [[nodiscard]] const PageLink* linkOf(const std::string& path) const;
  static constexpr std::size_t kMostPages = 1000;
  static constexpr std::size_t kMostSinks = 1000;
  /// Adds the page, in place of one with the same link. Throws 6 beyond `kMostPages`, and for a text that is
  /// too long.
  void addLink(PageLink link);
  /// Throws 6 beyond `kMostSinks`.
  void addEventSink(EventSink sink);
  /// Forgets what a plug-in has registered: menu, links, event calls.
  void forgetPlugin();

 private:
  void seedPictures() const;
  void tellDevice(const Device& device);

  std::vector<std::weak_ptr<const DeviceHeard>> devicesHeard_;
};

}  // namespace standin
