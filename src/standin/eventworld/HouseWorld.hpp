#pragma once
#include "standin/eventrun/EventWorld.hpp"
#include "standin/eventworld/KeeperCalls.hpp"
#include "standin/eventworld/RepeatGuard.hpp"
#include "standin/eventworld/ScriptTurns.hpp"
#include "standin/eventworld/Wake.hpp"
#include "standin/house/House.hpp"
#include "standin/player/DeviceCommands.hpp"
#include "standin/voice/Speech.hpp"

namespace standin {

/// The real house, as events see it and act in it.
class HouseWorld : public EventWorld {
 public:
  HouseWorld(base::Loop& loop, House& house, HouseObjects& objects, PluginKeeper& plugin, Speech& speech,
             const ScriptStore& scripts, ScriptRunner& runner);

  void check(const std::string& stored, Checked checked) override;
  [[nodiscard]] std::optional<DeviceFacts> device(std::int32_t ref) const override;
  std::unique_ptr<Deed> carryOut(const Action& action, Done done) override;
  void note(const std::string& kind, const std::string& text) override { house_.log.write(kind, text); }

  /// What events know of a device of the house.
  [[nodiscard]] DeviceFacts factsOf(const Device& device) const;

  /// The plug-in has told a trigger: what was in the player before somebody was woken may come back now.
  void pluginTriggered();
  /// The plug-in has started, or has gone.
  void pluginIsAnother() { guard_->forget(); }

 private:
  std::unique_ptr<Deed> tell(const DeviceAction& action, Done done);

  base::Loop& loop_;
  House& house_;
  Speech& speech_;
  DeviceCommands devices_;
  KeeperCalls plugin_;
  ScriptTurns scripts_;
  WakeMemory memory_;
  std::shared_ptr<RepeatGuard> guard_;  ///< calls under way may outlive the house
};

}  // namespace standin
