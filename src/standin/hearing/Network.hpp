#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "ear/SpeechNetwork.hpp"
#include "standin/grammar/Grammar.hpp"

namespace standin {

/// What a listener has to know of a grammar.
struct Audible {
  ear::SpeechNetwork network;
  std::vector<std::int32_t> leftOut;              ///< events for which there was no room
  std::vector<std::int32_t> inOneWay;             ///< those for whose names there was room once each
  std::map<std::int32_t, std::size_t> unsayable;  ///< by event, how many of its names can't be pronounced
};

/// How much a listener can learn in a time that somebody waits for.
struct AudibleLimits {
  std::size_t arcs = 250'000;  ///< ways from place to place
  /// Pairs of places with a way between them that takes no word: where much can be left out in a row, there
  /// is one for every two.
  std::size_t wordless = 20'000;
};

/// Of the grammar, and of the answers "first", "second", "third", "yes" and "no" to a question, all that can
/// be pronounced: what is written with digits or foreign letters or in more than 32 letters can't. The
/// smallest events come first. One that doesn't find room is entered with one way for each name, the first
/// that can be said, and left out where there is no room for that either.
Audible AudibleOf(const Grammar& grammar, const AudibleLimits& limits = {});
/// The network alone.
inline ear::SpeechNetwork NetworkOf(const Grammar& grammar) { return AudibleOf(grammar).network; }

}  // namespace standin
