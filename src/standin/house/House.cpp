#include "standin/house/House.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "files/WriteFile.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/house/Quotas.hpp"
#include "standin/house/Schema.hpp"
#include "standin/pages/WebFiles.hpp"

namespace standin {
namespace {

database::Database& Prepared(database::Database& database) {
  PrepareSchema(database);
  return database;
}

}  // namespace

House::House(const std::filesystem::path& dataFolder)
    : folder((files::MakeFolder(dataFolder), std::filesystem::canonical(dataFolder))),
      settings(folder / "config"),
      database(folder / "house.db", "The house's database"),
      devices(Prepared(database)),
      events(database),
      log(database),
      users(database) {
  devices.onChange = [this](const Device& device) {
    live.tell("device", Dump(DeviceJson(device)));
    tellDevice(device);
  };
  devices.onRemove = [this](std::int32_t ref) { live.tell("removed", std::to_string(ref)); };
  log.onLine = [this](const LogLine& line) {
    live.tell("log", Dump(LogJson(line)),
              IsForTheOwnerAlone(line.type) ? LiveFeed::Audience::kOwner : LiveFeed::Audience::kAll);
  };
  seedPictures();
  try {
    for (const std::string& note : settings.notes()) log.write("Warning", note);
  } catch (const base::Failure&) {  // a full disk; the house is there all the same
  }
}

void House::seedPictures() const {
  const std::filesystem::path pictures = htmlFolder() / "images" / "Media Player";
  files::MakeFolder(pictures);
  const std::filesystem::path icon = pictures / "WMP_Icon.gif";
  const WebFile* own = FindWebFile("WMP_Icon.gif");
  if (own != nullptr && !std::filesystem::exists(icon))
    files::WriteFile(icon, own->content, {.mode = files::kForOwner});
}

DeviceHearing House::hearDevices(DeviceHeard heard) {
  std::erase_if(devicesHeard_, [](const auto& each) { return each.expired(); });
  auto hearing = std::make_shared<const DeviceHeard>(std::move(heard));
  devicesHeard_.push_back(hearing);
  return hearing;
}

void House::tellDevice(const Device& device) {
  for (const auto& each : std::vector(devicesHeard_)) {  // who hears may begin or end a hearing
    if (const auto heard = each.lock()) (*heard)(device);
  }
}

const PageLink* House::linkOf(const std::string& path) const {
  const auto found = std::find_if(links.begin(), links.end(),
                                  [&](const PageLink& link) { return base::SameText(link.link, path); });
  return found == links.end() ? nullptr : &*found;
}

void House::addLink(PageLink link) {
  for (const std::string& text : {link.link, link.text, link.title}) CheckLength("A text of a page", text);
  const auto found = std::find_if(links.begin(), links.end(),
                                  [&](const PageLink& each) { return base::SameText(each.link, link.link); });
  if (found == links.end()) {
    CheckRoom("pages", links.size(), kMostPages);
    links.push_back(std::move(link));
  } else {
    *found = std::move(link);
  }
  live.tell("frame", "{}");
}

void House::addEventSink(EventSink sink) {
  CheckRoom("objects that hear of events", eventSinks.size(), kMostSinks);
  eventSinks.push_back(std::move(sink));
}

void House::forgetPlugin() {
  menu.clear();
  links.clear();
  eventSinks.clear();
  live.tell("frame", "{}");
}

}  // namespace standin
