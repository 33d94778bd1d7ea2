#pragma once
#include <cstdint>
#include <string>

#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/house/House.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// What a device can be told, by pages and events alike, as a command for the plug-in. Throws number 53 for a
/// device or a button that isn't there, and 5 for a value out of range.
class DeviceCommands {
 public:
  DeviceCommands(House& house, HouseObjects& objects) : house_(house), objects_(objects) {}

  /// One of the device's own buttons.
  [[nodiscard]] PluginKeeper::Command press(std::int32_t ref, const std::string& caption) const;
  [[nodiscard]] PluginKeeper::Command turn(std::int32_t ref, bool on) const;
  /// 0 to 32,767. The device shows it before the plug-in has heard of it.
  [[nodiscard]] PluginKeeper::Command set(std::int32_t ref, std::int64_t value) const;

 private:
  [[nodiscard]] const Device& need(std::int32_t ref) const;
  [[nodiscard]] PluginKeeper::Command setIo(const Device& device, std::int16_t command,
                                            std::int16_t brightness) const;

  House& house_;
  HouseObjects& objects_;
};

}  // namespace standin
