#pragma once
#include <cstdint>
#include <map>
#include <memory>

#include "base/Loop.hpp"

namespace standin {

/// What one thing that happened in the house has led to, at one or more removes.
struct Chain {
  base::Milliseconds since{0};
  int evaluations = 0;
  bool cut = false;  ///< nothing more comes of it
};

/// A trigger of an event within a chain, with those before it that have led to it.
struct Cause {
  std::shared_ptr<Chain> chain{};
  std::shared_ptr<const Cause> before{};
  std::int32_t event = 0;  ///< 0 for what stands at the beginning
};
using CausePtr = std::shared_ptr<const Cause>;

/// Where an action reaches in the house.
struct Reach {
  bool player = false;      ///< it can move the player
  std::int32_t device = 0;  ///< the device that it sets, or 0
  bool script = false;      ///< it runs a script, which can do anything while it runs
};

/// Tells events that trigger each other in a circle from those that are triggered often: an event that fires
/// another is the cause of what that does, and what comes in shortly after an action is taken for its echo
/// where the action can have caused it. A sensor that no action sets is never an echo, however often it
/// changes.
class Rounds {
 public:
  struct Limits {
    int most = 20;                                      ///< how often an event may be among its own causes
    int evaluations = 1000;                             ///< of one chain, however it branches
    base::Milliseconds echo = std::chrono::seconds(3);  ///< how soon the house answers to an action
    base::Milliseconds age = std::chrono::minutes(10);  ///< of a chain that still has echoes
  };
  explicit Rounds(base::Loop& loop) : Rounds(loop, Limits()) {}
  Rounds(base::Loop& loop, Limits limits) : loop_(loop), limits_(limits) {}

  /// For what nobody in the house has caused: a time of day, a press of a button.
  [[nodiscard]] CausePtr fresh() const;

  // For what comes in from the house: what it is taken for an echo of, or a beginning.
  /// The plug-in tells of the player.
  [[nodiscard]] CausePtr ofPlugin() const;
  /// A script asks.
  [[nodiscard]] CausePtr ofScript() const;
  /// A device has changed; `plugins`: the plug-in sets it as the player goes.
  [[nodiscard]] CausePtr ofDevice(std::int32_t ref, bool plugins) const;

  /// An action has begun to reach out, or has just ended; `cause` is what had its event run.
  void acted(const CausePtr& cause, const Reach& reach, bool ended);
  /// The cause that the event runs of when it is triggered by another; nothing when that is one round too
  /// many, or one evaluation. Then the whole chain is cut, and what comes in next begins one of its own.
  CausePtr admit(const CausePtr& cause, std::int32_t event);

 private:
  struct Echo {
    CausePtr cause{};
    base::Milliseconds until{0};
  };
  [[nodiscard]] bool sounds(const Echo& echo) const;
  [[nodiscard]] CausePtr causeOf(const Echo& echo) const;

  base::Loop& loop_;
  Limits limits_;
  Echo plugin_;                           ///< of an action that can have moved the player
  Echo script_;                           ///< of a script
  Echo running_;                          ///< of a script that may still run, and set any device
  std::map<std::int32_t, Echo> devices_;  ///< of those that have been set
};

}  // namespace standin
