#pragma once
#include <string>

#include "standin/events/Rule.hpp"

namespace support {

/// A stored text of the plug-in, written with "¦" between its fields.
inline std::string Stored(std::string text) {
  const std::string bar = "¦";
  for (std::size_t at = text.find(bar); at != std::string::npos; at = text.find(bar, at))
    text.replace(at, bar.size(), 1, '\2');
  return text;
}

/// A rule with one of every kind.
inline standin::Rule RuleOfEveryKind() {
  using namespace standin;  // NOLINT(google-build-using-namespace): the kinds are what this is about
  Rule rule;
  rule.on = false;
  rule.triggers = {PluginTrigger{Stored("Media Player¦Media Player Triggers¦Playback Ended")},
                   TimeTrigger{22 * 60, 0b0011111},
                   SunTrigger{false, -30, 0},
                   EveryTrigger{15},
                   StartTrigger{},
                   DeviceTrigger{5, DeviceField::kValue, Compared::kAbove, "2.5"},
                   ScriptTrigger{}};
  rule.conditions = {{PluginCondition{Stored("Media Player¦Media Player Status¦Playing¦Yes")}, false},
                     {DeviceCondition{5, DeviceField::kText, Compared::kEquals, "a “b”"}, true},
                     {WindowCondition{22 * 60, 6 * 60}, false},
                     {DaysCondition{0b1100000}, true},
                     {EventCondition{8}}};
  rule.any = true;
  rule.actions = {PluginAction{Stored("Media Player¦Media Player Actions¦Stop¦¦¦¦¦¦¦No Action¦")},
                  DeviceAction{5, DeviceAction::Kind::kPress, 0, "Play"},
                  DeviceAction{6, DeviceAction::Kind::kValue, 3, ""},
                  DeviceAction{7, DeviceAction::Kind::kOff, 0, ""},
                  SpeakAction{"Good night"},
                  WaitAction{90},
                  ScriptAction{"x"},
                  EventAction{3},
                  FadeAction{0, 600, FadeAction::Then::kStop},
                  WakeAction{{"one", "two"}, "Good morning", 40, 120}};
  rule.again = Again::kQueue;
  return rule;
}

inline standin::RuledEvent EventNamed(const std::string& name) {
  standin::RuledEvent event;
  event.name = name;
  event.group = "Evening";
  event.rule = RuleOfEveryKind();
  return event;
}

}  // namespace support
