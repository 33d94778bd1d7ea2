#pragma once
#include <string>
#include <vector>

#include "player/WMPCalls.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Neighbours.hpp"

namespace plugin {

/// The phrases in the order in which they are looked for.
std::vector<std::string> VoicePhrases();

/// Acts on the first phrase of the voice table that occurs anywhere in `command`, also inside a longer word.
/// Failures are skipped.
void ActOnVoiceCommand(const std::string& command, player::WMPCalls& calls, LibraryCalls& library,
                       HostServices& host);

/// Adds what was played last to the house's own playlist. Throws what the playlist throws.
base::Value AddToHousePlayList(LibraryCalls& library);

}  // namespace plugin
