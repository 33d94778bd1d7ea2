#include "standin/hostobjects/EventObject.hpp"

#include <algorithm>
#include <memory>
#include <utility>

#include "standin/hostobjects/StoredFields.hpp"

namespace standin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

const Event& EventOf(const House& house, std::int32_t id) {
  return Present(house.events.byId(id), "The event has been deleted");
}

EventDevice EntryOf(const House& house, std::int32_t id, std::int64_t entry) {
  const auto& devices = EventOf(house, id).devices;
  const auto found =
      std::find_if(devices.begin(), devices.end(), [&](const EventDevice& each) { return each.id == entry; });
  return Present(found == devices.end() ? nullptr : &*found, "The entry has been removed");
}

MemberTable DevFuncTable(const std::function<EventDevice()>& read,
                         const std::function<void(const EventDevice&)>& write) {
  const auto stored = [&](const char* name, auto field) {
    return StoredField(name, field, read, [read, write](auto member, auto value) {
      EventDevice entry = read();
      entry.*member = value;
      write(entry);
    });
  };
  return {"DevFunc", {stored("devid", &EventDevice::devid), stored("func", &EventDevice::func)}};
}

MemberTable FreshDevFunc() {
  const auto entry = std::make_shared<EventDevice>();
  return DevFuncTable([entry] { return *entry; }, [entry](const EventDevice& changed) { *entry = changed; });
}

MemberTable ListTable(House& house, std::int32_t id, const EventDevicesObject::EntryObject& object,
                      const EventDevicesObject::EntryGone& gone) {
  return {"EventDevices",
          {ReadField("Count", Type::kInt32,
                     [&house, id] { return static_cast<std::int32_t>(EventOf(house, id).devices.size()); }),
           Operation("item", {Number("index")}, Type::kObject,
                     [&house, id, object](Args& args) {
                       return object(house.events.device(id, NumberAt(args, 0)).id);
                     }),
           Command("Remove", {Number("index")},
                   [&house, id, gone](Args& args) {
                     const std::int32_t position = NumberAt(args, 0);
                     const std::int64_t entry = house.events.device(id, position).id;
                     house.events.removeDevice(id, position);
                     gone(entry);
                   }),
           Command("Add", {Reference("object")}, [&house, id](Args& args) {
             base::Object& given = base::Deref(args[0]);
             const std::int32_t devid = base::ToInt32(given.get("devid"));
             const std::int16_t func = base::ToInt16(given.get("func"));
             house.events.addDevice(id, devid, func);
           })}};
}

MemberTable EventTable(House& house, std::int32_t id, const base::ObjectRef& devices) {
  const auto stored = [&house, id](const char* name, auto field) {
    return StoredField(
        name, field, [&house, id]() -> const Event& { return EventOf(house, id); },
        [&house, id](auto member, const auto& value) { house.events.put(id, member, value); });
  };
  return {
      "Event",
      {stored("vcmd", &Event::vcmd), stored("misc", &Event::misc), stored("misc2", &Event::misc2),
       Field(
           "ev_abs_time", Type::kInt16, [&house, id] { return EventOf(house, id).absTime; },
           [&house, id](const Value& value) { house.events.putAbsTime(id, base::ToInt16(value)); }),
       stored("Group", &Event::group), ReadField("ev_devices", Type::kObject, [devices] { return devices; }),
       stored("name", &Event::name)}};
}

}  // namespace

DevFuncObject::DevFuncObject() : TableObject(FreshDevFunc()) {}

DevFuncObject::DevFuncObject(House& house, std::int32_t event, std::int64_t entry)
    : TableObject(DevFuncTable(
          [&house, event, entry] { return EntryOf(house, event, entry); },
          [&house, event](const EventDevice& changed) { house.events.putDevice(event, changed); })) {}

EventDevicesObject::EventDevicesObject(House& house, std::int32_t event, const EntryObject& entry,
                                       const EntryGone& gone)
    : TableObject(ListTable(house, event, entry, gone)) {}

EventObject::EventObject(House& house, std::int32_t id, const base::ObjectRef& devices)
    : TableObject(EventTable(house, id, devices)) {}

}  // namespace standin
