#pragma once
#include <cstdint>

namespace standin {

/// The clock on the wall: what time it is, and how far the house's clocks are ahead of the world's. Unlike
/// the loop's own time it may be set, forward and back.
class WallClock {
 public:
  WallClock() = default;
  WallClock(const WallClock&) = delete;
  WallClock& operator=(const WallClock&) = delete;
  WallClock(WallClock&&) = delete;
  WallClock& operator=(WallClock&&) = delete;
  virtual ~WallClock() = default;

  /// Milliseconds since 1970.
  [[nodiscard]] virtual std::int64_t now() const = 0;
  /// Seconds east of the world's time that the house's clocks show at a moment, summer time included. The
  /// house may come into another time zone: this one is that of the last `now`.
  [[nodiscard]] virtual std::int32_t offset(std::int64_t moment) const = 0;
};

/// The machine's clock, in the machine's time zone.
class SystemClock : public WallClock {
 public:
  [[nodiscard]] std::int64_t now() const override;
  [[nodiscard]] std::int32_t offset(std::int64_t moment) const override;
};

/// A moment as the house's clocks show it.
struct LocalTime {
  std::int64_t day = 0;     ///< since 1970-01-01
  std::int32_t minute = 0;  ///< of the day
  bool operator==(const LocalTime&) const = default;
};

LocalTime LocalTimeAt(const WallClock& clock, std::int64_t moment);
/// The same of clocks that are so many seconds ahead.
LocalTime LocalTimeAt(std::int32_t offset, std::int64_t moment);
/// When the house's clocks show that minute of that day: the first time where they show it twice, the moment
/// of the change where they skip it.
std::int64_t MomentOf(const WallClock& clock, LocalTime time);
/// 0 for Monday to 6 for Sunday.
std::int32_t WeekdayOf(std::int64_t day);
/// True for a day that the bits allow; no bits allow every day.
bool Allows(std::uint8_t weekdays, std::int64_t day);

}  // namespace standin
