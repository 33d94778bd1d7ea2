#include "standin/hearing/Network.hpp"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace standin {
namespace {

using ear::SpeechNetwork;

constexpr std::size_t kLongestWord = 32;

bool IsSayable(const std::string& word) {
  return word.size() <= kLongestWord &&
         std::all_of(word.begin(), word.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

/// Adds each word once.
class Words {
 public:
  explicit Words(SpeechNetwork& network) : network_(network) {}
  std::int32_t numberOf(const std::string& word) {
    const auto [at, isNew] = numbers_.try_emplace(word, static_cast<std::int32_t>(network_.words.size()));
    if (isNew) network_.words.push_back(word);
    return at->second;
  }

 private:
  SpeechNetwork& network_;
  std::unordered_map<std::string, std::int32_t> numbers_;
};

/// One network for each event, as far as it can be said. The places of an event stand behind each other.
std::vector<SpeechNetwork> NetworksOf(const Grammar& grammar) {
  const WordGraph& graph = grammar.graph();
  std::vector<SpeechNetwork> networks;
  auto arc = graph.arcs().begin();
  auto step = graph.steps().begin();
  for (std::size_t i = 0; i < grammar.starts().size(); ++i) {
    const WordGraph::Place first = grammar.starts()[i];
    const WordGraph::Place behind =
        i + 1 < grammar.starts().size() ? grammar.starts()[i + 1] : graph.places();
    SpeechNetwork& network = networks.emplace_back();
    network.places = behind - first;
    network.end = grammar.ends()[i].first - first;
    Words words(network);
    for (; arc != graph.arcs().end() && arc->from < behind; ++arc) {
      const std::string& word = graph.words()[arc->word];
      if (IsSayable(word)) network.arcs.push_back({arc->from - first, arc->to - first, words.numberOf(word)});
    }
    for (; step != graph.steps().end() && step->from < behind; ++step)
      network.arcs.push_back({step->from - first, step->to - first});
    ear::Prune(network);
  }
  return networks;
}

/// How many pairs of places there are with a way between them that takes no word; no more than `most` are
/// counted.
std::size_t WordlessWays(const SpeechNetwork& network, std::size_t most) {
  std::vector<SpeechNetwork::Arc> steps;
  std::copy_if(network.arcs.begin(), network.arcs.end(), std::back_inserter(steps),
               [](const SpeechNetwork::Arc& arc) { return arc.word == SpeechNetwork::kNoWord; });
  const auto from = [&](std::uint32_t place) {
    return std::lower_bound(
        steps.begin(), steps.end(), place,
        [](const SpeechNetwork::Arc& arc, std::uint32_t value) { return arc.from < value; });
  };
  std::size_t count = 0;
  std::vector<std::uint32_t> seenFrom(network.places, network.places);
  std::vector<std::uint32_t> open;
  for (std::size_t i = 0; i < steps.size() && count < most; ++i) {
    const std::uint32_t start = steps[i].from;
    if (i > 0 && steps[i - 1].from == start) continue;
    open.assign(1, start);
    while (!open.empty() && count < most) {
      auto next = from(open.back());
      const std::uint32_t place = open.back();
      open.pop_back();
      for (; next != steps.end() && next->from == place && count < most; ++next) {
        if (std::exchange(seenFrom[next->to], start) == start) continue;
        open.push_back(next->to);
        ++count;
      }
    }
  }
  return count;
}

/// Puts it between the start and the end of all.
void Add(const SpeechNetwork& network, SpeechNetwork& all, Words& words) {
  const std::uint32_t first = all.places;
  all.places += network.places;
  for (const SpeechNetwork::Arc& arc : network.arcs) {
    const bool step = arc.word == SpeechNetwork::kNoWord;
    all.arcs.push_back({first + arc.from, first + arc.to,
                        step ? arc.word : words.numberOf(network.words[static_cast<std::size_t>(arc.word)])});
  }
  all.arcs.push_back({all.start, first + network.start});
  all.arcs.push_back({first + network.end, all.end});
}

}  // namespace

Audible AudibleOf(const Grammar& grammar, const AudibleLimits& limits) {
  const std::vector<SpeechNetwork> networks = NetworksOf(grammar);
  std::vector<std::size_t> order(networks.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
    return networks[left].arcs.size() < networks[right].arcs.size();
  });
  Audible audible;
  SpeechNetwork& all = audible.network;
  all.places = 2;
  all.end = 1;
  Words words(all);
  std::size_t wordless = 0;
  for (const std::size_t each : order) {
    const SpeechNetwork& network = networks[each];
    if (network.arcs.empty()) continue;
    const std::size_t ways = WordlessWays(network, limits.wordless + 1);
    if (all.arcs.size() + network.arcs.size() > limits.arcs || wordless + ways > limits.wordless) {
      audible.leftOut.push_back(grammar.ends()[each].second);
      continue;
    }
    wordless += ways;
    Add(network, all, words);
  }
  for (const char* answer : {"first", "second", "third", "yes", "no"})
    all.arcs.push_back({all.start, all.end, words.numberOf(answer)});
  ear::Prune(all);
  const std::unordered_set<std::string_view> known(all.words.begin(), all.words.end());
  for (const auto& [word, written] : grammar.foreign())
    if (known.count(word) != 0) all.spellings.push_back({word, written});
  return audible;
}

}  // namespace standin
