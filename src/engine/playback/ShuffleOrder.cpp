#include "engine/playback/ShuffleOrder.hpp"

#include <algorithm>
#include <iterator>
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
  count_ = count;
  nextRound_.clear();
  place_ = 0;
  const auto wanted = std::find(round_.begin(), round_.end(), first);
  if (wanted != round_.end()) std::iter_swap(round_.begin(), wanted);
}

void ShuffleOrder::renumber(const std::vector<int>& to, int count) {
  if (round_.empty()) {
    restart(count);
    return;
  }
  std::vector<bool> known(static_cast<std::size_t>(std::max(0, count)));
  std::vector<int> round;
  std::size_t place = 0;
  for (std::size_t i = 0; i < round_.size(); ++i) {
    const auto old = static_cast<std::size_t>(round_[i]);
    const int number = round_[i] >= 0 && old < to.size() ? to[old] : -1;
    if (i == place_) place = round.size();
    if (number >= 0) known[static_cast<std::size_t>(number)] = true;
    if (number >= 0 || i == place_) round.push_back(number);
  }
  std::vector<int> added;
  for (int number = 0; number < count; ++number)
    if (!known[static_cast<std::size_t>(number)]) added.push_back(number);
  mixIn(round, place + 1, std::move(added));
  round_ = std::move(round);
  nextRound_.clear();
  place_ = place;
  count_ = count;
}

void ShuffleOrder::mixIn(std::vector<int>& round, std::size_t from, std::vector<int> added) {
  if (added.empty()) return;
  std::shuffle(added.begin(), added.end(), random_);
  std::vector<int> mixed(round.begin(), round.begin() + static_cast<std::ptrdiff_t>(from));
  mixed.reserve(round.size() + added.size());
  std::size_t old = from;
  std::size_t fresh = 0;
  while (old < round.size() || fresh < added.size()) {
    // Each of the rest is as likely to come now as any other.
    std::uniform_int_distribution<std::size_t> rest(1, round.size() - old + added.size() - fresh);
    mixed.push_back(rest(random_) <= round.size() - old ? round[old++] : added[fresh++]);
  }
  round = std::move(mixed);
}

void ShuffleOrder::comeNext(int first, int count) {
  if (round_.empty()) return;
  const int now = current();
  const auto among = [&](int number) { return number >= first && number < first + count && number != now; };
  std::vector<int> wanted;
  std::copy_if(round_.begin(), round_.end(), std::back_inserter(wanted), among);
  std::sort(wanted.begin(), wanted.end());
  const auto place = round_.begin() + static_cast<std::ptrdiff_t>(place_);
  place_ -= static_cast<std::size_t>(std::count_if(round_.begin(), place, among));
  std::erase_if(round_, among);
  round_.insert(round_.begin() + static_cast<std::ptrdiff_t>(place_) + 1, wanted.begin(), wanted.end());
}

int ShuffleOrder::current() const { return round_.empty() ? -1 : round_[place_]; }

std::optional<int> ShuffleOrder::following(bool newRound) {
  if (place_ + 1 < round_.size()) return round_[place_ + 1];
  if (!newRound || count_ <= 0) return std::nullopt;
  if (nextRound_.empty()) {
    nextRound_ = shuffled(count_);
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
  if (number != current() && current() < 0 && !round_.empty()) {
    // What had gone is left for good; the place before it is where the round goes on from.
    const auto found = std::find(round_.begin(), round_.end(), number);
    if (found == round_.end()) return;
    const bool later = found > round_.begin() + static_cast<std::ptrdiff_t>(place_);
    if (later) std::rotate(round_.begin() + static_cast<std::ptrdiff_t>(place_), found, found + 1);
    std::erase(round_, -1);
    place_ = static_cast<std::size_t>(std::find(round_.begin(), round_.end(), number) - round_.begin());
    return;
  }
  const auto found = std::find(round_.begin(), round_.end(), number);
  if (found == round_.end()) return;
  const auto place = static_cast<std::size_t>(found - round_.begin());
  if (place > place_ + 1) {
    std::rotate(round_.begin() + static_cast<std::ptrdiff_t>(place_) + 1, found, found + 1);
    ++place_;
  } else {
    place_ = place;
  }
}

}  // namespace engine
