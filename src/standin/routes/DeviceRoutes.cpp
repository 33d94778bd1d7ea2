// What the pages ask of the plug-in: buttons, devices, menu, voice.
#include <functional>
#include <utility>

#include "base/Failure.hpp"
#include "standin/house/EventStore.hpp"
#include "standin/player/DeviceCommands.hpp"
#include "standin/routes/Routes.hpp"
#include "standin/voice/Voice.hpp"

namespace standin {
namespace {

/// What the commands of this area work with.
struct Parts {
  House& house;
  HouseObjects& objects;
  PluginKeeper& plugin;
};

PluginKeeper::Done Answering(const Reply& reply) {
  return [reply](const std::string& failure) { reply(OutcomeOf(failure)); };
}

/// Gives the plug-in what the device is to be told, and says what of it can't be done.
void TellDevice(const Parts& parts,
                const std::function<PluginKeeper::Command(const DeviceCommands& tells)>& what,
                const Reply& reply) {
  PluginKeeper::Command command;
  try {
    command = what(DeviceCommands(parts.house, parts.objects));
  } catch (const base::Failure& failure) {
    if (failure.number() == base::number::kFileNotFound) return reply(Refusal(404, failure.description()));
    if (failure.number() == base::number::kInvalidArgument) return reply(Refusal(400, failure.description()));
    throw;
  }
  parts.plugin.command(std::move(command), Answering(reply));
}

void Press(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto caption = call.json.at("caption").get<std::string>();
  const auto ref = call.json.at("ref").get<std::int32_t>();
  TellDevice(
      parts, [&](const DeviceCommands& tells) { return tells.press(ref, caption); }, reply);
}

void Command(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto ref = call.json.at("ref").get<std::int32_t>();
  const auto word = call.json.at("command").get<std::string>();
  const auto value = call.json.value("value", std::int64_t{0});
  if (parts.house.devices.byRef(ref) == nullptr) return reply(Refusal(404, "There is no such device"));
  if (word != "on" && word != "off" && word != "value")
    return reply(Refusal(400, "There is no such command"));
  TellDevice(
      parts,
      [&](const DeviceCommands& tells) {
        return word == "value" ? tells.set(ref, value) : tells.turn(ref, word == "on");
      },
      reply);
}

void SelectMenu(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto item = call.json.at("item").get<std::string>();
  if (!parts.house.menu.has(item)) return reply(Refusal(404, "There is no such menu item"));
  parts.plugin.command([item](base::Object& vxif) { vxif.invoke("SelectMenu", item); }, Answering(reply));
}

void TakeVoice(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto text = call.json.at("text").get<std::string>();
  if (text.empty() || text.size() > 500) return reply(Refusal(400, "Say something of up to 500 characters"));
  parts.house.log.write("Voice", text);
  const VoiceAct act = ActOfVoice(parts.house, text);
  if (act.refs.empty())
    return reply(Refusal(404, "“" + text + "” was not understood. Try “stop”, “next” or “volume up”"));
  struct Target {
    base::ObjectRef object;
    std::string hc;
    std::string dc;
  };
  std::vector<Target> targets;
  for (const std::int32_t ref : act.refs) {
    const Device& device = *parts.house.devices.byRef(ref);
    targets.push_back({parts.objects.device(ref), device.hc, device.dc});
  }
  // The text is set when its turn comes: another one may be waiting before it.
  parts.plugin.command(
      [&house = parts.house, text, targets](base::Object& vxif) {
        house.lastVoiceCommand = text;
        for (const Target& each : targets) {
          const std::int16_t none = 0;
          vxif.invoke("SetIO", each.object, each.hc, each.dc, kFuncVoice, none, none, none);
        }
      },
      [reply, said = act.said](const std::string& failure) {
        reply(failure.empty() ? Told({{"done", said}}) : OutcomeOf(failure));
      });
}

}  // namespace

Routes DeviceRoutes(House& house, HouseObjects& objects, PluginKeeper& plugin) {
  const auto with = [parts = Parts{house, objects, plugin}](auto handle) {
    return Later{[parts, handle](const WebCall& call, const Reply& reply) { handle(parts, call, reply); }};
  };
  return {{Method::kPost, "/api/press", Role::kGuest, with(Press)},
          {Method::kPost, "/api/command", Role::kGuest, with(Command)},
          {Method::kPost, "/api/voice", Role::kGuest, with(TakeVoice)},
          {Method::kPost, "/api/menu", Role::kOwner, with(SelectMenu), "Guests can't use the menu"}};
}

}  // namespace standin
