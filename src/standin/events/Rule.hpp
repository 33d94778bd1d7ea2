#pragma once
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace standin {

/// Days of the week as bits, Monday the lowest. 0 stands for every day.
using Weekdays = std::uint8_t;

/// What a device is asked for.
enum class DeviceField { kStatus, kValue, kText };
/// How it is compared. Above and below read numbers; "changes" is for triggers alone.
enum class Compared { kChanges, kEquals, kAbove, kBelow };

/// One of the plug-in's, as the plug-in's dialog has given it: the text is the plug-in's, and is stored and
/// handed back untouched.
struct PluginTrigger {
  std::string stored{};
  bool operator==(const PluginTrigger&) const = default;
};
struct TimeTrigger {
  std::int32_t minute = 0;  ///< of the day, 0 to 1439, as clocks on the wall show it
  Weekdays days = 0;
  bool operator==(const TimeTrigger&) const = default;
};
struct SunTrigger {
  bool rise = false;        ///< sunrise or sunset, at the house's place
  std::int32_t offset = 0;  ///< minutes, negative: before; up to 12 hours
  Weekdays days = 0;
  bool operator==(const SunTrigger&) const = default;
};
struct EveryTrigger {
  std::int32_t minutes = 60;  ///< 1 to 1440, counted from midnight
  bool operator==(const EveryTrigger&) const = default;
};
/// The house has started, and its plug-in is ready.
struct StartTrigger {
  bool operator==(const StartTrigger&) const = default;
};
struct DeviceTrigger {
  std::int32_t ref = 0;
  DeviceField field = DeviceField::kStatus;
  Compared is = Compared::kChanges;
  std::string value{};
  bool operator==(const DeviceTrigger&) const = default;
};
/// A script may trigger the event by its name.
struct ScriptTrigger {
  bool operator==(const ScriptTrigger&) const = default;
};
using Trigger = std::variant<PluginTrigger, TimeTrigger, SunTrigger, EveryTrigger, StartTrigger,
                             DeviceTrigger, ScriptTrigger>;

struct PluginCondition {
  std::string stored{};
  bool operator==(const PluginCondition&) const = default;
};
struct DeviceCondition {
  std::int32_t ref = 0;
  DeviceField field = DeviceField::kStatus;
  Compared is = Compared::kEquals;
  std::string value{};
  bool operator==(const DeviceCondition&) const = default;
};
/// From the first minute of the day up to, and without, the second; over midnight when it is the smaller one.
struct WindowCondition {
  std::int32_t from = 0;
  std::int32_t to = 0;
  bool operator==(const WindowCondition&) const = default;
};
struct DaysCondition {
  Weekdays days = 0;
  bool operator==(const DaysCondition&) const = default;
};
/// Another event has run, and the one that asks has not been asked since: what that one has done can be taken
/// back once.
struct EventCondition {
  std::int32_t event = 0;
  bool operator==(const EventCondition&) const = default;
};
struct Condition {
  std::variant<PluginCondition, DeviceCondition, WindowCondition, DaysCondition, EventCondition> asked{};
  bool negated = false;
  bool operator==(const Condition&) const = default;
};

struct PluginAction {
  std::string stored{};
  bool operator==(const PluginAction&) const = default;
};
/// Turns a device on or off, sets its value, or presses one of its buttons.
struct DeviceAction {
  enum class Kind { kOn, kOff, kValue, kPress };
  std::int32_t ref = 0;
  Kind kind = Kind::kOn;
  std::int32_t value = 0;
  std::string caption{};  ///< of the button
  bool operator==(const DeviceAction&) const = default;
};
struct SpeakAction {
  std::string text{};
  bool operator==(const SpeakAction&) const = default;
};
struct WaitAction {
  std::int32_t seconds = 1;  ///< 1 to 86,400
  bool operator==(const WaitAction&) const = default;
};
struct ScriptAction {
  std::string name{};
  bool operator==(const ScriptAction&) const = default;
};
/// Triggers another event; its conditions count.
struct EventAction {
  std::int32_t event = 0;
  bool operator==(const EventAction&) const = default;
};
/// Brings the volume to a level in even steps, and stops or pauses then if wished; a fade to a stop gives the
/// volume back that was there before.
struct FadeAction {
  enum class Then { kNothing, kPause, kStop };
  std::int32_t to = 0;        ///< 0 to 100
  std::int32_t seconds = 60;  ///< 1 to 7,200
  Then then = Then::kNothing;
  bool operator==(const FadeAction&) const = default;
};
/// Plays the first of some choices that is heard: the player's position must move within ten seconds of each.
/// When none is, a tone and the words. The volume rises from silence to `volume`. What was in the player
/// before is put back after a stop.
struct WakeAction {
  std::vector<std::string> choices{};  ///< the plug-in's action texts
  std::string words{};
  std::int32_t volume = 50;   ///< 1 to 100
  std::int32_t seconds = 60;  ///< of the rise, 0 to 3,600
  bool operator==(const WakeAction&) const = default;
};
using Action = std::variant<PluginAction, DeviceAction, SpeakAction, WaitAction, ScriptAction, EventAction,
                            FadeAction, WakeAction>;

/// What is done when an event is triggered while its actions still run.
enum class Again { kLeave, kRestart, kQueue, kTogether };

/// When something happens, and if it is allowed, then something is done: what an event of the house does
/// besides being spoken to.
struct Rule {
  bool on = true;
  std::vector<Trigger> triggers{};      ///< any of them
  std::vector<Condition> conditions{};  ///< asked in this order
  bool any = false;                     ///< one condition is enough, or all must hold
  std::vector<Action> actions{};        ///< one after the other
  Again again = Again::kLeave;
  bool operator==(const Rule&) const = default;
};

/// A rule with the event that it belongs to.
struct RuledEvent {
  std::int32_t id = 0;
  std::int64_t version = 0;  ///< grows with each change; a change names the version it was made from
  std::string name{};
  std::string group{};
  Rule rule{};
  bool operator==(const RuledEvent&) const = default;
};

}  // namespace standin
