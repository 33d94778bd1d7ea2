#include "standin/calendar/Calendar.hpp"

#include <algorithm>

#include "standin/calendar/Sun.hpp"

namespace standin {
namespace {

constexpr std::int64_t kMinute = 60000;
constexpr std::int64_t kWeek = 8;     ///< days within which each weekday comes again
constexpr std::int64_t kYear = 370;   ///< days, with those of the longest night in them
constexpr std::int64_t kLongest = 2;  ///< days that clocks and the sun's hours may lie apart

std::optional<std::int64_t> NextOf(const WallClock& clock, const TimeTrigger& trigger, std::int64_t after) {
  const std::int64_t today = LocalTimeAt(clock, after).day;
  for (std::int64_t day = today - 1; day <= today + kWeek; ++day) {
    if (!Allows(trigger.days, day)) continue;
    const std::int64_t due = MomentOf(clock, {day, trigger.minute});
    if (due > after) return due;
  }
  return std::nullopt;
}

std::optional<std::int64_t> NextOf(const WallClock& clock, const Place& place, const SunTrigger& trigger,
                                   std::int64_t after) {
  const std::int64_t today = LocalTimeAt(clock, after).day;
  for (std::int64_t day = today - kLongest; day <= today + kYear; ++day) {
    if (!Allows(trigger.days, day)) continue;
    const std::optional<std::int64_t> moment = SunMoment(clock, place, day, trigger.rise);
    if (moment && *moment + trigger.offset * kMinute > after) return *moment + trigger.offset * kMinute;
  }
  return std::nullopt;
}

std::optional<std::int64_t> NextOf(const WallClock& clock, const EveryTrigger& trigger, std::int64_t after) {
  if (trigger.minutes < 1) return std::nullopt;
  const std::int64_t step = trigger.minutes * kMinute;
  const std::int64_t today = LocalTimeAt(clock, after).day;
  const std::int64_t midnight = MomentOf(clock, {today, 0});
  const std::int64_t due = midnight + (std::max<std::int64_t>(after - midnight, 0) / step + 1) * step;
  for (std::int64_t day = today; day <= today + 1; ++day) {  // today's own where clocks show it twice
    const std::int64_t next = MomentOf(clock, {day, 0});
    if (next > after) return std::min(due, next);
  }
  return due;
}

}  // namespace

std::optional<std::int64_t> NextDue(const WallClock& clock, const std::optional<Place>& place,
                                    const Trigger& trigger, std::int64_t after) {
  if (const auto* time = std::get_if<TimeTrigger>(&trigger)) return NextOf(clock, *time, after);
  if (const auto* every = std::get_if<EveryTrigger>(&trigger)) return NextOf(clock, *every, after);
  if (const auto* sun = std::get_if<SunTrigger>(&trigger); sun != nullptr && place)
    return NextOf(clock, *place, *sun, after);
  return std::nullopt;
}

}  // namespace standin
