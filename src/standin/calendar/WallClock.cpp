#include "standin/calendar/WallClock.hpp"

#include <algorithm>
#include <chrono>
#include <ctime>

namespace standin {
namespace {

constexpr std::int64_t kSecond = 1000;
constexpr std::int64_t kDaySeconds = 86400;
constexpr std::int64_t kDay = kDaySeconds * kSecond;

std::int64_t FloorDivide(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

/// The first millisecond of (from, to] at which the clocks are no longer as far ahead as at `from`.
std::int64_t ChangeBetween(const WallClock& clock, std::int64_t from, std::int64_t to) {
  const std::int32_t before = clock.offset(from);
  while (to - from > 1) {
    const std::int64_t middle = from + (to - from) / 2;
    (clock.offset(middle) == before ? from : to) = middle;
  }
  return to;
}

}  // namespace

std::int64_t SystemClock::now() const {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;
  ::tzset();  // looks at the zone's file again, which takes far longer than to tell a moment's offset
  return duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::int32_t SystemClock::offset(std::int64_t moment) const {
  const auto seconds = static_cast<std::time_t>(FloorDivide(moment, kSecond));
  std::tm local{};
  if (::localtime_r(&seconds, &local) == nullptr) return 0;
  return static_cast<std::int32_t>(local.tm_gmtoff);
}

LocalTime LocalTimeAt(const WallClock& clock, std::int64_t moment) {
  return LocalTimeAt(clock.offset(moment), moment);
}

LocalTime LocalTimeAt(std::int32_t offset, std::int64_t moment) {
  const std::int64_t shown = FloorDivide(moment, kSecond) + offset;
  const std::int64_t day = FloorDivide(shown, kDaySeconds);
  return {day, static_cast<std::int32_t>((shown - day * kDaySeconds) / 60)};
}

std::int64_t MomentOf(const WallClock& clock, LocalTime time) {
  const std::int64_t shown = (time.day * kDaySeconds + std::int64_t{time.minute} * 60) * kSecond;
  const std::int64_t before = clock.offset(shown - kDay);
  const std::int64_t after = clock.offset(shown + kDay);
  const std::int64_t first = shown - std::max(before, after) * kSecond;
  const std::int64_t second = shown - std::min(before, after) * kSecond;
  for (const std::int64_t moment : {first, second})
    if (moment + clock.offset(moment) * kSecond == shown) return moment;
  return ChangeBetween(clock, first, second);
}

std::int32_t WeekdayOf(std::int64_t day) {
  constexpr std::int64_t kThursday = 3;  // 1970-01-01
  const std::int64_t weekday = (day + kThursday) % 7;
  return static_cast<std::int32_t>(weekday < 0 ? weekday + 7 : weekday);
}

bool Allows(std::uint8_t weekdays, std::int64_t day) {
  return weekdays == 0 || ((weekdays >> static_cast<unsigned>(WeekdayOf(day))) & 1U) != 0;
}

}  // namespace standin
