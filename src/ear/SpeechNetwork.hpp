#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace ear {

/// All sentences that a listener is to know, as words that lead from place to place. One leads nowhere back.
struct SpeechNetwork {
  static constexpr std::int32_t kNoWord = -1;
  struct Arc {
    std::uint32_t from = 0;
    std::uint32_t to = 0;
    std::int32_t word = kNoWord;  ///< index in `words`; a step that takes no word otherwise
    bool operator==(const Arc&) const = default;
  };
  /// How a word is written by those who have other letters: "Björk" for "bjork".
  struct Spelling {
    std::string word;
    std::string written;
    bool operator==(const Spelling&) const = default;
  };
  std::uint32_t places = 0;
  std::uint32_t start = 0;
  std::uint32_t end = 0;
  std::vector<Arc> arcs;
  std::vector<std::string> words;  ///< of the letters a to z alone
  std::vector<Spelling> spellings;
  bool operator==(const SpeechNetwork&) const = default;
};

/// Leaves what lies on a way from the start to the end, with as few steps without a word as that takes, and
/// numbers places and words anew. Places out of range are a mistake of the caller's.
void Prune(SpeechNetwork& network);

}  // namespace ear
