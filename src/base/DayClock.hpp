#pragma once
#include "base/Loop.hpp"

namespace base {

/// The time of day, as far as the logic measures with it: differences, and 0 for "not begun".
class DayClock {
 public:
  DayClock() = default;
  DayClock(const DayClock&) = delete;
  DayClock& operator=(const DayClock&) = delete;
  DayClock(DayClock&&) = delete;
  DayClock& operator=(DayClock&&) = delete;
  virtual ~DayClock() = default;
  /// Seconds since midnight, with fractions.
  [[nodiscard]] virtual float seconds() const = 0;
};

/// A day that began with the loop's own time. Nothing tells the difference, and tests get virtual time.
class LoopDayClock : public DayClock {
 public:
  explicit LoopDayClock(const Loop& loop) : loop_(loop) {}
  [[nodiscard]] float seconds() const override {
    constexpr Milliseconds::rep kDay = 24LL * 60 * 60 * 1000;
    return static_cast<float>(static_cast<double>(loop_.now().count() % kDay) / 1000);
  }

 private:
  const Loop& loop_;
};

}  // namespace base
