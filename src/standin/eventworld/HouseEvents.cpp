#include "standin/eventworld/HouseEvents.hpp"

#include <utility>

namespace standin {

HouseEvents::HouseEvents(const Parts& parts)
    : house_(parts.house),
      teller_(parts.loop, parts.house.live),
      world_(parts.loop, parts.house, parts.objects, parts.plugin, parts.speech, parts.scripts, parts.runner),
      engine_({parts.loop, parts.rules, world_, parts.words, parts.history, parts.clock, &parts.alarms},
              [this](std::int32_t event) { teller_.changed(event); }) {
  house_.onTrigger = [this](const std::string& composed) {
    world_.pluginTriggered();
    return engine_.pluginTriggered(composed);
  };
  house_.onScriptTrigger = [this](const std::string& event) { return engine_.scriptTriggers(event); };
  devices_ =
      house_.hearDevices([this](const Device& device) { engine_.deviceChanged(world_.factsOf(device)); });
  parts.rules.onChange([this, alive = std::weak_ptr(alive_)](std::int32_t event) {
    if (alive.lock()) teller_.changed(event);
  });
  parts.plugin.onPhase([this, alive = std::weak_ptr(alive_)](PluginPhase phase) {
    if (!alive.lock()) return;
    world_.pluginIsAnother();
    begin(phase);
  });
}

HouseEvents::~HouseEvents() {
  house_.onTrigger = [](const std::string&) { return false; };
  house_.onScriptTrigger = [](const std::string&) { return false; };
}

// Once: a plug-in that is lost and comes back is no start of the house.
void HouseEvents::begin(PluginPhase phase) {
  if (phase != PluginPhase::kReady || std::exchange(begun_, true)) return;
  engine_.houseStarted();
}

}  // namespace standin
