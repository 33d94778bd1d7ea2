#include "standin/eventrun/Alarms.hpp"

#include <algorithm>
#include <utility>

namespace standin {
namespace {

constexpr std::int64_t kMostCounted =
    2000;  // of those that were missed; a year of days, and a day of minutes

/// A moment that the clock has not reached was seen by a clock that has been set back since.
std::int64_t LeftOff(std::int64_t seen, std::int64_t now, base::Milliseconds wrong) {
  return seen - now > wrong.count() ? now : seen;
}

bool IsOfTime(const Trigger& trigger) {
  return std::holds_alternative<TimeTrigger>(trigger) || std::holds_alternative<SunTrigger>(trigger) ||
         std::holds_alternative<EveryTrigger>(trigger);
}

}  // namespace

Alarms::Alarms(base::Loop& loop, const WallClock& clock, AlarmMemory* memory, Heard heard, Limits limits)
    : loop_(loop),
      clock_(clock),
      memory_(memory),
      heard_(std::move(heard)),
      limits_(limits),
      seen_(clock.now()),
      seenOffset_(clock.offset(seen_)),
      keptAt_(seen_),
      seenTo_(seen_),
      timer_(loop_.makeTimer(limits.look, [this] { look(); })) {
  if (memory_ == nullptr) return;
  if (const auto seen = memory_->seen()) {
    seenTo_ = LeftOff(*seen, seen_, limits_.wrong);
    waiting_ = true;
    until_ = loop_.now() + limits_.start;
  } else {
    memory_->keep(seen_);  // the first start of all: nothing was missed
  }
  wind();
}

void Alarms::goOn(std::int32_t event, const Rule& rule) {
  const std::int64_t now = clock_.now();
  const auto seen = memory_ == nullptr ? std::nullopt : memory_->seen(event);
  const std::int64_t from = seen ? LeftOff(*seen, now, limits_.wrong) : now;
  for (std::size_t i = 0; rule.on && i < rule.triggers.size(); ++i)
    if (IsOfTime(rule.triggers[i]))
      plan(event, i, {.trigger = rule.triggers[i], .rung = from, .rungOffset = clock_.offset(from)}, from);
  wind();
}

void Alarms::houseStarted() {
  waiting_ = false;
  wind();
}

void Alarms::houseEnds() {
  if (memory_ == nullptr || waiting_) return;
  const std::int64_t now = clock_.now();
  memory_->keep(keys_.empty() ? now : std::min(now, keys_.begin()->due - 1));
}

void Alarms::put(std::int32_t event, const Rule* rule) {
  bool isNew = false;
  std::map<std::size_t, Planned> before;
  if (const auto found = planned_.find(event); found != planned_.end()) before = found->second;
  drop(event);
  if (rule != nullptr && rule->on) {
    for (std::size_t i = 0; i < rule->triggers.size(); ++i) {
      const Trigger& trigger = rule->triggers[i];
      if (!IsOfTime(trigger)) continue;
      // One that has just become due and waits to ring must not be lost by a change beside it.
      const auto kept = std::find_if(before.begin(), before.end(),
                                     [&](const auto& each) { return each.second.trigger == trigger; });
      const Planned planned = kept == before.end() ? Planned{trigger} : kept->second;
      plan(event, i, planned, planned.due == 0 ? clock_.now() : planned.due - 1);
      isNew = isNew || kept == before.end();
    }
  }
  if (isNew && memory_ != nullptr) memory_->keep(event, clock_.now());
  wind();
}

void Alarms::place(const std::optional<Place>& place) {
  if (place == place_) return;
  place_ = place;
  const auto all = planned_;
  for (const auto& [event, triggers] : all)
    for (const auto& [at, planned] : triggers)
      if (std::holds_alternative<SunTrigger>(planned.trigger))
        plan(event, at, planned, std::max(clock_.now(), planned.rung));
  wind();
}

std::optional<std::int64_t> Alarms::next(std::int32_t event) const {
  const auto found = planned_.find(event);
  std::optional<std::int64_t> next;
  if (found == planned_.end()) return next;
  for (const auto& [at, planned] : found->second)
    if (planned.due != 0 && (!next || planned.due < *next)) next = planned.due;
  return next;
}

void Alarms::plan(std::int32_t event, std::size_t place, Planned planned, std::int64_t after) {
  keys_.erase({planned.due, event, place});
  const std::optional<std::int64_t> due = NextDue(clock_, place_, planned.trigger, after);
  planned.due = due.value_or(0);
  planned.dueOffset = clock_.offset(planned.due);
  if (due) keys_.insert({*due, event, place});
  planned_[event][place] = std::move(planned);
}

void Alarms::drop(std::int32_t event) {
  const auto found = planned_.find(event);
  if (found == planned_.end()) return;
  for (const auto& [at, planned] : found->second) keys_.erase({planned.due, event, at});
  planned_.erase(found);
}

void Alarms::look() {
  if (waiting_ && loop_.now() < until_) return wind();
  waiting_ = false;
  const std::int64_t now = clock_.now();
  const bool anotherZone = inAnotherZone();
  if (now < seen_) setBack(now);
  seen_ = now;
  std::vector<Key> due;
  for (const Key& key : keys_) {
    if (key.due > now) break;
    due.push_back(key);
  }
  for (const Key& key : due)
    if (keys_.contains(key)) ring(key, now);  // what has rung before it may have changed the plan
  if (anotherZone) enterZone(now);
  seenOffset_ = clock_.offset(now);
  keep(now);
  wind();
}

void Alarms::setBack(std::int64_t now) {
  const bool wrongBefore = seen_ - now > limits_.wrong.count();
  const auto all = planned_;
  for (const auto& [event, triggers] : all)
    for (auto [at, planned] : triggers) {
      if (wrongBefore) planned.rung = 0;
      plan(event, at, planned, std::max(now, planned.rung));
    }
}

bool Alarms::inAnotherZone() const {
  if (clock_.offset(seen_) != seenOffset_) return true;
  return std::any_of(planned_.begin(), planned_.end(), [&](const auto& event) {
    return std::any_of(event.second.begin(), event.second.end(), [&](const auto& each) {
      return clock_.offset(each.second.due) != each.second.dueOffset;
    });
  });
}

// Of what the clocks had shown until now everything has come by the old plan.
void Alarms::enterZone(std::int64_t now) {
  const std::int64_t shown = MomentOf(clock_, LocalTimeAt(seenOffset_, now));
  const auto all = planned_;
  for (const auto& [event, triggers] : all) {
    for (const auto& [at, planned] : triggers) {
      std::int64_t after = std::max(now, planned.rung);
      if (std::holds_alternative<TimeTrigger>(planned.trigger)) {
        after = std::min(now, shown);
        if (planned.rung != 0)
          after = std::max(after, MomentOf(clock_, LocalTimeAt(planned.rungOffset, planned.rung)));
      }
      plan(event, at, planned, after);
    }
  }
}

void Alarms::ring(const Key& key, std::int64_t now) {
  Planned& planned = planned_[key.event][key.trigger];
  const std::int64_t tolerated = now - limits_.late.count();
  Alarm missed{key.event, key.trigger, key.due, key.due, 0};
  std::optional<std::int64_t> inTime;
  std::optional<std::int64_t> due = key.due;
  for (std::int64_t count = 0; due && *due <= now; ++count) {
    // Of several that are late within the tolerance, as of one that comes every minute, the last one counts.
    if (inTime || *due < tolerated) {
      missed.last = inTime.value_or(*due);
      ++missed.missed;
    }
    inTime = *due >= tolerated ? due : std::nullopt;
    due = NextDue(clock_, place_, planned.trigger, count < kMostCounted ? *due : std::max(*due, tolerated));
  }
  if (inTime) {
    planned.rung = *inTime;
    planned.rungOffset = *inTime == key.due ? planned.dueOffset : clock_.offset(*inTime);
  }
  plan(key.event, key.trigger, planned, inTime.value_or(now));
  if (missed.missed > 0) heard_(missed);
  if (inTime) heard_({key.event, key.trigger, *inTime, *inTime, 0});
}

// What rings now comes to its evaluation a little later, so what is kept is what was seen to the last time.
void Alarms::keep(std::int64_t now) {
  if (memory_ == nullptr) return;
  if (now >= keptAt_ && now - keptAt_ < limits_.keep.count()) return;
  memory_->keep(std::min(seenTo_, now));
  seenTo_ = keptAt_ = now;
}

void Alarms::wind() {
  timer_->enabled(!keys_.empty() || memory_ != nullptr);
  base::Milliseconds left = limits_.look;
  if (!keys_.empty()) left = base::Milliseconds(std::max<std::int64_t>(keys_.begin()->due - clock_.now(), 1));
  if (waiting_) left = std::max(until_ - loop_.now(), base::Milliseconds(1));
  timer_->interval(std::min(left, waiting_ ? limits_.start : limits_.look));
}

}  // namespace standin
