#pragma once
#include <string>

#include "engine/card/GraphicsCard.hpp"
#include "engine/common/Config.hpp"

namespace engine {

/// Where the machine has what it takes to use a card.
struct CardPlaces {
  std::string nodes = "/dev/dri";       ///< with a file "renderD..." a card that can draw without a display
  std::string library = "libEGL.so.1";  ///< what finds the card's driver
};

/// Drivers keep what they compile in the user's own cache, where nothing of the house belongs: not those that
/// are loaded from now on. Only while one thread runs.
void KeepDriversOffTheDisk();

/// How cards are opened, for all who draw. Empty where none is to be used: so nothing is loaded for
/// `Graphics::kAuto` on a machine without one. What couldn't be opened once isn't tried again, nor is a
/// driver asked a second time that hasn't answered yet.
OpenCard CardOpener(Graphics choice, const CardPlaces& places = {});

}  // namespace engine
