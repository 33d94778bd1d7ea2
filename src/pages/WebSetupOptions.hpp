#pragma once
#include <array>
#include <string>

#include "plugin/host/PluginState.hpp"
#include "plugin/host/Settings.hpp"

namespace pages {

/// One post of the setup page. A box that is not ticked is not posted, so that a missing one counts as off.
struct SetupPost {
  std::string button = "None";
  std::string page = "None";
  std::string WhileSpeaking = "Pause";
  bool AlwaysOnTop = false;
  bool RecreateDevices = false;
  bool SpeakErrors = false;
  bool UpdateQuickPlay = false;
  bool CoverArt = false;
  bool Visualizations = false;
  bool DebugMessages = false;
  bool FullScreenVideo = false;
  bool TrayIcon = false;
  bool RefreshActions = false;
  bool VRCategoryRequired = false;
};

/// A check box of the setup page.
struct SetupBox {
  const char* name;  ///< also of the posted argument, there without regard to case
  const char* label;
  bool SetupPost::*posted;
  /// Whether the page shows it ticked. Throws what reading a setting throws.
  bool (*ticked)(const plugin::PluginState& state, const plugin::Settings& settings);
  bool greyedWhenTicked = false;
};

/// All boxes in the order of the page.
const std::array<SetupBox, 11>& SetupBoxes();

/// Puts a posted argument into its place. False for a name that the page doesn't have. Throws number 13 for
/// a box whose value is no boolean word.
bool TakeArgument(SetupPost& post, const std::string& name, const std::string& value);

}  // namespace pages
