#include "standin/hostobjects/DeviceObject.hpp"

#include "standin/hostobjects/StoredFields.hpp"

namespace standin {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

namespace {

MemberTable DeviceTable(House& house, std::int32_t ref) {
  const auto row = [&house, ref]() -> const Device& {
    return Present(house.devices.byRef(ref), "The device has been deleted");
  };
  const auto stored = [&house, ref, row](const char* name, auto field) {
    return StoredField(name, field, row, [&house, ref](auto member, const auto& value) {
      house.devices.put(ref, member, value);
    });
  };
  return {"Device",
          {stored("location", &Device::location), stored("hc", &Device::hc), stored("dc", &Device::dc),
           stored("interface", &Device::interface), stored("iotype", &Device::iotype),
           stored("Status", &Device::status), stored("misc", &Device::misc),
           stored("dev_type_string", &Device::devType),
           Field(
               "Values", Type::kText, [row] { return row().values; },
               [&house, ref](const Value& value) { house.devices.putValues(ref, base::ToText(value)); }),
           ReadField("ref", Type::kInt32, [row] { return row().ref; }), stored("name", &Device::name)}};
}

}  // namespace

DeviceObject::DeviceObject(House& house, std::int32_t ref) : TableObject(DeviceTable(house, ref)) {}

}  // namespace standin
