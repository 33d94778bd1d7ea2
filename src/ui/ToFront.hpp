#pragma once
#include <cstdint>

#include "plugin/host/HostServices.hpp"

namespace ui {

/// Asks the host to bring a window to the foreground. A window without a handle, as on a machine without a
/// display, is nowhere. Throws what the host throws.
inline void ToFront(plugin::HostServices& host, std::int32_t handle) {
  if (handle != 0) host.forcefront(handle);
}

}  // namespace ui
