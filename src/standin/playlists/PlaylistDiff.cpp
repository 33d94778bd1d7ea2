#include "standin/playlists/PlaylistDiff.hpp"

#include <algorithm>

namespace standin {
namespace {

using Items = std::vector<ListedItem>;

bool SameSource(const ListedItem& left, const ListedItem& right) { return left.source == right.source; }

std::string SourceAt(const Items& items, std::ptrdiff_t at) {
  const bool there = at >= 0 && at < std::ssize(items);
  return there ? items[static_cast<std::size_t>(at)].source : std::string();
}

ListPlace PlaceIn(const Items& items, std::ptrdiff_t at) {
  return {static_cast<std::int32_t>(at), SourceAt(items, at - 1), SourceAt(items, at)};
}

PlaylistStep StepOn(const Items& list, StepKind kind, Items items) {
  PlaylistStep step;
  step.kind = kind;
  step.items = std::move(items);
  step.count = static_cast<std::int32_t>(list.size());
  return step;
}

/// The list without so many titles from a place on.
Items Without(Items items, std::ptrdiff_t at, std::ptrdiff_t many) {
  items.erase(items.begin() + at, items.begin() + at + many);
  return items;
}

PlaylistStep Move(const Items& before, std::ptrdiff_t from, std::ptrdiff_t to) {
  PlaylistStep step = StepOn(before, StepKind::kMove, {before[static_cast<std::size_t>(from)]});
  const Items others = Without(before, from, 1);
  step.from = PlaceIn(others, from);
  step.to = PlaceIn(others, to);
  return step;
}

}  // namespace

std::vector<PlaylistStep> StepsBetween(const Items& before, const Items& after) {
  const auto differs = std::mismatch(before.begin(), before.end(), after.begin(), after.end(), SameSource);
  const std::ptrdiff_t front = differs.first - before.begin();
  const auto behind =
      std::mismatch(before.rbegin(), before.rend() - front, after.rbegin(), after.rend() - front, SameSource);
  const Items gone(differs.first, behind.first.base());
  const Items come(differs.second, behind.second.base());
  if (gone.empty() && come.empty()) return {};

  // One title that has gone from one end of what differs to the other.
  if (gone.size() == come.size() && gone.size() > 1) {
    const std::ptrdiff_t last = front + std::ssize(gone) - 1;
    if (std::equal(gone.begin() + 1, gone.end(), come.begin(), SameSource) &&
        SameSource(gone.front(), come.back()))
      return {Move(before, front, last)};
    if (std::equal(gone.begin(), gone.end() - 1, come.begin() + 1, SameSource) &&
        SameSource(gone.back(), come.front()))
      return {Move(before, last, front)};
  }
  std::vector<PlaylistStep> steps;
  const Items left = Without(before, front, std::ssize(gone));
  if (!gone.empty()) {
    steps.push_back(StepOn(before, StepKind::kRemove, gone));
    steps.back().from = PlaceIn(left, front);
  }
  if (!come.empty()) {
    steps.push_back(StepOn(left, StepKind::kAdd, come));
    steps.back().to = PlaceIn(left, front);
  }
  return steps;
}

}  // namespace standin
