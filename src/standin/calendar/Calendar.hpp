#pragma once
#include <cstdint>
#include <optional>

#include "standin/calendar/WallClock.hpp"
#include "standin/events/Rule.hpp"
#include "standin/events/RuleSource.hpp"

namespace standin {

/// When a trigger is due next after a moment, milliseconds since 1970; nothing for one that isn't of time,
/// or that the place (if there is one) has no sun for within a year. A time of day comes once a day: the
/// first time where clocks are set back over it, at the change where they skip it. The minutes of an "every"
/// trigger pass evenly from each midnight to the next, also on a day of 23 or 25 hours.
std::optional<std::int64_t> NextDue(const WallClock& clock, const std::optional<Place>& place,
                                    const Trigger& trigger, std::int64_t after);

}  // namespace standin
