#pragma once
#include <chrono>
#include <functional>
#include <memory>

namespace base {

using Milliseconds = std::chrono::milliseconds;

/// A repeating timer. It fires every `interval` while it is enabled and its interval is above 0. Both may be
/// changed at any time, also from its own event; enabling or changing the interval starts the wait anew.
/// It never fires within its own event.
class Timer {
 public:
  Timer() = default;
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  Timer(Timer&&) = delete;
  Timer& operator=(Timer&&) = delete;
  virtual ~Timer() = default;

  [[nodiscard]] virtual Milliseconds interval() const = 0;
  virtual void interval(Milliseconds value) = 0;
  [[nodiscard]] virtual bool enabled() const = 0;
  virtual void enabled(bool value) = 0;
};

/// The process's message loop, as far as the logic knows it. One thread runs it; `post` alone may be called
/// from any thread.
class Loop {
 public:
  Loop() = default;
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;
  Loop(Loop&&) = delete;
  Loop& operator=(Loop&&) = delete;
  virtual ~Loop() = default;

  /// A disabled timer that runs `event` on the loop's thread.
  virtual std::unique_ptr<Timer> makeTimer(Milliseconds interval, std::function<void()> event) = 0;
  /// Runs `work` on a later turn of the loop. Thread-safe.
  virtual void post(std::function<void()> work) = 0;
  /// Handles everything that is pending now (timers due, posted work, windows, incoming calls) and returns.
  virtual void pump() = 0;
  /// Runs `body`; a wait for a reply inside it handles timers, posted work and windows too, not only
  /// incoming calls.
  virtual void whileOpen(const std::function<void()>& body) = 0;
  /// Time since an arbitrary start that never goes back.
  [[nodiscard]] virtual Milliseconds now() const = 0;
};

}  // namespace base
