#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>

namespace engine {

/// Which places of a file have been seen, as ranges that grow together.
class SeenRanges {
 public:
  [[nodiscard]] bool has(std::uint64_t place) const {
    const auto after = ranges_.upper_bound(place);
    return after != ranges_.begin() && place < std::prev(after)->second;
  }

  void add(std::uint64_t begin, std::uint64_t end) {
    if (begin >= end) return;
    auto next = ranges_.upper_bound(begin);
    if (next != ranges_.begin() && std::prev(next)->second >= begin) --next;
    while (next != ranges_.end() && next->first <= end) {
      begin = std::min(begin, next->first);
      end = std::max(end, next->second);
      next = ranges_.erase(next);
    }
    ranges_.emplace(begin, end);
  }

  [[nodiscard]] std::size_t count() const { return ranges_.size(); }

 private:
  std::map<std::uint64_t, std::uint64_t> ranges_;  ///< their begins and ends
};

}  // namespace engine
