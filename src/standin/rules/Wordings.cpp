#include "standin/rules/Wordings.hpp"

#include <algorithm>
#include <array>

#include "base/Text.hpp"
#include "standin/rules/CutText.hpp"
#include "standin/rules/RuleJson.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestName = 120;
constexpr std::array kDays{"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};

template <class... Handlers>
struct Each : Handlers... {
  using Handlers::operator()...;
};
template <class... Handlers>
Each(Handlers...) -> Each<Handlers...>;

std::string Quoted(const std::string& text) { return "“" + CutText(text, kLongestName) + "”"; }

std::string OnDays(Weekdays days) {
  const std::string words = DayWords(days);
  return words.empty() ? words : " on " + words;
}

std::string Counted(std::int64_t count, const std::string& unit) {
  return std::to_string(count) + " " + unit + (count == 1 ? "" : "s");
}

std::string SunWords(const SunTrigger& sun) {
  const std::string what = sun.rise ? "sunrise" : "sunset";
  if (sun.offset == 0) return (sun.rise ? "Sunrise" : "Sunset") + OnDays(sun.days);
  return DurationWords(std::int64_t{60} * std::abs(sun.offset)) + (sun.offset < 0 ? " before " : " after ") +
         what + OnDays(sun.days);
}

std::string EveryWords(std::int32_t minutes) {
  if (minutes == 1) return "Every minute";
  if (minutes == 60) return "Every hour";
  return "Every " + DurationWords(std::int64_t{60} * minutes);
}

/// "on" or "off" where a status says so.
std::string StatusWords(const std::string& value) {
  if (value == std::to_string(kStatusOn)) return "on";
  if (value == std::to_string(kStatusOff)) return "off";
  return {};
}

std::string FieldOf(DeviceField field) {
  return field == DeviceField::kText ? "text" : field == DeviceField::kValue ? "value" : "status";
}

std::string ValueOf(DeviceField field, const std::string& value) {
  return field == DeviceField::kText ? Quoted(value) : CutText(value, kLongestName);
}

std::string TriggerOf(const std::string& device, const DeviceTrigger& asked) {
  const std::string its = device + "'s " + FieldOf(asked.field);
  const std::string value = ValueOf(asked.field, asked.value);
  switch (asked.is) {
    case Compared::kChanges: return its + " changes";
    case Compared::kAbove: return its + " goes above " + value;
    case Compared::kBelow: return its + " goes below " + value;
    case Compared::kEquals: break;
  }
  const std::string status = asked.field == DeviceField::kStatus ? StatusWords(asked.value) : std::string();
  return status.empty() ? its + " becomes " + value : device + " turns " + status;
}

std::string ConditionOf(const std::string& device, const DeviceCondition& asked, const std::string& is) {
  const std::string status = asked.field == DeviceField::kStatus && asked.is == Compared::kEquals
                                 ? StatusWords(asked.value)
                                 : std::string();
  if (!status.empty()) return device + is + status;
  const std::string how = asked.is == Compared::kAbove   ? "above "
                          : asked.is == Compared::kBelow ? "below "
                                                         : "";
  return device + "'s " + FieldOf(asked.field) + is + how + ValueOf(asked.field, asked.value);
}

std::string FadeWords(const FadeAction& fade) {
  return "Fade the volume to " + std::to_string(fade.to) + " over " + DurationWords(fade.seconds) +
         (fade.then == FadeAction::Then::kStop    ? ", then stop"
          : fade.then == FadeAction::Then::kPause ? ", then pause"
                                                  : "");
}

}  // namespace

std::string DurationWords(std::int64_t seconds) {
  if (seconds != 0 && seconds % 3600 == 0) return Counted(seconds / 3600, "hour");
  if (seconds != 0 && seconds % 60 == 0) return Counted(seconds / 60, "minute");
  return Counted(seconds, "second");
}

std::string DayWords(Weekdays days) {
  if (days == 0 || days == 0x7F) return {};
  std::string words;
  for (std::size_t first = 0; first < kDays.size(); ++first) {
    if ((days >> first & 1) == 0) continue;
    std::size_t last = first;
    while (last + 1 < kDays.size() && (days >> (last + 1) & 1) != 0) ++last;
    if (last < first + 2) last = first;  // two are named both
    if (!words.empty()) words += ", ";
    words += kDays.at(first);
    if (last > first) words += std::string(" to ") + kDays.at(last);
    first = last;
  }
  return words;
}

std::string Wordings::device(std::int32_t ref) const {
  const Device* device = house_.devices.byRef(ref);
  return device == nullptr ? "Device " + std::to_string(ref) + " (gone)"
                           : base::RepairUtf8(CutText(device->fullName(), kLongestName));
}

std::string Wordings::eventOf(std::int32_t id) const {
  const Event* event = house_.events.byId(id);
  return event == nullptr ? "event " + std::to_string(id) + " (gone)" : Quoted(base::RepairUtf8(event->name));
}

std::string Wordings::of(const Trigger& trigger) const {
  return std::visit(
      Each{[&](const PluginTrigger& plugin) { return plugin_.of(PluginPart::kTrigger, plugin.stored); },
           [](const TimeTrigger& time) { return ClockOf(time.minute) + OnDays(time.days); },
           [](const SunTrigger& sun) { return SunWords(sun); },
           [](const EveryTrigger& every) { return EveryWords(every.minutes); },
           [](const StartTrigger&) { return std::string("The house starts"); },
           [&](const DeviceTrigger& asked) { return TriggerOf(device(asked.ref), asked); },
           [](const ScriptTrigger&) { return std::string("A script asks for it"); }},
      trigger);
}

std::string Wordings::of(const Condition& condition) const {
  const bool no = condition.negated;
  const std::string is = no ? " is not " : " is ";
  return std::visit(
      Each{[&](const PluginCondition& plugin) {
             return (no ? "Not: " : "") + plugin_.of(PluginPart::kCondition, plugin.stored);
           },
           [&](const DeviceCondition& asked) { return ConditionOf(device(asked.ref), asked, is); },
           [&](const WindowCondition& window) {
             return "It" + is + "between " + ClockOf(window.from) + " and " + ClockOf(window.to);
           },
           [&](const DaysCondition& days) {
             const std::string words = DayWords(days.days);
             return "It" + is + (words.empty() ? "any day" : words);
           },
           [&](const EventCondition& asked) {
             return "Since this was asked last, " + eventOf(asked.event) + (no ? " has not run" : " has run");
           }},
      condition.asked);
}

std::string Wordings::wordsOf(const DeviceAction& action) const {
  const std::string name = device(action.ref);
  switch (action.kind) {
    case DeviceAction::Kind::kOn: return "Turn " + name + " on";
    case DeviceAction::Kind::kOff: return "Turn " + name + " off";
    case DeviceAction::Kind::kPress: return "Press " + Quoted(action.caption) + " of " + name;
    case DeviceAction::Kind::kValue: break;
  }
  return "Set " + name + " to " + std::to_string(action.value);
}

std::string Wordings::wordsOf(const WakeAction& wake) const {
  std::string words = "Wake up with ";
  for (const std::string& choice : wake.choices) words += plugin_.of(PluginPart::kAction, choice) + ", else ";
  words += wake.words.empty() ? "a tone" : "a tone and " + Quoted(wake.words);
  return words + "; the volume rises to " + std::to_string(wake.volume) +
         (wake.seconds == 0 ? " at once" : " over " + DurationWords(wake.seconds));
}

std::string Wordings::of(const Action& action) const {
  return std::visit(
      Each{[&](const PluginAction& plugin) { return plugin_.of(PluginPart::kAction, plugin.stored); },
           [&](const DeviceAction& device) { return wordsOf(device); },
           [](const SpeakAction& speak) { return "Say " + Quoted(speak.text); },
           [](const WaitAction& wait) { return "Wait " + DurationWords(wait.seconds); },
           [](const ScriptAction& script) { return "Run the script " + Quoted(script.name); },
           [&](const EventAction& event) { return "Trigger " + eventOf(event.event); },
           [](const FadeAction& fade) { return FadeWords(fade); },
           [&](const WakeAction& wake) { return wordsOf(wake); }},
      action);
}

}  // namespace standin
