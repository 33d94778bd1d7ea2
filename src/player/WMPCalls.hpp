#pragma once
#include <cstdint>
#include <string>

#include "base/Loop.hpp"
#include "player/PopupView.hpp"
#include "player/StateQueue.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/PluginState.hpp"
#include "plugin/host/Settings.hpp"

namespace player {

/// One small operation for each thing that can be done to the player. Every command of devices, menus,
/// buttons, voice, scripts and windows comes through here. Each asks whether the step is available now and
/// does nothing when it is not. All run with failures skipped: none throws, none reports.
class WMPCalls {
 public:
  WMPCalls(WMPPlayer& form, StateQueue& queue, plugin::HostServices& host, plugin::Settings& settings,
           plugin::PluginState& state, PopupView& popup, base::Loop& loop)
      : form_(form),
        queue_(queue),
        host_(host),
        settings_(settings),
        state_(state),
        popup_(popup),
        loop_(loop) {}

  /// True while the player plays or scans.
  bool IsPlaying();
  void StopPlayback();
  void ResumePlayback();
  void PauseResume();
  void PreviousTrack();
  void NextTrack();
  void FastReverse();
  void FastForward();
  void RestartPlayback();
  /// `drive` counts from 0.
  void EjectDrive(std::int16_t drive);

  /// `percent` and `value` in hundredths of the full volume. Volume 0 and mute go together on the way down,
  /// and any other change of the volume turns mute off.
  void VolumeUp(std::int16_t percent);
  void VolumeDown(std::int16_t percent);
  void SetVolume(std::int16_t value);

  // The setters take a value that converts to boolean, or the word "toggle" in any case. A value that can't
  // be converted leaves the present one.
  void SetMute(const base::Value& value);
  void SetShuffleMode(const base::Value& value);
  void SetLoopMode(const base::Value& value);
  void SetDisplayControls(const base::Value& value);
  void SetFullScreenVideo(const base::Value& value);
  void SetShowVisualizations(const base::Value& value);
  void SetShowCoverArt(const base::Value& value);
  void SetAlwaysOnTop(const base::Value& value);

 private:
  [[nodiscard]] std::int32_t playState();
  [[nodiscard]] bool available(const char* step);
  void playIfStopped();
  void setMode(const char* mode, const base::Value& value);
  void setWindowFlag(bool& flag, const char* key, const char* menuItem, const base::Value& value);

  WMPPlayer& form_;
  StateQueue& queue_;
  plugin::HostServices& host_;
  plugin::Settings& settings_;
  plugin::PluginState& state_;
  PopupView& popup_;
  base::Loop& loop_;
};

}  // namespace player
