// What the pages ask of the plug-in: buttons, devices, menu, voice.
#include <algorithm>
#include <limits>
#include <utility>

#include "standin/house/EventStore.hpp"
#include "standin/routes/Routes.hpp"
#include "standin/voice/Voice.hpp"

namespace standin {
namespace {

constexpr std::int16_t kCommandOn = 2;
constexpr std::int16_t kCommandOff = 3;
constexpr std::int16_t kCommandValue = 19;

/// What the commands of this area work with.
struct Parts {
  House& house;
  HouseObjects& objects;
  PluginKeeper& plugin;
};

PluginKeeper::Done Answering(const Reply& reply) {
  return [reply](const std::string& failure) { reply(OutcomeOf(failure)); };
}

void Press(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto caption = call.json.at("caption").get<std::string>();
  const Device* device = parts.house.devices.byRef(call.json.at("ref").get<std::int32_t>());
  const bool known =
      device != nullptr && std::any_of(device->buttons.begin(), device->buttons.end(),
                                       [&](const DeviceButton& each) { return each.caption == caption; });
  if (!known) return reply(Refusal(404, "The device has no such button"));
  parts.plugin.command([caption](base::Object& vxif) { vxif.invoke("ButtonPress", caption); },
                       Answering(reply));
}

void SetIo(const Parts& parts, const Device& device, std::int16_t command, std::int16_t brightness,
           const Reply& reply) {
  const base::ObjectRef object = parts.objects.device(device.ref);
  parts.plugin.command(
      [object, hc = device.hc, dc = device.dc, command, brightness](base::Object& vxif) {
        vxif.invoke("SetIO", object, hc, dc, command, brightness, std::int16_t{0}, std::int16_t{0});
      },
      Answering(reply));
}

void Command(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto ref = call.json.at("ref").get<std::int32_t>();
  const auto word = call.json.at("command").get<std::string>();
  const auto value = call.json.value("value", std::int64_t{0});
  const Device* device = parts.house.devices.byRef(ref);
  if (device == nullptr) return reply(Refusal(404, "There is no such device"));
  if (word == "on" || word == "off")
    return SetIo(parts, *device, word == "on" ? kCommandOn : kCommandOff, 0, reply);
  if (word != "value") return reply(Refusal(400, "There is no such command"));
  if (value < 0 || value > std::numeric_limits<std::int16_t>::max())
    return reply(Refusal(400, "The value is out of range"));
  parts.house.devices.putValue(ref, static_cast<std::int32_t>(value));
  SetIo(parts, *device, kCommandValue, static_cast<std::int16_t>(value), reply);
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
