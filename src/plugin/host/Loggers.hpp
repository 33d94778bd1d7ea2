#pragma once
#include <cstdint>
#include <string>

#include "base/Platform.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/PluginState.hpp"

namespace plugin {

/// The plug-in's ways of telling the log about failures. None of them throws.
class Loggers {
 public:
  Loggers(HostServices& host, const PluginState& state, base::Platform& platform)
      : host_(host), state_(state), platform_(platform) {}

  /// Logger of `vxif`.
  void LogPluginError(std::int32_t number, const std::string& description, const std::string& procedure);
  /// Logger of the modules, such as "CommonModule".
  void LogModuleError(std::int32_t number, const std::string& description, const std::string& module,
                      const std::string& procedure);
  /// Logger of the player's form. A lost host (number 462, or a log call that fails) ends the process.
  void LogFormError(std::int32_t number, const std::string& description, const std::string& procedure);
  /// A line of type "Debug", written only while `DebugMessages` is true. Throws what the host throws.
  void Debug(const std::string& text);

 private:
  HostServices& host_;
  const PluginState& state_;
  base::Platform& platform_;
};

}  // namespace plugin
