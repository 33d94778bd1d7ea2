#include "standin/hostobjects/HostDevices.hpp"

#include <charconv>
#include <utility>

#include "base/MemberWords.hpp"

namespace standin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

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

const Device* ByAddress(const House& house, const Args& args) {
  return house.devices.byAddress(TextAt(args, 0));
}

const Device* ByName(const House& house, const Args& args) {
  return house.devices.byFullName(TextAt(args, 0));
}

base::ObjectRef ObjectOf(HouseObjects& objects, const Device* device) {
  return device == nullptr ? base::ObjectRef() : objects.device(device->ref);
}

std::vector<Member> Lookups(House& house, HouseObjects& objects) {
  return {
      Operation("DeviceCount", {}, Type::kInt32,
                [&house] { return static_cast<std::int32_t>(house.devices.all().size()); }),
      Operation("GetDevice", {Any("key")}, Type::kObject,
                [&house, &objects](Args& args) { return ObjectOf(objects, ByKey(house, args[0])); }),
      Operation("GetDeviceEx", {Text("name")}, Type::kObject,
                [&house, &objects](Args& args) { return ObjectOf(objects, ByName(house, args)); }),
      Operation("GetDeviceCode", {Text("name")}, Type::kText,
                [&house](Args& args) {
                  const Device* device = ByName(house, args);
                  return device == nullptr ? std::string() : device->address();
                }),
      Operation("NewDevice", {Text("name")}, Type::kText,
                [&house, &objects](Args& args) {
                  const Device& device = house.devices.create(TextAt(args, 0));
                  objects.device(device.ref);
                  return KeyOf(device);
                }),
  };
}

/// An operation on the device that `find` sees in its arguments; without such a device it does nothing.
template <class Act>
Member OnDevice(House& house, const char* name, std::vector<Param> params,
                const Device* (*find)(const House&, const Args&), Act act) {
  return Command(name, std::move(params), [&house, find, act](Args& args) {
    if (const Device* device = find(house, args)) act(*device, args);
  });
}

std::vector<Member> Changes(House& house) {
  DeviceStore& devices = house.devices;
  const auto putText = [&devices](const Device& device, const Args& args) {
    devices.put(device.ref, &Device::text, TextAt(args, 1));
  };
  return {
      Command("DeleteIODevices", {Text("interface")},
              [&devices](Args& args) { devices.removeInterface(TextAt(args, 0)); }),
      OnDevice(house, "DeviceButtonAdd", {Text("code"), Text("interface"), Text("caption")}, ByAddress,
               [&devices](const Device& device, const Args& args) {
                 devices.addButton(device.ref, TextAt(args, 1), TextAt(args, 2));
               }),
      OnDevice(house, "DeviceValuesAdd", {Text("code"), Text("values"), Flag("flag", true)}, ByAddress,
               [&devices](const Device& device, const Args& args) {
                 const std::string added = TextAt(args, 1);
                 devices.putValues(device.ref, device.values.empty() ? added : device.values + '\1' + added);
               }),
      OnDevice(house, "SetDeviceStatus", {Text("code"), Short("status")}, ByAddress,
               [&devices](const Device& device, const Args& args) {
                 devices.put(device.ref, &Device::status, ShortAt(args, 1));
               }),
      OnDevice(house, "SetDeviceString", {Text("code"), Text("text"), Flag("update", true)}, ByAddress,
               putText),
      OnDevice(house, "SetDeviceStringByName", {Text("name"), Text("text"), Flag("update", true)}, ByName,
               putText),
      OnDevice(house, "SetDeviceValueByName", {Text("name"), Number("value")}, ByName,
               [&devices](const Device& device, const Args& args) {
                 devices.putValue(device.ref, NumberAt(args, 1));
               }),
  };
}

}  // namespace

std::vector<Member> DeviceMembers(House& house, HouseObjects& objects) {
  return Joined(Lookups(house, objects), Changes(house));
}

std::vector<Member> EventMembers(House& house, HouseObjects& objects) {
  return {
      Operation("GetEvent", {Number("index")}, Type::kObject,
                [&objects](Args& args) { return objects.event(NumberAt(args, 0)); }),
      Operation("GetEventEx", {Text("name")}, Type::kObject,
                [&house, &objects](Args& args) {
                  const Event* event = house.events.byName(TextAt(args, 0));
                  return event == nullptr ? base::ObjectRef() : objects.event(event->id);
                }),
      Operation("NewEvent", {Text("name")}, Type::kInt32,
                [&house, &objects](Args& args) {
                  const std::int32_t id = house.events.create(TextAt(args, 0)).id;
                  objects.event(id);
                  return id;
                }),
      Operation("NewDevFunc", {}, Type::kObject, [&objects] { return objects.newDevFunc(); }),
  };
}

}  // namespace standin
