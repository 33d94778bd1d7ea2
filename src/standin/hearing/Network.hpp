#pragma once
#include "ear/SpeechNetwork.hpp"
#include "standin/grammar/Grammar.hpp"

namespace standin {

/// What a listener has to know of a grammar, and of the answers "first", "second", "third" and "no" to a
/// question: all that can be pronounced, which what is written with digits or foreign letters can't.
ear::SpeechNetwork NetworkOf(const Grammar& grammar);

}  // namespace standin
