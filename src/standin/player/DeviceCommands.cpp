#include "standin/player/DeviceCommands.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/house/ValueTable.hpp"

namespace standin {
namespace {

constexpr std::int16_t kCommandOn = 2;
constexpr std::int16_t kCommandOff = 3;
constexpr std::int16_t kCommandValue = 19;

/// A name is known to pages as JSON, which tells texts that aren't UTF-8 in its own way.
void CheckName(const Device& device, std::int32_t value, const std::optional<std::string>& name) {
  if (!name) return;
  const std::optional<std::string_view> now = NameOfValue(device.values, value);
  if (!now || Dump(std::string(*now)) != Dump(*name))
    throw base::Failure(base::number::kChangedMeanwhile, "The list has changed meanwhile. Choose again");
}

}  // namespace

PluginKeeper::Command DeviceCommands::press(std::int32_t ref, const std::string& caption) const {
  const Device* device = house_.devices.byRef(ref);
  const bool known =
      device != nullptr && std::any_of(device->buttons.begin(), device->buttons.end(),
                                       [&](const DeviceButton& each) { return each.caption == caption; });
  if (!known) throw base::Failure(base::number::kFileNotFound, "The device has no such button");
  if (!isOfPlugin(*device))
    throw base::Failure(base::number::kFileNotFound, "Nobody answers the buttons of that device");
  return [caption](base::Object& vxif) { vxif.invoke("ButtonPress", caption); };
}

std::optional<PluginKeeper::Command> DeviceCommands::turn(std::int32_t ref, bool on) const {
  const Device& device = need(ref);
  if (isOfPlugin(device)) return setIo(device, on ? kCommandOn : kCommandOff, 0);
  house_.devices.put(ref, &Device::status, on ? kStatusOn : kStatusOff);
  return std::nullopt;
}

std::optional<PluginKeeper::Command> DeviceCommands::set(std::int32_t ref, std::int64_t value,
                                                         const std::optional<std::string>& name) const {
  const Device& device = need(ref);
  if (value < 0 || value > std::numeric_limits<std::int16_t>::max())
    throw base::Failure(base::number::kInvalidArgument, "The value is out of range");
  const auto wanted = static_cast<std::int32_t>(value);
  CheckName(device, wanted, name);
  if (!isOfPlugin(device)) {
    house_.devices.putValue(ref, wanted);
    return std::nullopt;
  }
  if (!device.values.empty() && !NameOfValue(device.values, wanted))
    throw base::Failure(base::number::kFileNotFound, "The device has no such value");
  PluginKeeper::Command command = setIo(device, kCommandValue, static_cast<std::int16_t>(value));
  // The device shows it before the plug-in hears of it, which may set it back itself when it has acted.
  return [&devices = house_.devices, ref, wanted, name, tell = std::move(command)](base::Object& vxif) {
    const Device* before = devices.byRef(ref);
    if (before == nullptr) throw base::Failure(base::number::kFileNotFound, "The device has been deleted");
    CheckName(*before, wanted, name);
    const std::int32_t old = before->value;
    devices.putValue(ref, wanted);
    try {
      tell(vxif);
    } catch (...) {
      const Device* now = devices.byRef(ref);
      if (now != nullptr && now->value == wanted) devices.putValue(ref, old);
      throw;
    }
  };
}

const Device& DeviceCommands::need(std::int32_t ref) const {
  const Device* device = house_.devices.byRef(ref);
  if (device == nullptr) throw base::Failure(base::number::kFileNotFound, "There is no such device");
  return *device;
}

bool DeviceCommands::isOfPlugin(const Device& device) const {
  if (device.interface.empty()) return false;
  return plugin_.name().empty() || base::SameText(device.interface, plugin_.name());
}

PluginKeeper::Command DeviceCommands::setIo(const Device& device, std::int16_t command,
                                            std::int16_t brightness) const {
  return [object = objects_.device(device.ref), hc = device.hc, dc = device.dc, command,
          brightness](base::Object& vxif) {
    vxif.invoke("SetIO", object, hc, dc, command, brightness, std::int16_t{0}, std::int16_t{0});
  };
}

}  // namespace standin
