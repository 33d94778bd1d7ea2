#pragma once
#include <string>

#include "plugin/host/HostServices.hpp"

namespace pages {

/// Tells the log of a posted argument that a page doesn't have. Throws what the host throws.
inline void LogUnknownArgument(plugin::HostServices& host, const std::string& name,
                               const std::string& value) {
  host.WriteLog("Error", "Media Player Unknown argument submitted to web server: " + name + "=" + value);
}

}  // namespace pages
