#pragma once
#include <string>

#include "base/Platform.hpp"
#include "player/PopupView.hpp"
#include "player/WMPCalls.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/PluginState.hpp"

namespace player {

/// What the media devices say about the piece that plays.
class MediaStatus {
 public:
  /// The window height value without and with a cover, in twips.
  static constexpr std::int32_t kHeightWithoutCover = 2970;
  static constexpr std::int32_t kHeightWithCover = 6540;

  MediaStatus(WMPPlayer& form, WMPCalls& calls, plugin::HostServices& host, const plugin::PluginState& state,
              base::Platform& platform, PopupView& popup)
      : form_(form), calls_(calls), host_(host), state_(state), platform_(platform), popup_(popup) {}

  /// Tells all media devices that nothing plays, and sends the player's own modes round again so that their
  /// devices are right. Failures are skipped.
  void ClearMediaStatus();
  /// Puts the icon and `text` on the device "Media Player {device}". Throws what the host throws.
  void publish(const std::string& device, const std::string& text);
  /// Takes the last cover off the popup window.
  void clearCover();

 private:
  WMPPlayer& form_;
  WMPCalls& calls_;
  plugin::HostServices& host_;
  const plugin::PluginState& state_;
  base::Platform& platform_;
  PopupView& popup_;
};

}  // namespace player
