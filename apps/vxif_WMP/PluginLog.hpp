#pragma once
#include <cstdio>
#include <string>

#include "base/Attempt.hpp"
#include "plugin/host/HostServices.hpp"

/// Where the plug-in says what there is no window for: in the house's log, and on the standard error stream
/// as long as there is no house.
class PluginLog {
 public:
  /// Known once the plug-in stands.
  void connect(plugin::HostServices& host) { host_ = &host; }

  void warn(const std::string& line) const {
    base::Attempt step;
    const bool told = host_ != nullptr && step([&] { host_->WriteLog("Warning", line); });
    if (!told) std::fprintf(stderr, "%s\n", line.c_str());
  }

 private:
  plugin::HostServices* host_ = nullptr;
};
