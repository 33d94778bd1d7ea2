#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "standin/eventworld/PluginCalls.hpp"
#include "standin/eventworld/RawPlayer.hpp"
#include "standin/eventworld/RepeatGuard.hpp"

namespace standin {

/// What was in the player before somebody was woken. It comes back when the player has stopped, unless
/// somebody has put something else into it since.
class WakeMemory {
 public:
  /// `failed` is told why something could not be put back.
  WakeMemory(base::Loop& loop, PluginCalls& plugin, EventWorld::Done failed);

  /// A waking begins: what is in the player is remembered, but not what an earlier waking has put there.
  void remember(const PlayerPlace& place, const std::string& mark);
  /// What the waking plays, as `RawPlayer::mark` tells it.
  void plays(std::string mark) { mark_ = std::move(mark); }
  /// The waking is heard: from now on what was there before comes back when the player stops.
  void watch() { watching_ = true; }
  /// Puts it back at once, or when the plug-in can be asked.
  void putBack();
  /// The player has stopped, or may have.
  void playbackEnded();
  [[nodiscard]] const std::optional<PlayerPlace>& place() const { return place_; }

 private:
  void look();

  PluginCalls& plugin_;
  EventWorld::Done failed_;
  std::optional<PlayerPlace> place_;
  std::string mark_;
  bool watching_ = false;
  std::unique_ptr<base::Timer> soon_;
};

/// Has a tone and then the words heard; `said` is called when they have been, or with why they were not.
using WakeWords = std::function<void(const std::string& words, EventWorld::Done said)>;

/// Plays the first of the action's choices that is heard: the player's position moves within ten seconds. The
/// volume rises from silence then. When none is heard, what was in the player is put back, and a tone and the
/// words are heard instead.
std::unique_ptr<Deed> BeginWake(base::Loop& loop, PluginCalls& plugin, WakeWords say, WakeMemory& memory,
                                std::shared_ptr<RepeatGuard> guard, const WakeAction& action,
                                EventWorld::Done done);

}  // namespace standin
