#include "standin/hearing/PlayerPhrases.hpp"

#include <algorithm>
#include <array>

#include "base/Text.hpp"
#include "standin/grammar/Grammar.hpp"

namespace standin {
namespace {

/// As the plug-in has them: the first one found counts, so those with "no" stand before the plain ones.
constexpr std::array kPlayerPhrases{
    PlayerPhrase{"stop", "Stopping"},
    PlayerPhrase{"resume", "Going on"},
    PlayerPhrase{"pause", "Pausing or going on"},
    PlayerPhrase{"next", "Going to the next title"},
    PlayerPhrase{"previous", "Going to the previous title"},
    PlayerPhrase{"restart", "Starting anew"},
    PlayerPhrase{"eject", "Opening the drive"},
    PlayerPhrase{"no loop", "Loop off"},
    PlayerPhrase{"loop", "Loop on"},
    PlayerPhrase{"unmute", "Sound on"},
    PlayerPhrase{"no mute", "Sound on"},
    PlayerPhrase{"mute", "Sound off"},
    PlayerPhrase{"no shuffle", "Shuffle off"},
    PlayerPhrase{"shuffle", "Shuffle on"},
    PlayerPhrase{"volume up", "Volume up"},
    PlayerPhrase{"volume down", "Volume down"},
    PlayerPhrase{"no display controls", "Hiding the player’s window"},
    PlayerPhrase{"display controls", "Showing the player’s window"},
    PlayerPhrase{"add to playlist", "Adding it to the playlist", true},
};

constexpr std::array kNamesFollow{"play album ", "play artist ", "play genre ", "play playlist ",
                                  "play play list "};

}  // namespace

std::vector<std::string> PlayerPhrases() {
  std::vector<std::string> phrases;
  phrases.reserve(kPlayerPhrases.size());
  for (const PlayerPhrase& each : kPlayerPhrases) phrases.emplace_back(each.phrase);
  return phrases;
}

const PlayerPhrase* PlayerPhraseIn(std::string_view text) {
  const std::string spoken = base::LowerCase(text);
  const auto* const found =
      std::find_if(kPlayerPhrases.begin(), kPlayerPhrases.end(),
                   [&](const PlayerPhrase& each) { return spoken.find(each.phrase) != std::string::npos; });
  return found == kPlayerPhrases.end() ? nullptr : found;
}

bool AsksForName(std::string_view text) {
  const std::string words = SaidWords(text);
  return std::any_of(kNamesFollow.begin(), kNamesFollow.end(),
                     [&](const char* each) { return words.starts_with(each); });
}

}  // namespace standin
