#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "standin/grammar/Pattern.hpp"
#include "standin/grammar/WordGraph.hpp"

namespace standin {

/// The spellings of a name that stands in a pattern in an impoverished form: "Björk" for "Bj rk". May be
/// none.
using Spellings = std::function<std::vector<std::string>(const std::string& words)>;

/// A sentence of a pattern, found in what was said.
struct Said {
  std::int32_t event = 0;
  std::string command;  ///< in the pattern's own words
  std::string whole;    ///< with the optional words that were left out
  int distance = 0;     ///< how many words were said in another way than they are written
  bool operator==(const Said&) const = default;
};

/// The patterns of all events as one graph of words, in which every name is entered in all ways in which it
/// is said, as long as there is room for them. Building takes time by the length of the patterns, and memory
/// by that and `kMostArcs`; finding a sentence takes time by its own length. Nothing of it changes later, so
/// that any thread may ask.
class Grammar {
 public:
  /// With so many ways from word to word, a name is only entered as it is written and as it is said first.
  static constexpr std::size_t kMostArcs = 1'000'000;
  /// Of a pattern in which more can be left out at once than this, such as ten thousand optional words in a
  /// row, nothing is found.
  static constexpr std::size_t kMostReached = 10'000;

  struct Source {
    std::int32_t event = 0;
    const Pattern& pattern;
  };
  Grammar(const std::vector<Source>& sources, const Spellings& spellings);

  /// All sentences that the text is, the nearest first and no two the same; none where it is no sentence.
  [[nodiscard]] std::vector<Said> match(std::string_view text) const;
  /// Sentences that the text may have been meant for, the likeliest first: with a name that is written nearly
  /// so, or that holds what was said. Takes time by the number of names and the length of the text.
  [[nodiscard]] std::vector<Said> near(std::string_view text, std::size_t most) const;

  [[nodiscard]] const WordGraph& graph() const { return graph_; }
  [[nodiscard]] const std::vector<WordGraph::Place>& starts() const { return starts_; }
  /// The places where a sentence may end, with its event.
  [[nodiscard]] const std::vector<std::pair<WordGraph::Place, std::int32_t>>& ends() const { return ends_; }
  /// Words behind which another spelling stands, with letters that English doesn't have: "bjork" and "Björk",
  /// each pair once, in the order of the words. The first `kMostForeign`.
  static constexpr std::size_t kMostForeign = 5000;
  [[nodiscard]] const std::set<std::pair<std::string, std::string>>& foreign() const { return foreign_; }
  /// How many names of an event have ways to say them for which there was no room.
  [[nodiscard]] std::size_t asWritten(std::int32_t event) const;

 private:
  using Place = WordGraph::Place;
  /// What a step tells.
  struct Output {
    std::string words;
    bool leftOut = false;
  };
  /// A choice between names: where it begins and ends, and how each is spelt.
  struct Spelt {
    std::uint32_t output = 0;
    std::string words;  ///< as they are compared
  };
  struct Names {
    Place from = 0;
    Place to = 0;
    std::vector<Spelt> all;
  };
  class Walk;
  /// A name that the end of a text is near to, where the text before it leads.
  struct NearName {
    int distance = 0;
    std::uint32_t output = 0;
    std::size_t names = 0;
    std::size_t walk = 0;
    std::uint32_t trace = 0;
  };

  Place enter(const Pattern::Sequence& sequence, Place from);
  Place enterBracket(const Pattern::Part& part, Place from);
  void enterWords(const std::string& words, Place from, Place to);
  [[nodiscard]] std::vector<std::string> spellingsOf(const std::string& words) const;
  void addName(const std::string& words, Names& names);
  /// False where there was no room for all of them.
  bool enterForms(const std::string& spelling, const WordGraph::Step& step);
  std::uint32_t outputOf(const std::string& words, bool leftOut);
  void findWaysOut();
  [[nodiscard]] Said sentence(const Walk& walk, const NearName& found) const;

  const Spellings* spellings_ = nullptr;  ///< while it is built
  std::int32_t event_ = 0;                ///< whose pattern is entered, while it is built
  bool full_ = false;                     ///< it takes no other ways than the written one
  std::map<std::int32_t, std::size_t> asWritten_;
  std::set<std::pair<std::string, std::string>> foreign_;
  WordGraph graph_;
  std::vector<Output> outputs_;
  std::unordered_map<std::string, std::uint32_t> outputNumbers_;
  std::vector<Place> starts_;
  std::vector<std::pair<Place, std::int32_t>> ends_;
  std::unordered_multimap<Place, std::size_t> endsAt_;
  std::vector<Names> names_;
  std::unordered_multimap<Place, std::size_t> namesAt_;
  /// By place, the step of the shortest way to an end that takes no word; `kNoWayOut` where there is none.
  std::vector<std::uint32_t> waysOut_;
};

/// What was said as it is compared: its words with one blank between them.
std::string SaidWords(std::string_view text);

}  // namespace standin
