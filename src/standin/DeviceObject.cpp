#include "standin/DeviceObject.hpp"

#include "base/Failure.hpp"

namespace standin {
namespace {

using base::Args;
using base::Member;
using base::MemberKind;
using base::Type;
using base::Value;

const Device& need(const House& house, std::int32_t ref) {
  const Device* device = house.devices.byRef(ref);
  if (device == nullptr) throw base::Failure(base::number::kObjectMissing, "The device has been deleted");
  return *device;
}

Member text(House& house, std::int32_t ref, std::string name, std::string Device::*field) {
  return {std::move(name),
          MemberKind::kField,
          {},
          Type::kText,
          [&house, ref, field](Args&) { return Value(need(house, ref).*field); },
          [&house, ref, field](const Value& value) { house.devices.put(ref, field, base::ToText(value)); }};
}

Member number(House& house, std::int32_t ref, std::string name, std::int16_t Device::*field) {
  return {std::move(name),
          MemberKind::kField,
          {},
          Type::kInt16,
          [&house, ref, field](Args&) { return Value(need(house, ref).*field); },
          [&house, ref, field](const Value& value) { house.devices.put(ref, field, base::ToInt16(value)); }};
}

base::MemberTable table(House& house, std::int32_t ref) {
  return {"Device",
          {text(house, ref, "location", &Device::location),
           text(house, ref, "hc", &Device::hc),
           text(house, ref, "dc", &Device::dc),
           text(house, ref, "interface", &Device::interface),
           number(house, ref, "iotype", &Device::iotype),
           number(house, ref, "Status", &Device::status),
           number(house, ref, "misc", &Device::misc),
           text(house, ref, "dev_type_string", &Device::devType),
           {"Values",
            MemberKind::kField,
            {},
            Type::kText,
            [&house, ref](Args&) { return Value(need(house, ref).values); },
            [&house, ref](const Value& value) { house.devices.putValues(ref, base::ToText(value)); }},
           {"ref",
            MemberKind::kReadField,
            {},
            Type::kInt32,
            [&house, ref](Args&) { return Value(need(house, ref).ref); }},
           text(house, ref, "name", &Device::name)}};
}

}  // namespace

DeviceObject::DeviceObject(House& house, std::int32_t ref) : TableObject(table(house, ref)) {}

}  // namespace standin
