#include "automation/Devices.hpp"

#include <initializer_list>

#include "base/Attempt.hpp"
#include "base/Text.hpp"

namespace automation {

using base::Attempt;
using base::Deref;
using base::Failure;
using base::Value;

struct Devices::DeviceRow {
  std::int16_t code;
  std::int16_t misc;
  const char* name;
  std::initializer_list<const char*> buttons;
};

/// The devices that start-up makes. Codes are fixed: devices are recognised by code or full name.
const Devices::DeviceRow Devices::kDevices[] = {
    {1, 16, "Status", {"Pause", "Stop", "Next", "Prev", "Restart"}},
    {2, 16, "Title", {"Add to PlayList"}},
    {3, 16, "Album", {}},
    {4, 16, "Artist", {}},
    {5, 16, "Genre", {}},
    {6, 16, "Length", {}},
    {7, 24, "Loop Mode", {"Loop toggle"}},
    {8, 24, "Shuffle Mode", {"Shuffle toggle"}},
    {9, 24, "Mute", {"Mute toggle", "Vol Down", "Vol Up"}},
    {10, 24, "Display Controls", {"Show/Hide Controls"}},
};

namespace {

constexpr std::int16_t kIoType = 3;
constexpr std::int16_t kInitialStatus = 17;
constexpr const char* kNoCodeLeft = "Media Player Error: Sorry, all device codes used";

std::int32_t CodeOf(const std::string& houseCode) {
  if (houseCode.empty()) throw Failure(base::number::kInvalidArgument);
  return base::FirstCharacter(houseCode);
}

}  // namespace

std::int32_t Devices::houseCodeInUse() {
  const std::int32_t count = host_.DeviceCount();
  for (std::int32_t i = 1; i <= count; ++i) {
    const base::ObjectRef device = host_.GetDevice(i);
    if (base::ToText(Deref(device).get("interface")) == plugin::kName &&
        base::ToInt32(Deref(device).get("iotype")) == kIoType)
      return CodeOf(base::ToText(Deref(device).get("hc")));
  }
  return 0;
}

void Devices::create(const DeviceRow& row) {
  InitDevice(row.name, row.code, row.misc);
  for (const char* button : row.buttons) addButton(row, button);
}

void Devices::addButton(const DeviceRow& row, const char* button) {
  host_.DeviceButtonAdd(state_.HouseCode + std::to_string(row.code), plugin::kName, button);
}

void Devices::createStatus() {
  InitDevice(kDevices[0].name, kDevices[0].code, kDevices[0].misc);
  Attempt step;
  for (const char* button : kDevices[0].buttons) step([this, button] { addButton(kDevices[0], button); });
}

std::string Devices::CreateDevices() {
  std::string result = "Unknown Error in InitDevices";
  base::Handled(
      [&] {
        std::int32_t houseCode = 0;
        if (settings_.text("HouseCodeSet", "0") == "-1")
          host_.DeleteIODevices(plugin::kName);
        else
          houseCode = houseCodeInUse();

        // One device of ours is taken as proof of all of them: none is created and none repaired.
        const bool found = houseCode >= 1;
        if (!found) houseCode = host_.GetNextFreeIOCode();
        if (houseCode == -1) {
          result = kNoCodeLeft;
          platform_.messageBox(base::BoxKind::kCritical, plugin::kName, kNoCodeLeft);
          return;
        }
        state_.HouseCode = base::CharacterOf(houseCode);
        settings_.save("HouseCodeSet", static_cast<std::int16_t>(houseCode));
        if (!found)
          for (const DeviceRow& row : kDevices) create(row);
        result.clear();
      },
      [&](const Failure& failure) {
        loggers_.LogModuleError(failure.number(), failure.description(), "CommonModule", "CreateDevices");
      });
  return result;
}

Value Devices::InitDevice(const std::string& name, std::int16_t code, std::int16_t misc) {
  return base::Handled(
      [&] {
        Value ref = host_.NewDevice(name);
        const base::ObjectRef device = host_.GetDevice(ref);
        base::Object& fields = Deref(device);
        fields.put("location", plugin::kName);
        fields.put("hc", state_.HouseCode);
        fields.put("dc", code);
        fields.put("interface", plugin::kName);
        fields.put("Status", kInitialStatus);
        fields.put("misc", misc);
        fields.put("dev_type_string", plugin::kName);
        fields.put("iotype", kIoType);
        host_.SetDeviceString(state_.HouseCode + std::to_string(code), state_.AlbumIconTag, true);
        return ref;
      },
      // The caller goes on with its next device; the half-made one stays.
      [&](const Failure& failure) {
        loggers_.LogModuleError(failure.number(), failure.description(), "CommonModule", "InitDevice");
        return Value();
      });
}

}  // namespace automation
