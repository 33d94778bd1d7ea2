#include "standin/eventworld/HouseWorld.hpp"

#include <utility>

#include "base/Failure.hpp"
#include "standin/eventworld/Fade.hpp"

namespace standin {

HouseWorld::HouseWorld(base::Loop& loop, House& house, HouseObjects& objects, PluginKeeper& plugin,
                       Speech& speech, const ScriptStore& scripts, ScriptRunner& runner)
    : loop_(loop),
      house_(house),
      speech_(speech),
      devices_(house, objects, plugin),
      plugin_(loop, plugin),
      scripts_(loop, scripts, runner),
      memory_(loop, plugin_,
              [this](const std::string& failure) {
                note("Warning",
                     "What was in the player before somebody was woken can't be put back: " + failure);
              }),
      guard_(std::make_shared<RepeatGuard>(loop)) {}

void HouseWorld::check(const std::string& stored, Checked checked) {
  const auto holds = std::make_shared<bool>(false);
  plugin_.callAnyway(
      [stored, holds](base::Object& vxif) {
        *holds = base::ToBoolean(vxif.invoke("ConditionCheck", stored));
      },
      [holds, checked = std::move(checked)](const std::string& failure) { checked(failure, *holds); });
}

std::optional<DeviceFacts> HouseWorld::device(std::int32_t ref) const {
  const Device* found = house_.devices.byRef(ref);
  if (found == nullptr) return std::nullopt;
  return factsOf(*found);
}

std::unique_ptr<Deed> HouseWorld::carryOut(const Action& action, Done done) {
  if (const auto* plugin = std::get_if<PluginAction>(&action)) {
    return plugin_.call(
        [guard = guard_, stored = plugin->stored](base::Object& vxif) { guard->carryOut(vxif, stored); },
        std::move(done));
  }
  if (const auto* device = std::get_if<DeviceAction>(&action)) return tell(*device, std::move(done));
  if (const auto* script = std::get_if<ScriptAction>(&action))
    return scripts_.run(script->name, std::move(done));
  if (const auto* fade = std::get_if<FadeAction>(&action))
    return BeginFade(loop_, plugin_, *fade, std::move(done));
  if (const auto* wake = std::get_if<WakeAction>(&action))
    return BeginWake(
        loop_, plugin_,
        [this](const std::string& words, const EventWorld::Done& said) { speech_.speak(words, true, said); },
        memory_, guard_, *wake, std::move(done));
  if (const auto* speak = std::get_if<SpeakAction>(&action)) {
    speech_.speak(speak->text, false, done);
    return nullptr;
  }
  throw base::Failure(base::number::kInternal, "The house doesn't know that action");
}

std::unique_ptr<Deed> HouseWorld::tell(const DeviceAction& action, Done done) {
  std::optional<PluginKeeper::Command> command;
  switch (action.kind) {
    case DeviceAction::Kind::kPress: command = devices_.press(action.ref, action.caption); break;
    case DeviceAction::Kind::kValue: command = devices_.set(action.ref, action.value); break;
    case DeviceAction::Kind::kOn:
    case DeviceAction::Kind::kOff:
      command = devices_.turn(action.ref, action.kind == DeviceAction::Kind::kOn);
      break;
  }
  if (command) return plugin_.call(std::move(*command), std::move(done));
  done({});  // the house has done it
  return nullptr;
}

void HouseWorld::pluginTriggered() { memory_.playbackEnded(); }

DeviceFacts HouseWorld::factsOf(const Device& device) const {
  return {.ref = device.ref,
          .status = device.status,
          .value = device.value,
          .text = device.text,
          .ofPlugin = devices_.isOfPlugin(device)};
}

}  // namespace standin
