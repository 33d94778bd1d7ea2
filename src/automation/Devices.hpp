#pragma once
#include <cstdint>
#include <string>

#include "base/Platform.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"
#include "plugin/host/PluginState.hpp"
#include "plugin/host/Settings.hpp"

namespace automation {

/// The plug-in's devices in the host: ten made at start-up, four quick-play ones made on demand.
class Devices {
 public:
  Devices(plugin::HostServices& host, plugin::Settings& settings, plugin::Loggers& loggers,
          plugin::PluginState& state, base::Platform& platform)
      : host_(host), settings_(settings), loggers_(loggers), state_(state), platform_(platform) {}

  /// Finds the devices of an earlier run, or makes them on a free house code. Sets `HouseCode`. Answers the
  /// empty text, or why there are none. Never throws.
  std::string CreateDevices();
  /// Makes one device. Answers what the host's `NewDevice` returned, or empty after a failure, which is
  /// logged. `code` is the device's number within the house code, `misc` the host's mask. Never throws.
  base::Value InitDevice(const std::string& name, std::int16_t code, std::int16_t misc);
  /// Makes the device "Status" with its buttons, in the place of one that a user has deleted. A button that
  /// can't be added is left out. Never throws.
  void createStatus();

 private:
  struct DeviceRow;
  static const DeviceRow kDevices[];

  std::int32_t houseCodeInUse();
  void create(const DeviceRow& row);
  void addButton(const DeviceRow& row, const char* button);

  plugin::HostServices& host_;
  plugin::Settings& settings_;
  plugin::Loggers& loggers_;
  plugin::PluginState& state_;
  base::Platform& platform_;
};

}  // namespace automation
