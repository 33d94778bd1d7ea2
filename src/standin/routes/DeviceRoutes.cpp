// What the pages ask of the plug-in: buttons, devices, menu.
#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/EventStore.hpp"
#include "standin/house/ValueTable.hpp"
#include "standin/player/DeviceCommands.hpp"
#include "standin/player/WatchedCommand.hpp"
#include "standin/routes/Routes.hpp"

namespace standin {
namespace {

/// The button that adds what was played to the player's own playlist.
constexpr const char* kAddButton = "Add to PlayList";

/// What the commands of this area work with.
struct Parts {
  House& house;
  HouseObjects& objects;
  PluginKeeper& plugin;
  PlayerLibrary& library;
};

PluginKeeper::Done Answering(const Reply& reply) {
  return [reply](const std::string& failure) { reply(OutcomeOf(failure)); };
}

/// The command, and the answer when it has run: `done`, or what the player could not do.
void Answer(const Parts& parts, PluginKeeper::Command work, const std::string& done, const Reply& reply) {
  RunWatched(parts.house, parts.plugin, std::move(work), [done, reply](const CommandOutcome& outcome) {
    if (!outcome.failure.empty()) return reply(OutcomeOf(outcome.failure));
    reply(outcome.refusal.empty() ? Told({{"done", done}}) : Refusal(409, outcome.refusal));
  });
}

/// Has what may add to the player's own playlist done, and tells what it has added.
void Add(const Parts& parts, PluginKeeper::Command work, const Reply& reply) {
  parts.library.addition(
      kOwnList, std::move(work),
      [reply](const std::optional<std::string>& title, const PlayerLibrary::Failed& failed) {
        if (!failed.text.empty()) return reply(OutcomeOf(failed.text));
        if (!title) return reply(Refusal(409, kNothingAdded));
        reply(Told({{"added", *title}, {"list", kOwnList}, {"done", "Added " + *title + " to " + kOwnList}}));
      });
}

/// What was chosen, without the marks of an entry that does something else than the others.
std::string ChosenName(const Device& device, std::int32_t value) {
  std::string name(NameOfValue(device.values, value).value_or(std::string_view()));
  std::erase(name, '*');
  return name;
}

/// Has the device told, by the plug-in where it is the plug-in's, and says what of it can't be done.
void TellDevice(const Parts& parts,
                const std::function<std::optional<PluginKeeper::Command>(const DeviceCommands& tells)>& what,
                const std::function<void(PluginKeeper::Command)>& run, const Reply& reply) {
  std::optional<PluginKeeper::Command> command;
  try {
    command = what(DeviceCommands(parts.house, parts.objects, parts.plugin));
  } catch (const base::Failure& failure) {
    if (failure.number() == base::number::kFileNotFound) return reply(Refusal(404, failure.description()));
    if (failure.number() == base::number::kInvalidArgument) return reply(Refusal(400, failure.description()));
    if (failure.number() == base::number::kChangedMeanwhile)
      return reply(Refusal(409, failure.description()));
    throw;
  }
  if (!command) return reply(OutcomeOf({}));  // the house has done it
  run(std::move(*command));
}

void Press(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto caption = call.json.at("caption").get<std::string>();
  const auto ref = call.json.at("ref").get<std::int32_t>();
  if (call.user.guest && base::SameText(caption, kAddButton)) return reply(Refusal(403, kGuestsMayNotAdd));
  TellDevice(
      parts, [&](const DeviceCommands& tells) { return tells.press(ref, caption); },
      [&](PluginKeeper::Command work) {
        if (caption == kAddButton) return Add(parts, std::move(work), reply);
        parts.plugin.command(std::move(work), Answering(reply));
      },
      reply);
}

void Command(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto ref = call.json.at("ref").get<std::int32_t>();
  const auto word = call.json.at("command").get<std::string>();
  const auto value = call.json.value("value", std::int64_t{0});
  // Who has chosen from a list says what he saw there: a value is only a place in it.
  std::optional<std::string> name;
  if (const auto given = call.json.find("name"); given != call.json.end()) name = given->get<std::string>();
  const Device* device = parts.house.devices.byRef(ref);
  if (device == nullptr) return reply(Refusal(404, "There is no such device"));
  if (word != "on" && word != "off" && word != "value")
    return reply(Refusal(400, "There is no such command"));
  const bool sets = word == "value";
  TellDevice(
      parts,
      [&](const DeviceCommands& tells) {
        return sets ? tells.set(ref, value, name) : tells.turn(ref, word == "on");
      },
      [&](PluginKeeper::Command work) {
        if (!sets) return parts.plugin.command(std::move(work), Answering(reply));
        Answer(parts, std::move(work), ChosenName(*device, static_cast<std::int32_t>(value)), reply);
      },
      reply);
}

void SelectMenu(const Parts& parts, const WebCall& call, const Reply& reply) {
  const auto item = call.json.at("item").get<std::string>();
  if (!parts.house.menu.has(item)) return reply(Refusal(404, "There is no such menu item"));
  parts.plugin.command([item](base::Object& vxif) { vxif.invoke("SelectMenu", item); }, Answering(reply));
}

}  // namespace

Routes DeviceRoutes(House& house, HouseObjects& objects, PluginKeeper& plugin, PlayerLibrary& library) {
  const auto with = [parts = Parts{house, objects, plugin, library}](auto handle) {
    return Later{[parts, handle](const WebCall& call, const Reply& reply) { handle(parts, call, reply); }};
  };
  return {{Method::kPost, "/api/press", Role::kGuest, with(Press)},
          {Method::kPost, "/api/command", Role::kGuest, with(Command)},
          {Method::kPost, "/api/menu", Role::kOwner, with(SelectMenu), "Guests can't use the menu"}};
}

}  // namespace standin
