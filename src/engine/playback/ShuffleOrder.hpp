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
  /// The numbers stand for other things now: `to` has the new number of each old one, or -1 for what has
  /// gone. The round goes on with what is left of it; numbers that are new come at some later place in it.
  void renumber(const std::vector<int>& to, int count);

  /// These numbers come next, in this order, also those that have had their turn in this round.
  void comeNext(int first, int count);

  /// The number at the present place, -1 when there are none or it has gone.
  [[nodiscard]] int current() const;
  /// What comes next in this round; at its end what the next round begins with, if `newRound` is asked for.
  std::optional<int> following(bool newRound);
  [[nodiscard]] std::optional<int> preceding() const;
  /// Moves to the number: on to the next round when it begins that, back to where it was in this round, or,
  /// if it had yet to come, on to it, without those that had to come before it losing their turn.
  void moveTo(int number);

 private:
  std::vector<int> shuffled(int count);
  /// Puts the numbers anywhere behind that place; those of the round keep their order.
  void mixIn(std::vector<int>& round, std::size_t from, std::vector<int> added);

  std::mt19937 random_;
  int count_ = 0;
  std::vector<int> round_;      ///< -1 at the present place when the number there has gone
  std::vector<int> nextRound_;  ///< made once its first number has been asked for
  std::size_t place_ = 0;
};

}  // namespace engine
