#pragma once
#include <chrono>
#include <map>

#include "base/Loop.hpp"
#include "standin/calendar/WallClock.hpp"

namespace support {

/// The milliseconds since 1970 of a date and time of the world's clock.
inline std::int64_t Utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0) {
  const auto days =
      std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day));
  return (days.time_since_epoch().count() * 1440LL + hour * 60LL + minute) * 60000LL;
}

/// A day of the calendar, since 1970.
inline std::int64_t Day(int year, unsigned month, unsigned day) { return Utc(year, month, day) / 86400000; }

/// A clock that goes with a loop's time, can be set, and changes to summer time and back as it is told.
class HouseClock : public standin::WallClock {
 public:
  /// Without summer time, ahead of the world's clock by `offset` seconds.
  HouseClock(base::Loop& loop, std::int64_t start, std::int32_t offset = 0)
      : loop_(loop), start_(start - loop.now().count()), changes_{{INT64_MIN, offset}} {}

  /// From that moment on the clocks are so many seconds ahead.
  void change(std::int64_t moment, std::int32_t offset) { changes_[moment] = offset; }
  /// Central Europe's two changes of 2026.
  void likeBerlin() {
    change(INT64_MIN, 3600);
    change(Utc(2026, 3, 29, 1), 7200);
    change(Utc(2026, 10, 25, 1), 3600);
  }
  /// Sets the clock forward, or back.
  void setBy(base::Milliseconds step) { start_ += step.count(); }

  [[nodiscard]] std::int64_t now() const override { return start_ + loop_.now().count(); }
  [[nodiscard]] std::int32_t offset(std::int64_t moment) const override {
    return std::prev(changes_.upper_bound(moment))->second;
  }

 private:
  base::Loop& loop_;
  std::int64_t start_;
  std::map<std::int64_t, std::int32_t> changes_;
};

}  // namespace support
