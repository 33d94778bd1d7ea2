#include "standin/playlists/PlaylistStep.hpp"

#include <array>
#include <nlohmann/json.hpp>

#include "base/Failure.hpp"
#include "standin/house/HouseJson.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

constexpr std::array kKinds{"add", "remove", "move", "rename", "create", "delete"};

Json JsonOf(const ListPlace& place) { return {place.at, place.before, place.after}; }

ListPlace PlaceOf(const Json& json) {
  return {json.at(0).get<std::int32_t>(), json.at(1).get<std::string>(), json.at(2).get<std::string>()};
}

std::string ItemsOf(const PlaylistStep& step) {
  if (step.items.size() != 1) return std::to_string(step.items.size()) + " titles";
  return "“" + step.items.front().name + "”";
}

}  // namespace

std::string TextOf(const PlaylistStep& step) {
  Json items = Json::array();
  for (const ListedItem& item : step.items) {
    items.push_back({item.name, item.source});
    if (!item.artist.empty() || item.seconds > 0) {
      items.back().push_back(item.artist);
      items.back().push_back(item.seconds);
    }
  }
  return Dump({{"kind", kKinds.at(static_cast<std::size_t>(step.kind))},
               {"from", JsonOf(step.from)},
               {"to", JsonOf(step.to)},
               {"items", std::move(items)},
               {"count", step.count},
               {"old", step.oldName},
               {"new", step.newName}});
}

PlaylistStep StepOf(const std::string& text) {
  try {
    const Json json = ReadJson(text);
    PlaylistStep step;
    const auto kind = json.at("kind").get<std::string>();
    std::size_t number = 0;
    while (kKinds.at(number) != kind) ++number;
    step.kind = static_cast<StepKind>(number);
    step.from = PlaceOf(json.at("from"));
    step.to = PlaceOf(json.at("to"));
    for (const Json& item : json.at("items")) {
      step.items.emplace_back(item.at(0).get<std::string>(), item.at(1).get<std::string>());
      if (item.size() < 4) continue;
      step.items.back().artist = item.at(2).get<std::string>();
      step.items.back().seconds = item.at(3).get<double>();
    }
    step.count = json.at("count").get<std::int32_t>();
    step.oldName = json.at("old").get<std::string>();
    step.newName = json.at("new").get<std::string>();
    return step;
  } catch (const std::exception&) {
    throw base::Failure(base::number::kDeviceIo, "A step of the history can't be read");
  }
}

std::string WordsOf(const PlaylistStep& step) {
  switch (step.kind) {
    case StepKind::kAdd: return "adding " + ItemsOf(step);
    case StepKind::kRemove:
      if (step.items.size() > 1 && static_cast<std::size_t>(step.count) == step.items.size())
        return "clearing the list of " + ItemsOf(step);
      return "removing " + ItemsOf(step);
    case StepKind::kMove: return "moving " + ItemsOf(step);
    case StepKind::kRename: return "renaming “" + step.oldName + "” to “" + step.newName + "”";
    case StepKind::kCreate:
      return (step.items.empty() ? "creating “" : "saving " + ItemsOf(step) + " as “") + step.newName + "”";
    case StepKind::kDelete: break;
  }
  return "deleting “" + step.oldName + "”";
}

bool IsOfCollection(StepKind kind) {
  return kind == StepKind::kRename || kind == StepKind::kCreate || kind == StepKind::kDelete;
}

}  // namespace standin
