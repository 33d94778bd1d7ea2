#include "standin/hearing/Network.hpp"

#include <algorithm>
#include <cstddef>
#include <map>
#include <numeric>
#include <span>
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

/// What an event has of the grammar's graph.
struct Section {
  std::int32_t event = 0;
  WordGraph::Place first = 0;
  WordGraph::Place behind = 0;
  WordGraph::Place end = 0;
  std::span<const WordGraph::Arc> arcs{};
  std::span<const WordGraph::Step> steps{};
};

/// The places of an event stand behind each other, and so do the arcs and the steps.
std::vector<Section> SectionsOf(const Grammar& grammar) {
  const WordGraph& graph = grammar.graph();
  std::vector<Section> sections;
  std::span<const WordGraph::Arc> arcs(graph.arcs());
  std::span<const WordGraph::Step> steps(graph.steps());
  const auto take = [](auto& all, WordGraph::Place behind) {
    const auto end =
        std::find_if(all.begin(), all.end(), [&](const auto& each) { return each.from >= behind; });
    const auto taken = all.first(static_cast<std::size_t>(end - all.begin()));
    all = all.subspan(taken.size());
    return taken;
  };
  for (std::size_t i = 0; i < grammar.starts().size(); ++i) {
    const WordGraph::Place behind =
        i + 1 < grammar.starts().size() ? grammar.starts()[i + 1] : graph.places();
    const auto& [end, event] = grammar.ends()[i];
    sections.push_back({event, grammar.starts()[i], behind, end, take(arcs, behind), take(steps, behind)});
  }
  return sections;
}

/// The ways to say a section's names.
class NameWays {
 public:
  NameWays(const WordGraph& graph, const Section& section)
      : first_(section.first), spoken_(section.behind - section.first, true) {
    // Whatever leads to a place was entered before what leads on from it.
    for (const WordGraph::Arc& arc : section.arcs)
      spoken_[arc.to - first_] = spoken_[arc.from - first_] && IsSayable(graph.words()[arc.word]);
    for (const WordGraph::Step& step : section.steps) {
      if (step.output == WordGraph::kNoOutput) continue;
      const auto [at, isNew] = firsts_.try_emplace({step.to, step.output}, nullptr);
      if (spoken_[step.from - first_] && at->second == nullptr) at->second = &step;
    }
  }
  /// Whether it is the first to say its name.
  [[nodiscard]] bool isFirst(const WordGraph::Step& step) const {
    return step.output == WordGraph::kNoOutput || firsts_.at({step.to, step.output}) == &step;
  }
  /// How many names nobody can say.
  [[nodiscard]] std::size_t unsayable() const {
    return static_cast<std::size_t>(std::count_if(firsts_.begin(), firsts_.end(),
                                                  [](const auto& each) { return each.second == nullptr; }));
  }

 private:
  WordGraph::Place first_;
  std::vector<bool> spoken_;  ///< by place: what leads there can be pronounced
  std::map<std::pair<WordGraph::Place, std::uint32_t>, const WordGraph::Step*> firsts_;
};

/// As far as it can be said; with `names`, each name in one way.
SpeechNetwork NetworkOfSection(const WordGraph& graph, const Section& section, const NameWays* names) {
  SpeechNetwork network;
  network.places = section.behind - section.first;
  network.end = section.end - section.first;
  Words words(network);
  for (const WordGraph::Arc& arc : section.arcs) {
    const std::string& word = graph.words()[arc.word];
    if (IsSayable(word))
      network.arcs.push_back({arc.from - section.first, arc.to - section.first, words.numberOf(word)});
  }
  for (const WordGraph::Step& step : section.steps)
    if (names == nullptr || names->isFirst(step))
      network.arcs.push_back({step.from - section.first, step.to - section.first});
  ear::Prune(network);
  return network;
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

/// What a question of the house's is answered with. A single word is easily lost, "the first one" less so.
void AddAnswers(SpeechNetwork& all, Words& words) {
  const std::uint32_t behindThe = all.places++;
  const std::uint32_t beforeOne = all.places++;
  all.arcs.push_back({all.start, behindThe, words.numberOf("the")});
  all.arcs.push_back({beforeOne, all.end, words.numberOf("one")});
  for (const char* which : {"first", "second", "third"}) {
    all.arcs.push_back({all.start, all.end, words.numberOf(which)});
    all.arcs.push_back({behindThe, beforeOne, words.numberOf(which)});
  }
  for (const char* answer : {"yes", "no"}) all.arcs.push_back({all.start, all.end, words.numberOf(answer)});
}

}  // namespace

Audible AudibleOf(const Grammar& grammar, const AudibleLimits& limits) {
  const std::vector<Section> sections = SectionsOf(grammar);
  std::vector<SpeechNetwork> networks;
  networks.reserve(sections.size());
  for (const Section& each : sections) networks.push_back(NetworkOfSection(grammar.graph(), each, nullptr));
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
  const auto hasRoomFor = [&](const SpeechNetwork& network) {
    const std::size_t ways = WordlessWays(network, limits.wordless + 1);
    if (all.arcs.size() + network.arcs.size() > limits.arcs || wordless + ways > limits.wordless)
      return false;
    wordless += ways;
    return true;
  };
  for (const std::size_t each : order) {
    const Section& section = sections[each];
    const NameWays names(grammar.graph(), section);
    if (const std::size_t count = names.unsayable(); count > 0) audible.unsayable[section.event] = count;
    SpeechNetwork& network = networks[each];
    if (network.arcs.empty()) continue;
    if (!hasRoomFor(network)) {
      network = NetworkOfSection(grammar.graph(), section, &names);
      if (!hasRoomFor(network)) {
        audible.leftOut.push_back(section.event);
        continue;
      }
      audible.inOneWay.push_back(section.event);
    }
    Add(network, all, words);
  }
  AddAnswers(all, words);
  ear::Prune(all);
  const std::unordered_set<std::string_view> known(all.words.begin(), all.words.end());
  for (const auto& [word, written] : grammar.foreign())
    if (known.count(word) != 0) all.spellings.push_back({word, written});
  return audible;
}

}  // namespace standin
