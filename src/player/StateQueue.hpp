#pragma once
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "base/Loop.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"

namespace player {

/// The play states that wait to be handled. The player's event only appends; a timer works the queue off on
/// a clean turn of the loop, so that the long handling is never entered twice and the order is kept.
///
/// The timer's interval doubles as the busy flag: 1 millisecond means that no drain is running, 0 that one
/// is. `enabled` can't serve, as the timer is switched off while it drains.
class StateQueue {
 public:
  /// `worker` handles one state.
  StateQueue(base::Loop& loop, const plugin::HostServices& host, plugin::Loggers& loggers,
             std::function<void(std::int32_t)> worker);

  /// Appends a state and arms the timer unless a drain is running. Never throws.
  void PushStack(std::int32_t newState);
  /// Handles one state at once, as a drain does: what arrives meanwhile waits behind it. Never throws.
  void handleNow(std::int32_t state);
  /// Takes the oldest state, if there is one.
  std::optional<std::int32_t> PopStack();
  /// The player's own event.
  void wmp9_PlayStateChange(std::int32_t newState);
  /// The timer's event: handles all that is queued, also what arrives meanwhile.
  void PlayStateChangeTimer_Timer();

  [[nodiscard]] const std::deque<std::int32_t>& StateStack() const { return StateStack_; }
  [[nodiscard]] const base::Timer& PlayStateChangeTimer() const { return *PlayStateChangeTimer_; }

 private:
  static constexpr base::Milliseconds kIdle{1};
  static constexpr base::Milliseconds kBusy{0};

  const plugin::HostServices& host_;
  plugin::Loggers& loggers_;
  std::function<void(std::int32_t)> worker_;
  std::deque<std::int32_t> StateStack_;  // in spite of its name, first in, first out
  std::unique_ptr<base::Timer> PlayStateChangeTimer_;
};

}  // namespace player
