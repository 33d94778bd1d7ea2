#include "pages/WebSetupOptions.hpp"

#include "base/Text.hpp"

namespace pages {

namespace {

using plugin::PluginState;
using plugin::Settings;

/// A box that shows a flag of the plug-in.
template <bool PluginState::*flag>
bool Held(const PluginState& state, const Settings& /*settings*/) {
  return state.*flag;
}

}  // namespace

const std::array<SetupBox, 11>& SetupBoxes() {
  static const std::array<SetupBox, 11> kBoxes{{
      {"AlwaysOnTop", "Player Controls stay Always On Top", &SetupPost::AlwaysOnTop,
       Held<&PluginState::AlwaysOnTop>},
      // While there are no devices they are made anyhow: nothing is left to choose.
      {"RecreateDevices", "Recreate All Devices at next startup", &SetupPost::RecreateDevices,
       [](const PluginState&, const Settings& settings) {
         return settings.text("HouseCodeSet", "-1") == "-1";
       },
       true},
      {"UpdateQuickPlay", "Update Quick Play &amp; VR Events on startup", &SetupPost::UpdateQuickPlay,
       [](const PluginState&, const Settings& settings) { return settings.flag("UpdateMediaEvents", true); }},
      {"SpeakErrors", "Speak Playback Error Messages", &SetupPost::SpeakErrors,
       [](const PluginState&, const Settings& settings) {
         return settings.flag("SpeakPlaybackErrors", true);
       }},
      {"CoverArt", "Show Album Cover Art", &SetupPost::CoverArt, Held<&PluginState::ShowCoverArt>},
      {"Visualizations", "Show Visualizations (CPU intensive)", &SetupPost::Visualizations,
       Held<&PluginState::ShowVisualizations>},
      {"FullScreenVideo", "Show Video Full Screen", &SetupPost::FullScreenVideo,
       Held<&PluginState::FullScreenVideo>},
      {"TrayIcon", "Show Tray Icon", &SetupPost::TrayIcon, Held<&PluginState::TrayIcon>},
      {"RefreshActions", "Always Refresh Media Player Event Actions (Slow with large media libraries)",
       &SetupPost::RefreshActions, Held<&PluginState::RefreshActions>},
      {"VRCategoryRequired", "Require Category for Voice Recognition", &SetupPost::VRCategoryRequired,
       Held<&PluginState::VRCategoryRequired>},
      {"DebugMessages", "Verbose Logging (debugging)", &SetupPost::DebugMessages,
       Held<&PluginState::DebugMessages>},
  }};
  return kBoxes;
}

bool TakeArgument(SetupPost& post, const std::string& name, const std::string& value) {
  if (base::SameText(name, "button")) {
    post.button = value;
  } else if (base::SameText(name, "wmp_page")) {
    post.page = value;
  } else if (base::SameText(name, "WhileSpeaking")) {
    post.WhileSpeaking = value;
  } else if (!base::SameText(name, "ref_page") && !base::SameText(name, "Dummy")) {
    for (const SetupBox& box : SetupBoxes()) {
      if (!base::SameText(name, box.name)) continue;
      post.*box.posted = base::ToBoolean(value);
      return true;
    }
    return false;
  }
  return true;
}

}  // namespace pages
