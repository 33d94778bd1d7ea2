#pragma once
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "standin/fakes/FakeVoice.hpp"
#include "standin/hostobjects/HostWaits.hpp"
#include "standin/hostobjects/TopObjects.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// Remembers what it shows.
class MapShelf : public standin::Shelf {
 public:
  void show(const std::string& path, base::ObjectRef object) override { objects[path] = std::move(object); }
  void hide(const std::string& path) override { objects.erase(path); }
  std::map<std::string, base::ObjectRef> objects;
};

/// The host's object over a house in this process, with nobody on the bus.
class HostHouse : public testing::Test {
 protected:
  base::Value call(const std::string& name, base::Args args = {}) { return top.host->call(name, args); }
  std::string text(const std::string& name, base::Args args = {}) {
    return base::ToText(top.host->call(name, args));
  }
  /// A device like the plug-in makes it.
  base::ObjectRef makeDevice(const std::string& name, std::int16_t code) {
    const base::Value key = call("NewDevice", {name});
    const base::ObjectRef device = base::ToObject(call("GetDevice", {key}));
    device->put("location", "Media Player");
    device->put("hc", "Q");
    device->put("dc", code);
    device->put("interface", "Media Player");
    device->put("Status", std::int16_t{17});
    device->put("misc", std::int16_t{16});
    device->put("dev_type_string", "Media Player");
    device->put("iotype", std::int16_t{3});
    return device;
  }

  TempFolder folder;
  bus::PollLoop loop;
  MapShelf shelf;
  standin::House house{folder.path()};
  standin::HouseObjects objects{house, shelf};
  FakeVoice voice;
  standin::Speech speech{loop, house, voice};
  standin::LoopWaits waits{loop, speech};
  standin::TopObjects top{house, objects, waits};
};

}  // namespace support
