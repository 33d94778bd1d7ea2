#pragma once
#include <optional>
#include <string>

#include "automation/ActionString.hpp"
#include "base/Loop.hpp"
#include "player/WMPCalls.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Neighbours.hpp"
#include "plugin/host/PluginState.hpp"

namespace automation {

/// Carries out what an event's action string says: first the play mode, then the action proper, so that a
/// shuffled playlist starts shuffled.
class ActionRun {
 public:
  ActionRun(player::WMPCalls& calls, plugin::LibraryCalls& library, plugin::HostServices& host,
            plugin::PluginState& state, const base::Loop& loop)
      : calls_(calls), library_(library), host_(host), state_(state), loop_(loop) {}

  /// Runs with failures skipped: never throws, reports nothing. An action that starts the player can fire the
  /// trigger of its own event, so the same string is carried out again only when more than five seconds have
  /// gone by since it last was; the attempts between are warned of and change nothing.
  void TriggerAction(const std::string& ActionStr);

 private:
  void applyMode(const std::string& mode);
  void act(const ActionString& a, const std::string& word);

  player::WMPCalls& calls_;
  plugin::LibraryCalls& library_;
  plugin::HostServices& host_;
  plugin::PluginState& state_;
  const base::Loop& loop_;
  std::string LastAction_;
  std::optional<base::Milliseconds> LastActionTime_;
};

}  // namespace automation
