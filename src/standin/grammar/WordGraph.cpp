#include "standin/grammar/WordGraph.hpp"

#include <algorithm>
#include <tuple>

namespace standin {

std::uint32_t WordGraph::numberOf(std::string_view word) {
  const auto [at, isNew] = numbers_.try_emplace(std::string(word), static_cast<std::uint32_t>(words_.size()));
  if (isNew) words_.emplace_back(word);
  return at->second;
}

WordGraph::Place WordGraph::follow(Place from, std::string_view words) {
  while (!words.empty()) {
    const std::size_t end = std::min(words.find(' '), words.size());
    const std::uint32_t word = numberOf(words.substr(0, end));
    words.remove_prefix(std::min(end + 1, words.size()));
    const auto [child, isNew] = children_.try_emplace(keyOf(from, word), places_);
    if (isNew) arcs_.push_back({from, word, add()});
    from = child->second;
  }
  return from;
}

void WordGraph::finish() {
  const auto order = [](const Step& each) {
    return std::tie(each.from, each.distance, each.to, each.output);
  };
  std::sort(steps_.begin(), steps_.end(),
            [&](const Step& left, const Step& right) { return order(left) < order(right); });
  steps_.erase(std::unique(steps_.begin(), steps_.end(),
                           [&](const Step& left, const Step& right) { return order(left) == order(right); }),
               steps_.end());
  firstStep_.assign(std::size_t{places_} + 1, 0);
  for (const Step& each : steps_) ++firstStep_[std::size_t{each.from} + 1];
  for (std::size_t i = 1; i < firstStep_.size(); ++i) firstStep_[i] += firstStep_[i - 1];
}

std::span<const WordGraph::Step> WordGraph::stepsFrom(Place place) const {
  const std::size_t first = firstStep_[place];
  return std::span(steps_).subspan(first, firstStep_[std::size_t{place} + 1] - first);
}

std::optional<WordGraph::Place> WordGraph::after(Place from, std::string_view word) const {
  const auto number = numbers_.find(std::string(word));
  if (number == numbers_.end()) return std::nullopt;
  const auto child = children_.find(keyOf(from, number->second));
  if (child == children_.end()) return std::nullopt;
  return child->second;
}

}  // namespace standin
