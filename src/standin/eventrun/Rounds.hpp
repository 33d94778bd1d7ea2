#pragma once
#include <cstdint>
#include <map>
#include <memory>

#include "base/Loop.hpp"

namespace standin {

/// What one thing that happened in the house has led to: how often each event has been triggered by it, at
/// one or more removes.
struct Chain {
  std::map<std::int32_t, int> rounds{};
  base::Milliseconds since{0};
};

/// Where an action reaches in the house.
struct Reach {
  bool player = false;      ///< it can move the player
  std::int32_t device = 0;  ///< the device that it sets, or 0
  bool script = false;      ///< it runs a script, which can do anything while it runs
};

/// Tells events that trigger each other in a circle from those that are triggered often: an event that fires
/// another hands its chain on, and what comes in shortly after an action is taken for its echo where the
/// action can have caused it. A sensor that no action sets is never an echo, however often it changes.
class Rounds {
 public:
  struct Limits {
    int most = 20;                                      ///< rounds that an event may go within one chain
    base::Milliseconds echo = std::chrono::seconds(3);  ///< how soon the house answers to an action
    base::Milliseconds age = std::chrono::minutes(10);  ///< of a chain that still has echoes
  };
  explicit Rounds(base::Loop& loop) : Rounds(loop, Limits()) {}
  Rounds(base::Loop& loop, Limits limits) : loop_(loop), limits_(limits) {}

  /// For what nobody in the house has caused: a time of day, a press of a button.
  [[nodiscard]] std::shared_ptr<Chain> fresh() const;

  // For what comes in from the house: the chain that it is taken for an echo of, or one of its own.
  /// The plug-in tells of the player.
  [[nodiscard]] std::shared_ptr<Chain> ofPlugin() const;
  /// A script asks.
  [[nodiscard]] std::shared_ptr<Chain> ofScript() const;
  /// A device has changed; `plugins`: the plug-in sets it as the player goes.
  [[nodiscard]] std::shared_ptr<Chain> ofDevice(std::int32_t ref, bool plugins) const;

  /// An action of the chain has begun to reach out, or has just ended.
  void acted(const std::shared_ptr<Chain>& chain, const Reach& reach, bool ended);
  /// Counts a round of the event; false when it is one too many. Then the circle is cut, and what comes in
  /// next begins a chain of its own.
  bool admits(Chain& chain, std::int32_t event);

 private:
  struct Echo {
    std::shared_ptr<Chain> chain{};
    base::Milliseconds until{0};
  };
  [[nodiscard]] bool sounds(const Echo& echo) const;
  [[nodiscard]] std::shared_ptr<Chain> chainOf(const Echo& echo) const;

  base::Loop& loop_;
  Limits limits_;
  Echo plugin_;                           ///< of an action that can have moved the player
  Echo script_;                           ///< of a script
  Echo running_;                          ///< of a script that may still run, and set any device
  std::map<std::int32_t, Echo> devices_;  ///< of those that have been set
};

}  // namespace standin
