#pragma once
#include <cstdint>
#include <string>

#include "base/Value.hpp"
#include "player/WMPCalls.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/PluginState.hpp"

namespace plugin {

/// Gives way to the host's speech, which comes from the same speakers: the first start of speech over running
/// music pauses or mutes the player, as `WhileSpeaking` wants it, and the last stop undoes that.
class SpeechInterlock {
 public:
  SpeechInterlock(player::WMPPlayer& form, player::WMPCalls& calls, HostServices& host,
                  const PluginState& state)
      : form_(form), calls_(calls), host_(host), state_(state) {}

  /// An event of the host: its type mask, and for audio events, which alone matter, whether audio has
  /// started. Runs with failures skipped: never throws.
  void VXEvent(const base::Array& parms);

 private:
  /// True for the first one of those that overlap.
  bool countStart();
  void countStop();
  void interrupt();
  void mute();
  void restore();

  player::WMPPlayer& form_;
  player::WMPCalls& calls_;
  HostServices& host_;
  const PluginState& state_;
  std::int16_t AudioCount_ = 0;     ///< starts minus stops; a lost stop leaves it raised
  bool AudioDebug_ = false;         ///< for good from the first surplus stop: each event is logged
  bool SpeechInterrupted_ = false;  ///< the plug-in has interrupted playback
  std::string SpeechAction_;        ///< "Mute" or "Pause": what has to be undone
};

}  // namespace plugin
