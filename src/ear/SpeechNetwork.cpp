#include "ear/SpeechNetwork.hpp"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>
#include <tuple>
#include <utility>

namespace ear {
namespace {

using Arc = SpeechNetwork::Arc;

/// Which places are reached from one, along the arcs or against them.
std::vector<bool> Reached(const SpeechNetwork& network, std::uint32_t from, bool against) {
  const auto tail = [&](const Arc& arc) { return against ? arc.to : arc.from; };
  std::vector<std::size_t> first(std::size_t{network.places} + 1, 0);
  for (const Arc& arc : network.arcs) ++first[std::size_t{tail(arc)} + 1];
  std::partial_sum(first.begin(), first.end(), first.begin());
  std::vector<std::uint32_t> heads(network.arcs.size());
  std::vector<std::size_t> next(first.begin(), first.end() - 1);
  for (const Arc& arc : network.arcs) heads[next[tail(arc)]++] = against ? arc.from : arc.to;
  std::vector<bool> reached(network.places);
  std::vector<std::uint32_t> open{from};
  reached[from] = true;
  while (!open.empty()) {
    const std::uint32_t place = open.back();
    open.pop_back();
    for (std::size_t i = first[place]; i < first[std::size_t{place} + 1]; ++i) {
      if (reached[heads[i]]) continue;
      reached[heads[i]] = true;
      open.push_back(heads[i]);
    }
  }
  return reached;
}

/// Where nothing but one step leads on, the place that it leads to stands for the place.
void Shorten(SpeechNetwork& network) {
  std::vector<std::uint32_t> ways(network.places, 0);
  std::vector<std::uint32_t> stands(network.places);
  std::iota(stands.begin(), stands.end(), 0U);
  for (const Arc& arc : network.arcs) ++ways[arc.from];
  for (const Arc& arc : network.arcs)
    if (arc.word == SpeechNetwork::kNoWord && ways[arc.from] == 1) stands[arc.from] = arc.to;
  const auto last = [&](std::uint32_t place) {
    std::uint32_t end = place;
    while (stands[end] != end) end = stands[end];
    while (stands[place] != end) place = std::exchange(stands[place], end);
    return end;
  };
  for (Arc& arc : network.arcs) {
    arc.from = last(arc.from);
    arc.to = last(arc.to);
  }
  network.start = last(network.start);
  std::erase_if(network.arcs,
                [](const Arc& arc) { return arc.word == SpeechNetwork::kNoWord && arc.from == arc.to; });
}

}  // namespace

void Prune(SpeechNetwork& network) {
  const auto useful = [&] {
    const std::vector<bool> ahead = Reached(network, network.start, false);
    const std::vector<bool> behind = Reached(network, network.end, true);
    std::erase_if(network.arcs, [&](const Arc& arc) {
      return !ahead[arc.from] || !behind[arc.from] || !ahead[arc.to] || !behind[arc.to];
    });
  };
  useful();
  Shorten(network);
  constexpr std::uint32_t kUnused = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> places(network.places, kUnused);
  std::vector<std::uint32_t> words(network.words.size(), kUnused);
  std::uint32_t count = 0;
  std::vector<std::string> used;
  const auto numbered = [&](std::uint32_t place) {
    if (places[place] == kUnused) places[place] = count++;
    return places[place];
  };
  network.start = numbered(network.start);
  network.end = numbered(network.end);
  for (Arc& arc : network.arcs) {
    arc.from = numbered(arc.from);
    arc.to = numbered(arc.to);
    if (arc.word == SpeechNetwork::kNoWord) continue;
    std::uint32_t& number = words[static_cast<std::size_t>(arc.word)];
    if (number == kUnused) {
      number = static_cast<std::uint32_t>(used.size());
      used.push_back(std::move(network.words[static_cast<std::size_t>(arc.word)]));
    }
    arc.word = static_cast<std::int32_t>(number);
  }
  network.words = std::move(used);
  network.places = count;
  const auto order = [](const Arc& arc) { return std::tie(arc.from, arc.to, arc.word); };
  std::sort(network.arcs.begin(), network.arcs.end(),
            [&](const Arc& left, const Arc& right) { return order(left) < order(right); });
  network.arcs.erase(std::unique(network.arcs.begin(), network.arcs.end()), network.arcs.end());
}

}  // namespace ear
