#pragma once
#include <cstdint>
#include <map>
#include <memory>

#include "base/Loop.hpp"

namespace standin {

/// What one thing that happened in the house has led to: how often each event has been triggered by it, at
/// one or more removes.
struct Chain {
  std::map<std::int32_t, int> rounds{};
  base::Milliseconds since{0};
};

/// Tells events that trigger each other in a circle from those that are triggered often: an event that fires
/// another hands its chain on, and what comes in shortly after an action has reached out into the house is
/// taken for its echo, as the player tells of what it was made to do.
class Rounds {
 public:
  struct Limits {
    int most = 20;                                      ///< rounds that an event may go within one chain
    base::Milliseconds echo = std::chrono::seconds(3);  ///< how soon the house answers to an action
    base::Milliseconds age = std::chrono::minutes(10);  ///< of a chain that still has echoes
  };
  explicit Rounds(base::Loop& loop) : Rounds(loop, Limits()) {}
  Rounds(base::Loop& loop, Limits limits) : loop_(loop), limits_(limits) {}

  /// For what nobody in the house has caused: a time of day, a press of a button.
  [[nodiscard]] std::shared_ptr<Chain> fresh() const;
  /// For what comes in from the house: the chain that it is taken for an echo of, or one of its own.
  [[nodiscard]] std::shared_ptr<Chain> incoming() const;
  /// An action of the chain has reached out.
  void acted(const std::shared_ptr<Chain>& chain);
  /// Counts a round of the event; false when it is one too many. Then the circle is cut, and what comes in
  /// next begins a chain of its own.
  bool admits(Chain& chain, std::int32_t event);

 private:
  base::Loop& loop_;
  Limits limits_;
  std::shared_ptr<Chain> echo_;
  base::Milliseconds heardUntil_{0};
};

}  // namespace standin
