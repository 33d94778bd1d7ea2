#include "standin/hearing/Network.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace standin {

ear::SpeechNetwork NetworkOf(const Grammar& grammar) {
  const WordGraph& graph = grammar.graph();
  ear::SpeechNetwork network;
  network.places = graph.places() + 2;
  network.start = graph.places();
  network.end = graph.places() + 1;
  const auto sayable = [](const std::string& word) {
    return std::all_of(word.begin(), word.end(), [](char c) { return c >= 'a' && c <= 'z'; });
  };
  std::vector<std::int32_t> numbers;
  for (const std::string& word : graph.words()) {
    numbers.push_back(sayable(word) ? static_cast<std::int32_t>(network.words.size())
                                    : ear::SpeechNetwork::kNoWord);
    if (sayable(word)) network.words.push_back(word);
  }
  for (const WordGraph::Arc& arc : graph.arcs()) {
    const std::int32_t word = numbers[arc.word];
    if (word != ear::SpeechNetwork::kNoWord) network.arcs.push_back({arc.from, arc.to, word});
  }
  for (const WordGraph::Step& step : graph.steps()) network.arcs.push_back({step.from, step.to});
  for (const auto start : grammar.starts()) network.arcs.push_back({network.start, start});
  for (const auto& [end, event] : grammar.ends()) network.arcs.push_back({end, network.end});
  for (const char* answer : {"first", "second", "third", "yes", "no"}) {
    const auto known = static_cast<std::size_t>(
        std::find(network.words.begin(), network.words.end(), answer) - network.words.begin());
    if (known == network.words.size()) network.words.emplace_back(answer);
    network.arcs.push_back({network.start, network.end, static_cast<std::int32_t>(known)});
  }
  ear::Prune(network);
  return network;
}

}  // namespace standin
