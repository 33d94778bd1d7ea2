#pragma once
#include <functional>
#include <string>

#include "player/PopupView.hpp"
#include "player/StaleMarks.hpp"
#include "player/StateQueue.hpp"
#include "player/WMP9.hpp"
#include "player/WMPCalls.hpp"
#include "plugin/host/Loggers.hpp"
#include "plugin/host/Settings.hpp"

namespace player {

/// Handles what the player reports. Every handler is short, runs with failures skipped and throws nothing.
class PlayerEvents : public WMP9Events {
 public:
  PlayerEvents(WMPPlayer& form, WMPCalls& calls, StateQueue& queue, StaleMarks& stale,
               plugin::HostServices& host, plugin::Settings& settings, plugin::Loggers& loggers,
               const plugin::PluginState& state, PopupView& popup)
      : form_(form),
        calls_(calls),
        queue_(queue),
        stale_(stale),
        host_(host),
        settings_(settings),
        loggers_(loggers),
        state_(state),
        popup_(popup) {}

  void PlayStateChange(std::int32_t newState) override;
  void ModeChange(const std::string& modeName, bool newValue) override;
  void Error() override;
  void Warning(std::int32_t warningType, std::int32_t param, const std::string& description) override;
  void MediaCollectionChange() override;
  void PlaylistCollectionChange() override;
  void DoubleClick() override;
  void StreamTitleChange() override {
    if (streamTitleChange) streamTitleChange();
  }

  void Changed() override {
    if (changed) changed();
  }
  void Sought() override {
    if (sought) sought();
  }

  /// What is to be done when a station goes on to another title, if anything.
  std::function<void()> streamTitleChange{};
  /// For whoever shows the player elsewhere, if anybody does.
  std::function<void()> changed{};
  std::function<void()> sought{};
  std::function<void()> playlistsChanged{};

  /// Saves and publishes a mode; start-up calls it too.
  void WMP9_ModeChange(const std::string& modeName, bool newValue);

 private:
  WMPPlayer& form_;
  WMPCalls& calls_;
  StateQueue& queue_;
  StaleMarks& stale_;
  plugin::HostServices& host_;
  plugin::Settings& settings_;
  plugin::Loggers& loggers_;
  const plugin::PluginState& state_;
  PopupView& popup_;
};

}  // namespace player
