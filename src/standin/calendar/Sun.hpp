#pragma once
#include <cstdint>
#include <optional>

#include "standin/calendar/WallClock.hpp"
#include "standin/events/RuleSource.hpp"

namespace standin {

/// When the sun's upper edge appears or goes on a day of the house's calendar, milliseconds since 1970, to
/// within two minutes or so. Nothing on a day without: in the night and in the day of half a year near the
/// poles.
std::optional<std::int64_t> SunMoment(const WallClock& clock, const Place& place, std::int64_t day,
                                      bool rise);

}  // namespace standin
