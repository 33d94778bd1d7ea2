#pragma once
#include <cstdint>

namespace player {

/// The codes of the plug-in's triggers.
enum TriggerCode : std::int32_t {
  kPlaybackEnded = 1,
  kPlaybackStarted = 3,
  kTransitioningTrigger = 9,
  kInitializationCompleted = 10,
};

/// Where the player's logic tells the house that something has happened.
class TriggerSink {
 public:
  TriggerSink() = default;
  TriggerSink(const TriggerSink&) = delete;
  TriggerSink& operator=(const TriggerSink&) = delete;
  TriggerSink(TriggerSink&&) = delete;
  TriggerSink& operator=(TriggerSink&&) = delete;
  virtual ~TriggerSink() = default;
  /// Fires one trigger; a code that is none does nothing. Never throws.
  virtual void ActionTrigger(std::int32_t code) = 0;
};

}  // namespace player
