#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// A phrase that the player acts on wherever it stands in a text, and what it does.
struct PlayerPhrase {
  const char* phrase;
  const char* done;   ///< in words
  bool adds = false;  ///< what is playing to the player's own playlist
};

/// The phrases in the order in which the player looks for them.
std::vector<std::string> PlayerPhrases();
/// The first phrase that stands in the text, without regard to case; null where none does.
const PlayerPhrase* PlayerPhraseIn(std::string_view text);
/// Whether the text names a category of the library and something in it, as "play album stop" does: no phrase
/// in it is meant for the player.
bool AsksForName(std::string_view text);

}  // namespace standin
