#include "standin/voice/Voice.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Text.hpp"
#include "standin/voice/VoicePattern.hpp"

namespace standin {
namespace {

/// A phrase that the player acts on wherever it stands in a text, and what it does.
struct PlayerPhrase {
  const char* phrase;
  const char* said;
  bool adds = false;
};

/// As the plug-in has them: the first one found counts, so those with "no" stand before the plain ones.
constexpr std::array kPlayerPhrases{
    PlayerPhrase{"stop", "Stop"},
    PlayerPhrase{"resume", "Resume"},
    PlayerPhrase{"pause", "Pause or resume"},
    PlayerPhrase{"next", "Next title"},
    PlayerPhrase{"previous", "Previous title"},
    PlayerPhrase{"restart", "Restart"},
    PlayerPhrase{"eject", "Eject"},
    PlayerPhrase{"no loop", "Loop off"},
    PlayerPhrase{"loop", "Loop on"},
    PlayerPhrase{"unmute", "Sound on"},
    PlayerPhrase{"no mute", "Sound on"},
    PlayerPhrase{"mute", "Mute"},
    PlayerPhrase{"no shuffle", "Shuffle off"},
    PlayerPhrase{"shuffle", "Shuffle on"},
    PlayerPhrase{"volume up", "Volume up"},
    PlayerPhrase{"volume down", "Volume down"},
    PlayerPhrase{"no display controls", "Player window hidden"},
    PlayerPhrase{"display controls", "Player window shown"},
    PlayerPhrase{"add to playlist", "Add to the playlist", true},
};

}  // namespace

std::vector<std::string> PlayerPhrases() {
  std::vector<std::string> phrases;
  phrases.reserve(kPlayerPhrases.size());
  for (const PlayerPhrase& each : kPlayerPhrases) phrases.emplace_back(each.phrase);
  return phrases;
}

VoiceAct ActOfVoice(const House& house, const std::string& text) {
  VoiceAct act;
  for (const auto& [id, event] : house.events.all()) {
    if (event.vcmd.empty() || !VoicePattern(event.vcmd).fits(text)) continue;
    bool meant = false;
    for (const EventDevice& entry : event.devices) {
      if (entry.func != kFuncVoice || house.devices.byRef(entry.devid) == nullptr) continue;
      meant = true;
      if (std::find(act.refs.begin(), act.refs.end(), entry.devid) == act.refs.end())
        act.refs.push_back(entry.devid);
    }
    if (meant) act.said += (act.said.empty() ? "" : ", ") + event.name;
  }
  if (!act.refs.empty()) return act;
  const std::string spoken = base::LowerCase(text);
  const auto* const found =
      std::find_if(kPlayerPhrases.begin(), kPlayerPhrases.end(),
                   [&](const PlayerPhrase& each) { return spoken.find(each.phrase) != std::string::npos; });
  const Device* status = house.devices.byFullName("Media Player Status");
  if (found == kPlayerPhrases.end() || status == nullptr) return act;
  return {{status->ref}, found->said, found->adds};
}

}  // namespace standin
