#pragma once
#include "base/Object.hpp"
#include "player/WMP9.hpp"

namespace player {

// The player's object model for callers by name, such as the house's scripts: every class is an object whose
// operations and fields bear the model's own names. What a call answers is shown in the same way, and what
// was shown so can be handed back as an argument.

/// `control` must outlive the object.
base::ObjectRef ShowByName(WMP9& control);
/// Nothing stays nothing.
base::ObjectRef ShowByName(const MediaRef& media);
base::ObjectRef ShowByName(const PlaylistRef& playlist);

/// The media or playlist behind an object that was shown; nothing for nothing. Throw number 13 for an object
/// that is none.
MediaRef MediaBehind(const base::Value& value);
PlaylistRef PlaylistBehind(const base::Value& value);

}  // namespace player
