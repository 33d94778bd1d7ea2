#include "standin/player/DeviceCommands.hpp"

#include <algorithm>
#include <limits>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr std::int16_t kCommandOn = 2;
constexpr std::int16_t kCommandOff = 3;
constexpr std::int16_t kCommandValue = 19;

}  // namespace

PluginKeeper::Command DeviceCommands::press(std::int32_t ref, const std::string& caption) const {
  const Device* device = house_.devices.byRef(ref);
  const bool known =
      device != nullptr && std::any_of(device->buttons.begin(), device->buttons.end(),
                                       [&](const DeviceButton& each) { return each.caption == caption; });
  if (!known) throw base::Failure(base::number::kFileNotFound, "The device has no such button");
  return [caption](base::Object& vxif) { vxif.invoke("ButtonPress", caption); };
}

PluginKeeper::Command DeviceCommands::turn(std::int32_t ref, bool on) const {
  return setIo(need(ref), on ? kCommandOn : kCommandOff, 0);
}

PluginKeeper::Command DeviceCommands::set(std::int32_t ref, std::int64_t value) const {
  const Device& device = need(ref);
  if (value < 0 || value > std::numeric_limits<std::int16_t>::max())
    throw base::Failure(base::number::kInvalidArgument, "The value is out of range");
  house_.devices.putValue(ref, static_cast<std::int32_t>(value));
  return setIo(device, kCommandValue, static_cast<std::int16_t>(value));
}

const Device& DeviceCommands::need(std::int32_t ref) const {
  const Device* device = house_.devices.byRef(ref);
  if (device == nullptr) throw base::Failure(base::number::kFileNotFound, "There is no such device");
  return *device;
}

PluginKeeper::Command DeviceCommands::setIo(const Device& device, std::int16_t command,
                                            std::int16_t brightness) const {
  return [object = objects_.device(device.ref), hc = device.hc, dc = device.dc, command,
          brightness](base::Object& vxif) {
    vxif.invoke("SetIO", object, hc, dc, command, brightness, std::int16_t{0}, std::int16_t{0});
  };
}

}  // namespace standin
