#pragma once
#include "player/ByName.hpp"

namespace player {

// The library's part of the model. The collections must outlive the objects.

base::ObjectRef ShowByName(MediaCollection& collection);
base::ObjectRef ShowByName(PlaylistCollection& collection);
base::ObjectRef ShowByName(CdromCollection& collection);
base::ObjectRef ShowByName(const PlaylistArrayRef& playlists);
base::ObjectRef ShowByName(const StringCollectionRef& texts);

}  // namespace player
