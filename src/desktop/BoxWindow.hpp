#pragma once
#include <string>

#include "base/Platform.hpp"
#include "desktop/QtWindows.hpp"

namespace desktop {

/// Shows a message with an OK button and waits until it is pressed, or Escape, or the window is closed. Calls
/// on the bus, timers and other windows' drawing go on. False when the desktop went before it was read.
bool ShowBox(QtWindows& windows, base::BoxKind kind, const std::string& title, const std::string& text);

}  // namespace desktop
