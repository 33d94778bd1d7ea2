#include "engine/ShuffleOrder.hpp"

#include <algorithm>
#include <numeric>

namespace engine {

std::vector<int> ShuffleOrder::shuffled(int count) {
  std::vector<int> round(static_cast<std::size_t>(std::max(0, count)));
  std::iota(round.begin(), round.end(), 0);
  std::shuffle(round.begin(), round.end(), random_);
  return round;
}

void ShuffleOrder::restart(int count, int first) {
  round_ = shuffled(count);
  nextRound_.clear();
  place_ = 0;
  const auto wanted = std::find(round_.begin(), round_.end(), first);
  if (wanted != round_.end()) std::iter_swap(round_.begin(), wanted);
}

void ShuffleOrder::resize(int count) {
  nextRound_.clear();
  const auto size = static_cast<int>(round_.size());
  if (size == 0) {
    restart(count);
    return;
  }
  for (int number = size; number < count; ++number) {
    std::uniform_int_distribution<std::size_t> later(place_ + 1, round_.size());
    round_.insert(round_.begin() + static_cast<std::ptrdiff_t>(later(random_)), number);
  }
  if (count >= size) return;
  const auto played = std::count_if(round_.begin(), round_.begin() + static_cast<std::ptrdiff_t>(place_),
                                    [&](int number) { return number < count; });
  std::erase_if(round_, [&](int number) { return number >= count; });
  place_ = std::min(static_cast<std::size_t>(played), round_.empty() ? 0 : round_.size() - 1);
}

int ShuffleOrder::current() const { return round_.empty() ? -1 : round_[place_]; }

std::optional<int> ShuffleOrder::following(bool newRound) {
  if (place_ + 1 < round_.size()) return round_[place_ + 1];
  if (!newRound || round_.empty()) return std::nullopt;
  if (nextRound_.empty()) {
    nextRound_ = shuffled(static_cast<int>(round_.size()));
    // The last of one round is not the first of the next.
    if (nextRound_.size() > 1 && nextRound_.front() == current())
      std::swap(nextRound_.front(), nextRound_.back());
  }
  return nextRound_.front();
}

std::optional<int> ShuffleOrder::preceding() const {
  if (place_ == 0 || round_.empty()) return std::nullopt;
  return round_[place_ - 1];
}

void ShuffleOrder::moveTo(int number) {
  const bool atEnd = place_ + 1 >= round_.size();
  if (atEnd && !nextRound_.empty() && nextRound_.front() == number) {
    round_ = std::move(nextRound_);
    nextRound_.clear();
    place_ = 0;
    return;
  }
  const auto found = std::find(round_.begin(), round_.end(), number);
  if (found != round_.end()) place_ = static_cast<std::size_t>(found - round_.begin());
}

}  // namespace engine
