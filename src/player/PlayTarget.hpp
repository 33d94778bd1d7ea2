#pragma once
#include <string>

#include "player/WMP9.hpp"

namespace player {

/// What the last play request chose.
struct PlayTarget {
  PlaylistRef PlayTargetPlayList;  ///< the group that was looked up, or nothing
  MediaRef PlayTargetMedia;        ///< the item that was looked up, or nothing
  std::string PlayTargetURL;       ///< the address of a "URL" request, else empty
  /// The address that was started last, also that of a single title of the library. Requests do not reset it.
  std::string CurrentSourceURL;
};

}  // namespace player
