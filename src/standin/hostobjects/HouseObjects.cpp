#include "standin/hostobjects/HouseObjects.hpp"

#include <memory>

#include "standin/hostobjects/DeviceObject.hpp"
#include "standin/hostobjects/EventObject.hpp"

namespace standin {
namespace {

constexpr std::size_t kFreshKept = 256;

std::string DevicePath(std::int32_t ref) { return "/host/devices/" + std::to_string(ref); }
std::string EventPath(std::int32_t id) { return "/host/events/" + std::to_string(id); }
std::string ListPath(std::int32_t id) { return EventPath(id) + "/devices"; }
std::string EntryPath(std::int32_t id, std::int64_t entry) {
  return ListPath(id) + "/" + std::to_string(entry);
}

}  // namespace

HouseObjects::HouseObjects(House& house, Shelf& shelf) : house_(house), shelf_(shelf) {
  for (const auto& [ref, device] : house_.devices.all()) this->device(ref);
  for (const auto& [id, event] : house_.events.all()) this->event(id);
  house_.devices.onRemove = [this, told = house_.devices.onRemove](std::int32_t ref) {
    if (devices_.erase(ref) > 0) shelf_.hide(DevicePath(ref));
    if (told) told(ref);
  };
}

base::ObjectRef HouseObjects::device(std::int32_t ref) {
  if (house_.devices.byRef(ref) == nullptr) return nullptr;
  base::ObjectRef& object = devices_[ref];
  if (!object) {
    object = std::make_shared<DeviceObject>(house_, ref);
    shelf_.show(DevicePath(ref), object);
  }
  return object;
}

base::ObjectRef HouseObjects::event(std::int32_t id) {
  if (house_.events.byId(id) == nullptr) return nullptr;
  base::ObjectRef& object = events_[id];
  if (!object) {
    const auto devices = std::make_shared<EventDevicesObject>(
        house_, id, [this, id](std::int64_t each) { return entry(id, each); },
        [this, id](std::int64_t gone) {
          if (entries_.erase(gone) > 0) shelf_.hide(EntryPath(id, gone));
        });
    shelf_.show(ListPath(id), devices);
    object = std::make_shared<EventObject>(house_, id, devices);
    shelf_.show(EventPath(id), object);
  }
  return object;
}

base::ObjectRef HouseObjects::entry(std::int32_t event, std::int64_t entry) {
  base::ObjectRef& object = entries_[entry];
  if (!object) {
    object = std::make_shared<DevFuncObject>(house_, event, entry);
    shelf_.show(EntryPath(event, entry), object);
  }
  return object;
}

base::ObjectRef HouseObjects::newDevFunc() {
  const auto object = std::make_shared<DevFuncObject>();
  freshPaths_.push_back("/host/devfuncs/" + std::to_string(++lastFresh_));
  shelf_.show(freshPaths_.back(), object);
  if (freshPaths_.size() > kFreshKept) {
    shelf_.hide(freshPaths_.front());
    freshPaths_.pop_front();
  }
  return object;
}

}  // namespace standin
