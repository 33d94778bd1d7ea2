#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/house/House.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// What a device can be told, by pages and events alike. The plug-in's devices, by their interface, are told
/// by a command for the plug-in; every other one is set by the house itself. As long as the plug-in has not
/// told its name, only a device without an interface is known not to be its own. Throws number 53 for a
/// device or a button that isn't there, and 5 for a value out of range.
class DeviceCommands {
 public:
  DeviceCommands(House& house, HouseObjects& objects, const PluginKeeper& plugin)
      : house_(house), objects_(objects), plugin_(plugin) {}

  /// One of the device's own buttons. Throws number 53 for one of another device than the plug-in's, too:
  /// there is nobody who would hear of it.
  [[nodiscard]] PluginKeeper::Command press(std::int32_t ref, const std::string& caption) const;
  /// Nothing when the house has done it: the device is on or off now.
  [[nodiscard]] std::optional<PluginKeeper::Command> turn(std::int32_t ref, bool on) const;
  /// 0 to 32,767. Nothing when the house has done it. Throws number 53 for a value that is not among those
  /// that the plug-in has named, where it has named any. `name`, where given, is what the value was chosen
  /// by: where it means something else by then, now or when the command's turn comes, that is number 3197.
  [[nodiscard]] std::optional<PluginKeeper::Command> set(
      std::int32_t ref, std::int64_t value, const std::optional<std::string>& name = std::nullopt) const;
  /// Whether the plug-in is the one to tell.
  [[nodiscard]] bool isOfPlugin(const Device& device) const;

 private:
  [[nodiscard]] const Device& need(std::int32_t ref) const;
  [[nodiscard]] PluginKeeper::Command setIo(const Device& device, std::int16_t command,
                                            std::int16_t brightness) const;

  House& house_;
  HouseObjects& objects_;
  const PluginKeeper& plugin_;
};

}  // namespace standin
