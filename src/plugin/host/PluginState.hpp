#pragma once
#include <cstdint>
#include <string>

namespace plugin {

/// The plug-in's fixed name: device location and interface, menu section, prefix of devices and log lines.
inline constexpr const char* kName = "Media Player";
/// The plug-in's file in the host's settings store.
inline constexpr const char* kSettingsFile = "vxif_WMP.ini";
inline constexpr const char* kLegalNotice = "Vantorix Media Player, published under the MIT licence";
/// Priority classes as the platform numbers them.
inline constexpr std::int32_t kPriorityNormal = 32;
inline constexpr std::int32_t kPriorityHigh = 128;
inline constexpr std::int32_t kPriorityAboveNormal = 32768;

/// The priority class that `RaisePriority` asks for on a system of that major version.
inline std::int32_t RaisedPriorityClass(std::int32_t osMajorVersion) {
  return osMajorVersion >= 5 ? kPriorityAboveNormal : kPriorityHigh;
}

/// What the whole plug-in shares. One owner, `Plugin`, holds it; everybody else is given a reference.
struct PluginState {
  bool Initialized = false;            ///< true from the end of background start-up to the start of shutdown
  bool ProgressWindowAllowed = false;  ///< no progress window shows while start-up walks the library
  std::string PluginVersion;
  std::int32_t OsMajorVersion = 0;
  std::string HouseCode;     ///< one character, shared by all devices of the plug-in
  std::string AlbumIconTag;  ///< the player icon's image tag, which every device text begins with
  std::string CoverSmallTag;
  std::string CoverSmallFile;
  std::string CoverLargeFile;

  // Settings held in memory: false and empty until background start-up has read them.
  bool DisplayControlsShown = false;  ///< the state that the popup window should have
  std::string WhileSpeaking;
  bool AlwaysOnTop = false;
  bool ShowCoverArt = false;
  bool ShowVisualizations = false;
  bool FullScreenVideo = false;
  bool TrayIcon = false;
  bool RefreshActions = false;
  bool RaisePriority = false;
  bool VRCategoryRequired = false;
  bool DebugMessages = false;
};

/// "Media Player" and a suffix such as " Status": a device's full name.
inline std::string DeviceName(const std::string& shortName) { return std::string(kName) + " " + shortName; }

}  // namespace plugin
