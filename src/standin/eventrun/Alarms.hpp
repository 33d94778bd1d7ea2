#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Loop.hpp"
#include "standin/calendar/Calendar.hpp"
#include "standin/events/AlarmMemory.hpp"

namespace standin {

/// Wakes for the triggers of time: each moment that one is due comes once, whatever the clock does. One that
/// has passed unseen (the clock was set forward, the machine was asleep, the house was off) comes late within
/// a tolerance, and is told as missed beyond it. Where the clock is set back over one, it doesn't come again,
/// unless it has only been told as missed, or the clock is set back by more than half a day: then it was
/// wrong before. Where the house comes into another time zone, a time of day is that of the new zone: one
/// that the clocks on the wall have jumped over by it is late or missed, and one that has rung and that they
/// show again doesn't ring again.
class Alarms {
 public:
  struct Limits {
    base::Milliseconds late = std::chrono::minutes(10);  ///< later than that is missed
    base::Milliseconds look = std::chrono::seconds(30);  ///< how often the clock is looked at, at least
    base::Milliseconds wrong = std::chrono::hours(12);   ///< set back by more, it was wrong
    base::Milliseconds keep = std::chrono::minutes(1);   ///< how often what has been seen to is kept
    base::Milliseconds start = std::chrono::minutes(1);  ///< how long a house that starts is waited for
  };
  struct Alarm {
    std::int32_t event = 0;
    std::size_t trigger = 0;  ///< place among the event's triggers
    std::int64_t due = 0;     ///< milliseconds since 1970; of the first one where several were missed
    std::int64_t last = 0;    ///< of the last one
    std::int64_t missed = 0;  ///< how many; 0 for one that is in time, or late within the tolerance
  };
  using Heard = std::function<void(const Alarm& alarm)>;

  /// `memory` may be null: then nothing is known of what was before. Otherwise nothing rings until the house
  /// has started, so that what came while it was off finds it ready.
  Alarms(base::Loop& loop, const WallClock& clock, AlarmMemory* memory, Heard heard, Limits limits);

  /// Plans the event's triggers from where the house has left off when it ended.
  void goOn(std::int32_t event, const Rule& rule);
  /// Plans the event's triggers from now on, in place of what was planned for it. Null or a rule that is off
  /// has none. Triggers that have stayed as they were keep their moments.
  void put(std::int32_t event, const Rule* rule);
  /// The house is up.
  void houseStarted();
  /// The house ends: whatever has rung has come to its evaluation.
  void houseEnds();
  /// Where the sun is seen from; what hangs on it is planned anew.
  void place(const std::optional<Place>& place);
  /// When the event is due next.
  [[nodiscard]] std::optional<std::int64_t> next(std::int32_t event) const;

 private:
  struct Key {
    std::int64_t due = 0;
    std::int32_t event = 0;
    std::size_t trigger = 0;
    // NOLINTNEXTLINE(modernize-use-nullptr): the comparison's own zero is taken for a pointer's
    auto operator<=>(const Key&) const = default;
  };
  struct Planned {
    Trigger trigger;
    std::int64_t due = 0;         ///< 0 where it never is
    std::int64_t rung = 0;        ///< the last moment that has come and was not missed
    std::int32_t dueOffset = 0;   ///< of the clocks at the moment that is due
    std::int32_t rungOffset = 0;  ///< at the one that has rung, as the zone was then
  };
  void plan(std::int32_t event, std::size_t place, Planned planned, std::int64_t after);
  void drop(std::int32_t event);
  void look();
  void setBack(std::int64_t now);
  /// True when moments are shown by other times of day than when they were planned.
  [[nodiscard]] bool inAnotherZone() const;
  void enterZone(std::int64_t now);
  void ring(const Key& key, std::int64_t now);
  void keep(std::int64_t now);
  void wind();

  base::Loop& loop_;
  const WallClock& clock_;
  AlarmMemory* memory_;
  Heard heard_;
  Limits limits_;
  std::optional<Place> place_;
  std::int64_t seen_ = 0;        ///< what the clock has shown at the last look
  std::int32_t seenOffset_ = 0;  ///< of the clocks on the wall then
  std::int64_t keptAt_ = 0;      ///< what it has shown when something was kept last
  std::int64_t seenTo_ = 0;  ///< what may be kept next: what has rung until then has come to its evaluation
  bool waiting_ = false;     ///< for the house to start
  base::Milliseconds until_{0};  ///< and no longer
  std::set<Key> keys_;
  std::map<std::int32_t, std::map<std::size_t, Planned>> planned_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace standin
