#pragma once
#include <functional>

#include "mpris/PlayerObject.hpp"
#include "mpris/session/Table.hpp"

namespace mpris {

/// The desktop file's name without its ending, by which desktops find name and icon.
inline constexpr const char* kDesktopEntry = "vantorix-media-player";

/// `org.mpris.MediaPlayer2`: the program. `canRaise`: there is a window to bring to the front. The house ends
/// the player, and starts one that has ended anew; so a panel can't end it.
Interface RootTable(PlayerObject& player, const std::function<bool()>& canRaise);

}  // namespace mpris
