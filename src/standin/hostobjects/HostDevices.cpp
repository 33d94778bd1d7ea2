#include "standin/hostobjects/HostDevices.hpp"

#include <charconv>
#include <functional>
#include <utility>

namespace standin {
namespace {

using base::Args;
using base::Member;
using base::MemberKind;
using base::Type;
using base::Value;

/// A device that `NewDevice` has made is told from a position by the mark before its number.
constexpr char kKeyMark = '#';

std::string KeyOf(const Device& device) { return kKeyMark + std::to_string(device.ref); }

const Device* ByKey(const House& house, const Value& key) {
  if (const auto* text = std::get_if<std::string>(&key.held());
      text != nullptr && text->starts_with(kKeyMark)) {
    std::int32_t ref = 0;
    std::from_chars(text->data() + 1, text->data() + text->size(), ref);
    return house.devices.byRef(ref);
  }
  return house.devices.byPosition(base::ToInt32(key));
}

/// An operation without result.
Member Action(std::string name, std::vector<base::Param> params, std::function<void(Args&)> work) {
  return {std::move(name), MemberKind::kOperation, std::move(params), Type::kNone,
          [work = std::move(work)](Args& args) {
            work(args);
            return Value();
          }};
}

const Device* ByAddress(const House& house, const Args& args) {
  return house.devices.byAddress(base::ToText(args[0]));
}

const Device* ByName(const House& house, const Args& args) {
  return house.devices.byFullName(base::ToText(args[0]));
}

const base::Param kUpdate{"update", Type::kBoolean, Value(true)};

std::vector<Member> Lookups(House& house, HouseObjects& objects) {
  return {
      {"DeviceCount",
       MemberKind::kOperation,
       {},
       Type::kInt32,
       [&house](Args&) { return Value(static_cast<std::int32_t>(house.devices.all().size())); }},
      {"GetDevice",
       MemberKind::kOperation,
       {{"key"}},
       Type::kObject,
       [&house, &objects](Args& args) {
         const Device* device = ByKey(house, args[0]);
         return Value(device == nullptr ? base::ObjectRef() : objects.device(device->ref));
       }},
      {"GetDeviceEx",
       MemberKind::kOperation,
       {{"name", Type::kText}},
       Type::kObject,
       [&house, &objects](Args& args) {
         const Device* device = ByName(house, args);
         return Value(device == nullptr ? base::ObjectRef() : objects.device(device->ref));
       }},
      {"GetDeviceCode",
       MemberKind::kOperation,
       {{"name", Type::kText}},
       Type::kText,
       [&house](Args& args) {
         const Device* device = ByName(house, args);
         return Value(device == nullptr ? std::string() : device->address());
       }},
      {"NewDevice",
       MemberKind::kOperation,
       {{"name", Type::kText}},
       Type::kText,
       [&house, &objects](Args& args) {
         const Device& device = house.devices.create(base::ToText(args[0]));
         objects.device(device.ref);
         return Value(KeyOf(device));
       }},
  };
}

}  // namespace

std::vector<Member> DeviceMembers(House& house, HouseObjects& objects) {
  std::vector<Member> members = Lookups(house, objects);
  members.push_back(Action("DeleteIODevices", {{"interface", Type::kText}},
                           [&house](Args& args) { house.devices.removeInterface(base::ToText(args[0])); }));
  members.push_back(
      Action("DeviceButtonAdd", {{"code", Type::kText}, {"interface", Type::kText}, {"caption", Type::kText}},
             [&house](Args& args) {
               if (const Device* device = ByAddress(house, args)) {
                 house.devices.addButton(device->ref, base::ToText(args[1]), base::ToText(args[2]));
               }
             }));
  members.push_back(Action(
      "DeviceValuesAdd",
      {{"code", Type::kText}, {"values", Type::kText}, {"flag", Type::kBoolean, Value(true)}},
      [&house](Args& args) {
        const Device* device = ByAddress(house, args);
        if (device == nullptr) return;
        const std::string added = base::ToText(args[1]);
        house.devices.putValues(device->ref, device->values.empty() ? added : device->values + '\1' + added);
      }));
  members.push_back(
      Action("SetDeviceStatus", {{"code", Type::kText}, {"status", Type::kInt16}}, [&house](Args& args) {
        const Device* device = ByAddress(house, args);
        if (device != nullptr) house.devices.put(device->ref, &Device::status, base::ToInt16(args[1]));
      }));
  members.push_back(Action("SetDeviceString", {{"code", Type::kText}, {"text", Type::kText}, kUpdate},
                           [&house](Args& args) {
                             const Device* device = ByAddress(house, args);
                             if (device != nullptr)
                               house.devices.put(device->ref, &Device::text, base::ToText(args[1]));
                           }));
  members.push_back(Action("SetDeviceStringByName", {{"name", Type::kText}, {"text", Type::kText}, kUpdate},
                           [&house](Args& args) {
                             const Device* device = ByName(house, args);
                             if (device != nullptr)
                               house.devices.put(device->ref, &Device::text, base::ToText(args[1]));
                           }));
  members.push_back(
      Action("SetDeviceValueByName", {{"name", Type::kText}, {"value", Type::kInt32}}, [&house](Args& args) {
        const Device* device = ByName(house, args);
        if (device != nullptr) house.devices.putValue(device->ref, base::ToInt32(args[1]));
      }));
  return members;
}

std::vector<Member> EventMembers(House& house, HouseObjects& objects) {
  return {
      {"GetEvent",
       MemberKind::kOperation,
       {{"index", Type::kInt32}},
       Type::kObject,
       [&objects](Args& args) { return Value(objects.event(base::ToInt32(args[0]))); }},
      {"GetEventEx",
       MemberKind::kOperation,
       {{"name", Type::kText}},
       Type::kObject,
       [&house, &objects](Args& args) {
         const Event* event = house.events.byName(base::ToText(args[0]));
         return Value(event == nullptr ? base::ObjectRef() : objects.event(event->id));
       }},
      {"NewEvent",
       MemberKind::kOperation,
       {{"name", Type::kText}},
       Type::kInt32,
       [&house, &objects](Args& args) {
         const std::int32_t id = house.events.create(base::ToText(args[0])).id;
         objects.event(id);
         return Value(id);
       }},
      {"NewDevFunc",
       MemberKind::kOperation,
       {},
       Type::kObject,
       [&objects](Args&) { return Value(objects.newDevFunc()); }},
  };
}

}  // namespace standin
