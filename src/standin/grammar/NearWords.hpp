#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace standin {

/// The names nearest to what was said: first those with few letters wrong, left out or too many, then those
/// that hold all that was said as whole words. Both are folded words with one blank between them.
class NearWords {
 public:
  NearWords(std::string said, std::size_t most);

  /// A number may have several names; the nearest one counts.
  void look(std::uint32_t number, std::string_view name);
  /// The nearest first, each with its distance; of those at one distance the first looked at. No number
  /// twice.
  [[nodiscard]] const std::vector<std::pair<std::uint32_t, int>>& best() const { return best_; }

 private:
  /// How many letters differ; more than `limit` where they are more than that.
  [[nodiscard]] int differing(std::string_view name, int limit);
  [[nodiscard]] bool holds(std::string_view name) const;

  std::string said_;
  std::size_t most_;
  int limit_;
  std::vector<int> row_;
  std::vector<std::pair<std::uint32_t, int>> best_;
};

}  // namespace standin
