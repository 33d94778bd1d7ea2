#pragma once
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// A sentence as somebody says it, and the command it stands for; no command for one that the house is not
/// to understand.
struct Sentence {
  std::string said;
  std::string command{};
};

/// What can be said, and what is. Two corpora share no name, no sentence from outside and no voice, so that
/// what was found with one can be tried with the other.
struct Corpus {
  std::vector<std::string> patterns;
  std::vector<Sentence> inside;
  std::vector<Sentence> outside;
};

enum class Which { kTuning, kHeldOut };

/// A house with so many albums, half as many artists, and a few playlists and genres. At most `sentences`
/// from inside; the same for the same arguments on every machine.
Corpus CorpusOf(Which which, std::size_t albums, std::size_t sentences);

}  // namespace bench
