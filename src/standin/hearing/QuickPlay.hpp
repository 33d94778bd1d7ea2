#pragma once
#include <cstddef>
#include <optional>
#include <string>

#include "standin/grammar/Grammar.hpp"

namespace standin {

// What a quick-play device makes of a sentence: behind "play " it passes over the category's word, with one
// blank behind it, and plays the rest.

/// The category that a device plays from; the empty text for other devices.
std::string QuickCategory(const std::string& deviceName);
/// Where the name begins that the device plays; nothing where there is none.
std::optional<std::size_t> PlayedNameAt(const std::string& category, const std::string& command);
/// Whether the device is told to play, but not what.
bool PlaysNothing(const std::string& category, const std::string& command);
/// The sentence as the device is to hear it. Where the category's word was left out before a name that begins
/// so, as in "Play [Album] (Album 7)", it is put in: the device would take the name's own beginning for it.
std::string CommandFor(const std::string& category, const Said& said);

}  // namespace standin
