#pragma once
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace engine {

/// An order of the numbers below a count in which none comes twice within a round.
class ShuffleOrder {
 public:
  explicit ShuffleOrder(std::uint32_t seed) : random_(seed) {}

  /// Begins a round over `count` numbers with `first`, or with any when it is none of them.
  void restart(int count, int first = -1);
  /// Numbers were added or taken off at the end: new ones come at some later place in the round.
  void resize(int count);

  /// The number at the present place, -1 when there are none.
  [[nodiscard]] int current() const;
  /// What comes next in this round; at its end what the next round begins with, if `newRound` is asked for.
  std::optional<int> following(bool newRound);
  [[nodiscard]] std::optional<int> preceding() const;
  /// Moves to the number wherever it stands in the round; moves on to the next round when it begins that.
  void moveTo(int number);

 private:
  std::vector<int> shuffled(int count);

  std::mt19937 random_;
  std::vector<int> round_;
  std::vector<int> nextRound_;  ///< made once its first number has been asked for
  std::size_t place_ = 0;
};

}  // namespace engine
