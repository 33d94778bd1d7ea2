// The house's state, its log, the values of a device, the start of its plug-in.
#include <algorithm>
#include <utility>

#include "standin/house/HouseJson.hpp"
#include "standin/player/SearchTable.hpp"
#include "standin/routes/Routes.hpp"
#include "standin/text/Folding.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLogPage = 300;
constexpr std::size_t kMostValues = 100;

WebAnswer StateOf(const House& house, const PluginKeeper& plugin, const Visitors& visitors,
                  const User& user) {
  Json devices = Json::array();
  for (const auto& [ref, device] : house.devices.all()) devices.push_back(DeviceJson(device));
  Json menu = Json::array();
  for (const MenuItem& item : house.menu.items()) {
    menu.push_back({{"section", item.section}, {"item", item.item}});
  }
  Json links = Json::array();
  for (const PageLink& link : house.links) {
    // The plug-in's own pages turn guests away.
    if (!user.guest) links.push_back({{"link", link.link}, {"text", link.text}, {"title", link.title}});
  }
  return Told({{"user",
                {{"name", user.name},
                 {"guest", user.guest},
                 {"ownerHasPassword", visitors.ownerHasPassword()},
                 {"guests", visitors.guestRule()},
                 {"local", visitors.local()}}},
               {"plugin",
                {{"state", NameOf(plugin.state())},
                 {"reason", plugin.reason()},
                 {"stuck", plugin.stuck()},
                 {"name", plugin.name()},
                 {"splash", house.splash}}},
               {"menu", std::move(menu)},
               {"links", std::move(links)},
               {"devices", std::move(devices)}});
}

WebAnswer ValuesOf(const House& house, std::int32_t ref, const std::string& sought) {
  const Device* device = house.devices.byRef(ref);
  if (device == nullptr) return Refusal(404, "There is no such device");
  const std::vector<ValueEntry> entries = SplitValues(device->values);
  SearchTable table;
  table.reserve(entries.size());
  for (const ValueEntry& entry : entries) table.add({entry.name});
  const std::vector<std::uint32_t> places = table.find(SoughtWords(sought));
  Json found = Json::array();
  for (std::size_t i = 0; i < std::min(places.size(), kMostValues); ++i)
    found.push_back({{"name", entries[places[i]].name}, {"value", entries[places[i]].value}});
  return Told({{"values", std::move(found)}, {"total", places.size()}});
}

WebAnswer LinesOf(House& house, const WebCall& call) {
  const LogReader reader = call.user.guest ? LogReader::kGuest : LogReader::kOwner;
  Json lines = Json::array();
  for (const LogLine& line :
       house.log.newest(kLogPage, call.parameter("type"), call.number<std::int64_t>("before"), reader))
    lines.push_back(LogJson(line));
  return Told({{"lines", std::move(lines)}, {"types", house.log.types(reader)}});
}

}  // namespace

Routes HouseRoutes(House& house, PluginKeeper& plugin, Visitors& visitors) {
  const auto state = [&](const WebCall& call) { return StateOf(house, plugin, visitors, call.user); };
  const auto values = [&](const WebCall& call) {
    return ValuesOf(house, call.number<std::int32_t>("ref"), call.parameter("q"));
  };
  const auto log = [&](const WebCall& call) { return LinesOf(house, call); };
  const auto start = [&](const WebCall&) {
    plugin.startAgain();
    return WebAnswer();
  };
  return {{Method::kGet, "/api/state", Role::kGuest, Now{state}},
          {Method::kGet, "/api/values", Role::kGuest, Now{values}},
          {Method::kGet, "/api/log", Role::kGuest, Now{log}},
          {Method::kGet, "/api/live", Role::kGuest, Live{}},
          {Method::kPost, "/api/plugin", Role::kOwner, Now{start}, "Guests can't start the plug-in"}};
}

}  // namespace standin
