#include "standin/eventrun/Asking.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace standin {
namespace {

constexpr base::Milliseconds kLong = std::chrono::seconds(10);  // a plug-in that takes longer to fail hangs

std::string ClockText(std::int32_t minute) {
  const auto two = [](std::int32_t n) { return (n < 10 ? "0" : "") + std::to_string(n); };
  return two(minute / 60) + ":" + two(minute % 60);
}

const char* WeekdayText(std::int64_t day) {
  static constexpr std::array<const char*, 7> kNames = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                        "Friday", "Saturday", "Sunday"};
  return kNames[static_cast<std::size_t>(WeekdayOf(day))];
}

bool IsWithin(const WindowCondition& window, std::int32_t minute) {
  return window.from <= window.to ? minute >= window.from && minute < window.to
                                  : minute >= window.from || minute < window.to;
}

}  // namespace

Asking::Asking(const EngineParts& parts, std::int32_t event, std::shared_ptr<const Rule> rule, Asked asked)
    : parts_(parts), event_(event), rule_(std::move(rule)), asked_(std::move(asked)) {}

void Asking::begin() { next(); }

void Asking::next() {
  if (going_) return;
  going_ = true;
  // Answers that come at once are taken in this walk; one that comes later begins it anew.
  for (std::size_t asked = seen_.size(); asked < rule_->conditions.size(); ++asked) {
    ask(rule_->conditions[asked]);
    if (seen_.size() == asked) break;
  }
  going_ = false;
  if (seen_.size() < rule_->conditions.size()) return;
  const Asked told = std::exchange(asked_, nullptr);
  if (told) told(together(), seen_);
}

void Asking::ask(const Condition& condition) {
  const LocalTime now = LocalTimeAt(parts_.clock, parts_.clock.now());
  if (const auto* plugin = std::get_if<PluginCondition>(&condition.asked)) {
    askPlugin(*plugin, condition.negated);
  } else if (const auto* device = std::get_if<DeviceCondition>(&condition.asked)) {
    seeDevice(*device, condition.negated);
  } else if (const auto* event = std::get_if<EventCondition>(&condition.asked)) {
    seeEvent(*event, condition.negated);
  } else if (const auto* window = std::get_if<WindowCondition>(&condition.asked)) {
    see(ClockText(now.minute), IsWithin(*window, now.minute) != condition.negated);
  } else if (const auto* days = std::get_if<DaysCondition>(&condition.asked)) {
    see(WeekdayText(now.day), Allows(days->days, now.day) != condition.negated);
  }
}

void Asking::askPlugin(const PluginCondition& asked, bool negated) {
  if (!hangs_.empty()) return see("not asked: " + hangs_, false);
  parts_.world.check(asked.stored, [weak = weak_from_this(), at = seen_.size(), negated,
                                    since = parts_.loop.now()](const std::string& failure, bool holds) {
    const auto self = weak.lock();
    if (!self || self->seen_.size() != at) return;
    if (failure.empty()) {
      self->see(holds ? "yes" : "no", holds != negated);
    } else {
      if (self->parts_.loop.now() - since >= kLong) self->hangs_ = failure;
      self->see("could not be asked: " + failure, false);
    }
    self->next();
  });
}

void Asking::seeEvent(const EventCondition& asked, bool negated) {
  if (parts_.rules.byId(asked.event) == nullptr) return see("there is no such event", false);
  const Evaluation* other = parts_.sink.last(asked.event);
  const Evaluation* own = parts_.sink.last(event_);
  const bool ran =
      other != nullptr && (other->outcome == Outcome::kDone || other->outcome == Outcome::kRunning);
  const bool since = ran && (own == nullptr || own->id < other->id);
  see(since ? "it has run"
      : ran ? "it has not run since"
            : "it did not run when it was triggered last",
      since != negated);
}

void Asking::seeDevice(const DeviceCondition& asked, bool negated) {
  const std::optional<DeviceFacts> device = parts_.world.device(asked.ref);
  if (!device) return see("there is no such device", false);
  see(Shown(*device, asked.field), IsSo(*device, asked.field, asked.is, asked.value) != negated);
}

void Asking::see(std::string saw, bool holds) {
  seen_.push_back({parts_.words.of(rule_->conditions[seen_.size()]), std::move(saw), holds});
}

bool Asking::together() const {
  const auto holds = [](const SeenCondition& each) { return each.holds; };
  if (seen_.empty()) return true;
  return rule_->any ? std::any_of(seen_.begin(), seen_.end(), holds)
                    : std::all_of(seen_.begin(), seen_.end(), holds);
}

std::string Objection(const std::vector<SeenCondition>& seen, bool any) {
  const auto no =
      std::find_if(seen.begin(), seen.end(), [](const SeenCondition& each) { return !each.holds; });
  if (no == seen.end()) return {};
  if (!any) return no->words + " (" + no->saw + ")";
  const bool one =
      std::any_of(seen.begin(), seen.end(), [](const SeenCondition& each) { return each.holds; });
  return one ? std::string() : "None of the conditions held";
}

}  // namespace standin
