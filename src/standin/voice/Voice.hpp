#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "standin/house/House.hpp"

namespace standin {

/// What a spoken text asks for.
struct VoiceAct {
  std::vector<std::int32_t> refs;  ///< the devices that it is meant for; none when it was not understood
  std::string said;                ///< what is done, in words
  bool adds = false;               ///< what is playing to the player's own playlist
};

/// The phrases that the player acts on by itself, in the order in which it looks for them.
std::vector<std::string> PlayerPhrases();

/// The devices of the events whose pattern fits the text; where none does, the player's status device for a
/// phrase of the player's own.
VoiceAct ActOfVoice(const House& house, const std::string& text);

}  // namespace standin
