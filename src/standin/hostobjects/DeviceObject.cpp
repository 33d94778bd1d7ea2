#include "standin/hostobjects/DeviceObject.hpp"

#include "base/Failure.hpp"
#include "standin/hostobjects/StoredFields.hpp"

namespace standin {
namespace {

using base::Args;
using base::MemberKind;
using base::Type;
using base::Value;

const Device& Need(const House& house, std::int32_t ref) {
  const Device* device = house.devices.byRef(ref);
  if (device == nullptr) throw base::Failure(base::number::kObjectMissing, "The device has been deleted");
  return *device;
}

base::MemberTable DeviceTable(House& house, std::int32_t ref) {
  const auto stored = [&house, ref](const char* name, auto field) {
    return StoredField(
        name, field, [&house, ref]() -> const Device& { return Need(house, ref); },
        [&house, ref](auto member, const auto& value) { house.devices.put(ref, member, value); });
  };
  return {"Device",
          {stored("location", &Device::location),
           stored("hc", &Device::hc),
           stored("dc", &Device::dc),
           stored("interface", &Device::interface),
           stored("iotype", &Device::iotype),
           stored("Status", &Device::status),
           stored("misc", &Device::misc),
           stored("dev_type_string", &Device::devType),
           {"Values",
            MemberKind::kField,
            {},
            Type::kText,
            [&house, ref](Args&) { return Value(Need(house, ref).values); },
            [&house, ref](const Value& value) { house.devices.putValues(ref, base::ToText(value)); }},
           {"ref",
            MemberKind::kReadField,
            {},
            Type::kInt32,
            [&house, ref](Args&) { return Value(Need(house, ref).ref); }},
           stored("name", &Device::name)}};
}

}  // namespace

DeviceObject::DeviceObject(House& house, std::int32_t ref) : TableObject(DeviceTable(house, ref)) {}

}  // namespace standin
