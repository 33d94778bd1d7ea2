#pragma once
#include <optional>
#include <string>

namespace desktop {

/// The name of the Qt platform that reaches the desktop this process was started on: "xcb", "wayland", or
/// none when there is no desktop. It is tried beforehand, because Qt ends the process when it finds none.
std::optional<std::string> ReachablePlatform();

}  // namespace desktop
