#include "standin/hostobjects/EventObject.hpp"

#include <algorithm>
#include <memory>
#include <utility>

#include "base/Failure.hpp"
#include "standin/hostobjects/StoredFields.hpp"

namespace standin {
namespace {

using base::Args;
using base::MemberKind;
using base::Type;
using base::Value;

const Event& Need(const House& house, std::int32_t id) {
  const Event* event = house.events.byId(id);
  if (event == nullptr) throw base::Failure(base::number::kObjectMissing, "The event has been deleted");
  return *event;
}

EventDevice EntryOf(const House& house, std::int32_t id, std::int64_t entry) {
  const auto& devices = Need(house, id).devices;
  const auto found =
      std::find_if(devices.begin(), devices.end(), [&](const EventDevice& each) { return each.id == entry; });
  if (found == devices.end()) throw base::Failure(base::number::kObjectMissing, "The entry has been removed");
  return *found;
}

base::MemberTable DevFunc(const std::function<EventDevice()>& read,
                          const std::function<void(const EventDevice&)>& write) {
  return {"DevFunc",
          {{"devid",
            MemberKind::kField,
            {},
            Type::kInt32,
            [read](Args&) { return Value(read().devid); },
            [read, write](const Value& value) {
              EventDevice entry = read();
              entry.devid = base::ToInt32(value);
              write(entry);
            }},
           {"func",
            MemberKind::kField,
            {},
            Type::kInt16,
            [read](Args&) { return Value(read().func); },
            [read, write](const Value& value) {
              EventDevice entry = read();
              entry.func = base::ToInt16(value);
              write(entry);
            }}}};
}

base::MemberTable FreshDevFunc() {
  const auto entry = std::make_shared<EventDevice>();
  return DevFunc([entry] { return *entry; }, [entry](const EventDevice& changed) { *entry = changed; });
}

base::MemberTable ListTable(House& house, std::int32_t id, const EventDevicesObject::EntryObject& object,
                            const EventDevicesObject::EntryGone& gone) {
  return {
      "EventDevices",
      {{"Count",
        MemberKind::kReadField,
        {},
        Type::kInt32,
        [&house, id](Args&) { return Value(static_cast<std::int32_t>(Need(house, id).devices.size())); }},
       {"item",
        MemberKind::kOperation,
        {{"index", Type::kInt32}},
        Type::kObject,
        [&house, id, object](Args& args) {
          return Value(object(house.events.device(id, base::ToInt32(args[0])).id));
        }},
       {"Remove",
        MemberKind::kOperation,
        {{"index", Type::kInt32}},
        Type::kNone,
        [&house, id, gone](Args& args) {
          const std::int32_t position = base::ToInt32(args[0]);
          const std::int64_t entry = house.events.device(id, position).id;
          house.events.removeDevice(id, position);
          gone(entry);
          return Value();
        }},
       {"Add", MemberKind::kOperation, {{"object", Type::kObject}}, Type::kNone, [&house, id](Args& args) {
          base::Object& given = base::Deref(args[0]);
          const std::int32_t devid = base::ToInt32(given.get("devid"));
          const std::int16_t func = base::ToInt16(given.get("func"));
          house.events.addDevice(id, devid, func);
          return Value();
        }}}};
}

base::MemberTable EventTable(House& house, std::int32_t id, const base::ObjectRef& devices) {
  const auto stored = [&house, id](const char* name, auto field) {
    return StoredField(
        name, field, [&house, id]() -> const Event& { return Need(house, id); },
        [&house, id](auto member, const auto& value) { house.events.put(id, member, value); });
  };
  return {
      "Event",
      {stored("vcmd", &Event::vcmd),
       stored("misc", &Event::misc),
       stored("misc2", &Event::misc2),
       {"ev_abs_time",
        MemberKind::kField,
        {},
        Type::kInt16,
        [&house, id](Args&) { return Value(Need(house, id).absTime); },
        [&house, id](const Value& value) { house.events.putAbsTime(id, base::ToInt16(value)); }},
       stored("Group", &Event::group),
       {"ev_devices", MemberKind::kReadField, {}, Type::kObject, [devices](Args&) { return Value(devices); }},
       stored("name", &Event::name)}};
}

}  // namespace

DevFuncObject::DevFuncObject() : TableObject(FreshDevFunc()) {}

DevFuncObject::DevFuncObject(House& house, std::int32_t event, std::int64_t entry)
    : TableObject(
          DevFunc([&house, event, entry] { return EntryOf(house, event, entry); },
                  [&house, event](const EventDevice& changed) { house.events.putDevice(event, changed); })) {}

EventDevicesObject::EventDevicesObject(House& house, std::int32_t event, const EntryObject& entry,
                                       const EntryGone& gone)
    : TableObject(ListTable(house, event, entry, gone)) {}

EventObject::EventObject(House& house, std::int32_t id, const base::ObjectRef& devices)
    : TableObject(EventTable(house, id, devices)) {}

}  // namespace standin
