// Changes of playlists that others have made, as steps of the history.
#include <algorithm>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/playlists/PlaylistDiff.hpp"
#include "standin/playlists/Playlists.hpp"

namespace standin {
namespace {

constexpr std::int32_t kMostItems = 10'000;  // of a list whose changes by others are taken down
constexpr std::size_t kMostWithItems = 16;   // lists
constexpr std::size_t kMostAsked = 200;      // lists that one which is missing may have become

}  // namespace

Playlists::Content Playlists::ContentOf(const PlayerList& list) {
  Content content;
  const std::int32_t count = list.count();
  if (count > kMostItems || IsQueue(list.name())) {
    content.names = list.names(0, count);
    return content;
  }
  auto items = std::make_shared<std::vector<ListedItem>>();
  for (const Title& title : list.titles(0, count)) {
    content.names.push_back(title.name);
    items->emplace_back(title);
  }
  content.items = std::move(items);
  return content;
}

/// The memory is for those that are looked at; of the others only the names are kept.
void Playlists::forgetOldItems() {
  std::size_t with = 0;
  for (Kept& each : kept_)
    if (each.items && ++with > kMostWithItems) each.items.reset();
}

void Playlists::takeDown(const std::string& list, const PlaylistStep& step) {
  try {
    history_.finish(history_.begin(list, step), step);
  } catch (const base::Failure& failure) {  // the change has been made all the same
    house_.log.write("Warning", "What others have changed in the playlist " + list +
                                    " can't be taken down: " + failure.description());
  }
}

void Playlists::takeDownOthers(const std::string& list, const Content& now) {
  const Kept* known = kept(list);
  if (known == nullptr || !known->items || !now.items) return;
  if (restoring_.contains(base::LowerCase(known->name))) return;
  const std::string name = known->name;
  for (const PlaylistStep& step : StepsBetween(*known->items, *now.items)) takeDown(name, step);
}

void Playlists::catchUp(const PlayerList& list, const std::string& name) {
  const Kept* known = kept(name);
  if (known == nullptr) return;
  const std::int64_t before = known->revision;
  if (list.revision() != before) keepAsItIs(list);
}

std::optional<std::string> Playlists::nameNow(PlayerLists& lists, const Kept& missing) {
  // Lists that were read at the same moment may have one revision, and empty ones are all alike.
  if (missing.revision == 0 || !missing.items || (missing.items->empty() && !listed_)) return std::nullopt;
  std::vector<std::string> names;
  const base::Value all = lists.script().invoke("GetCategoryList", "PlayList");
  for (const base::Value& each : all.array()) {
    std::string name = base::ToText(each);
    const bool known = listed_ && std::find(listed_->begin(), listed_->end(), name) != listed_->end();
    if (!known && names.size() < kMostAsked) names.push_back(std::move(name));
  }
  for (const std::string& name : names) {
    const std::optional<PlayerList> list = lists.find(name);
    if (!list || list->revision() != missing.revision) continue;
    const Content content = ContentOf(*list);
    if (content.items && StepsBetween(*missing.items, *content.items).empty()) return list->name();
  }
  return std::nullopt;
}

void Playlists::followMissing(PlayerLists& lists, const std::string& name) {
  const Kept* known = kept(name);
  if (known == nullptr) return;
  const Kept missing = *known;
  const std::optional<std::string> now = nameNow(lists, missing);
  PlaylistStep step;
  step.oldName = missing.name;
  if (now) {
    step.kind = StepKind::kRename;
    step.newName = *now;
    takeDown(missing.name, step);
    if (Kept* still = kept(name)) still->name = *now;
    house_.live.tell("playlist", Dump({{"name", missing.name}, {"renamed", *now}}));
    return tellCollection();
  }
  forget(missing.name);
  if (missing.items) {
    step.kind = StepKind::kDelete;
    step.items = *missing.items;
    step.count = static_cast<std::int32_t>(step.items.size());
    takeDown(missing.name, step);
  }
  house_.live.tell("playlist", Dump({{"name", missing.name}, {"gone", true}}));
  tellCollection();
}

}  // namespace standin
