#pragma once
#include <functional>
#include <memory>
#include <string>

#include "desktop/loader/Windows.hpp"

namespace desktop {

/// Loads the windows, with all that they take, from the module beside this program, and only where there is a
/// desktop: they take half as much memory again as everything else. `picture` is what the player shows, and
/// outlives them; null for nothing. `gone` is called on the loop when the desktop goes. Nothing when there is
/// no desktop; what else may be the reason is given to `tell`.
std::unique_ptr<Windows> LoadWindows(bus::PollLoop& loop, base::MovingPicture* picture,
                                     const std::function<void()>& gone,
                                     const std::function<void(const std::string&)>& tell);

/// The module's one entry, of this name and type. Takes its parts over and answers null when it can't show
/// windows on that display.
inline constexpr const char* kOpenWindows = "vantorix_open_windows";
using OpenWindows = Windows* (*)(WindowsParts* parts);

}  // namespace desktop
