#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/Loop.hpp"
#include "player/MediaStatus.hpp"
#include "player/TriggerSink.hpp"
#include "plugin/host/Loggers.hpp"

namespace player {

/// Follows the player from state to state: publishes status and titles, fires the triggers "Playback
/// Started", "Playback Ended" and "Transitioning", starts the cover search.
class PlayStateTracker {
 public:
  PlayStateTracker(base::Loop& loop, WMPPlayer& form, MediaStatus& media, TriggerSink& triggers,
                   plugin::HostServices& host, plugin::Loggers& loggers, const plugin::PluginState& state);

  /// Handles one play state. Never throws.
  void MyPlayStateChange(std::int32_t newState);

  /// What the station that plays says now goes on the title's device. No state changes by it, so nothing else
  /// is told. Never throws.
  void StreamTitleChange();

  /// The player's `status` at the state handled last.
  [[nodiscard]] const std::string& PlayerStatusText() const { return PlayerStatusText_; }
  [[nodiscard]] std::int32_t LastPlayState() const { return LastPlayState_; }
  /// True from the first handled playing state until a stopped or ready state.
  [[nodiscard]] bool PlaybackActive() const { return PlaybackActive_; }
  [[nodiscard]] const std::string& LastAlbum() const { return LastAlbum_; }
  /// The one-shot timer whose event searches for a cover, so that the search does not run inside the
  /// handling of a state.
  [[nodiscard]] base::Timer& FindCoverArt() { return *FindCoverArt_; }
  /// What that event calls, if anything.
  std::function<void()> GetCoverImage{};

 private:
  void follow(std::int32_t newState);
  void playing();
  void publishTitles();
  std::string currentAlbum();
  /// The name of what plays, or of what a station says that it plays.
  std::string currentTitle();

  WMPPlayer& form_;
  MediaStatus& media_;
  TriggerSink& triggers_;
  plugin::HostServices& host_;
  plugin::Loggers& loggers_;
  const plugin::PluginState& state_;
  std::unique_ptr<base::Timer> FindCoverArt_;
  std::string PlayerStatusText_;
  std::int32_t LastPlayState_ = 0;
  bool PlaybackActive_ = false;
  std::string LastAlbum_;
};

}  // namespace player
