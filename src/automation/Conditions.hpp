#pragma once
#include <cstdint>
#include <string>

#include "player/WMPCalls.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/PluginState.hpp"

namespace automation {

/// What an event of the host can ask of the player before it runs. A condition string has its fields
/// separated by the character of code 2: one of the host's, the dialog's title, and the values of its two
/// lists. All operations run with failures skipped: none throws.
class Conditions {
 public:
  Conditions(player::WMPPlayer& form, player::WMPCalls& calls, const plugin::PluginState& state)
      : form_(form), calls_(calls), state_(state) {}

  /// The dialog of condition 1, the player's state, or 2, its mode; empty for any other number.
  static std::string ConditionUI(std::int16_t cond_num);
  /// A condition in one line; empty for one that is not the plug-in's.
  static std::string ConditionUIFormat(const std::string& cond_str);
  /// Whether it holds now. False before start-up is over, and for what the plug-in does not know.
  bool ConditionCheck(const std::string& cond_str);

 private:
  bool measure(const std::string& tab, const std::string& word, bool& answer);

  player::WMPPlayer& form_;
  player::WMPCalls& calls_;
  const plugin::PluginState& state_;
};

}  // namespace automation
