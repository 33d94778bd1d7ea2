#include "standin/player/PlayerLibrary.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kGood = std::chrono::seconds(30);
constexpr std::size_t kListsKept = 12;
constexpr std::array kCategories{"Artist", "Album", "Genre", "PlayList"};

std::vector<std::string> namesOf(const base::Value& value) {
  const bool isList = value.is<std::shared_ptr<const base::Array>>();
  // Before its library is open the player answers with nothing at all.
  if (!isList) throw base::Failure(base::number::kObjectMissing, "The player isn't ready yet");
  std::vector<std::string> names;
  names.reserve(value.array().size());
  for (const base::Value& each : value.array()) names.push_back(base::ToText(each));
  return names;
}

MediaFacts factsOf(const base::Value& value) {
  MediaFacts facts;
  if (!value.is<std::shared_ptr<const base::Record>>()) return facts;
  for (const auto& [key, held] : value.record()) {
    if (key == "Artist") facts.artist = base::ToText(held);
    if (key == "Album") facts.album = base::ToText(held);
    if (key == "Genre") facts.genre = base::ToText(held);
    if (key == "Duration" && held.is<double>()) facts.seconds = base::ToDouble(held);
  }
  return facts;
}

}  // namespace

PlayerLibrary::PlayerLibrary(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin,
                             PluginKeeper::Address address)
    : loop_(loop), connection_(connection), plugin_(plugin), address_(std::move(address)) {}

std::optional<std::string> PlayerLibrary::categoryOf(const std::string& text) {
  const auto* const found = std::find_if(kCategories.begin(), kCategories.end(),
                                         [&](const char* each) { return base::SameText(each, text); });
  if (found == kCategories.end()) return std::nullopt;
  return *found;
}

base::ObjectRef PlayerLibrary::script() { return connection_.proxy(address_.name, "/scriptclass"); }

PlayerLibrary::Kept& PlayerLibrary::slot(const std::string& key) {
  const auto found =
      std::find_if(kept_.begin(), kept_.end(), [&](const Kept& each) { return each.key == key; });
  if (found != kept_.end()) {
    kept_.splice(kept_.begin(), kept_, found);
  } else {
    kept_.push_front({key, {}, nullptr, {}});
    // One that somebody waits for stays.
    if (kept_.size() > kListsKept && kept_.back().waiting.empty()) kept_.pop_back();
  }
  return kept_.front();
}

void PlayerLibrary::list(const std::string& category, const std::optional<std::string>& group, bool fresh,
                         Listed listed) {
  const std::string key = category + (group ? '\1' + *group : "");
  Kept& kept = slot(key);
  if (kept.waiting.empty() && !fresh && kept.list && loop_.now() - kept.since < kGood) {
    listed(kept.list, {});
    return;
  }
  kept.waiting.push_back(std::move(listed));
  if (kept.waiting.size() > 1) return;  // it is on its way
  const auto list = std::make_shared<std::shared_ptr<const NameList>>();
  plugin_.command(
      [this, category, group, list](base::Object&) {
        const base::ObjectRef object = script();
        const base::Value answer = group ? object->invoke("GetByCategory", category, *group)
                                         : object->invoke("GetCategoryList", category);
        *list = std::make_shared<NameList>(namesOf(answer));
      },
      [this, key, list](const std::string& failure) { fetched(key, *list, failure); });
}

void PlayerLibrary::fetched(const std::string& key, std::shared_ptr<const NameList> list,
                            const std::string& failure) {
  Kept& kept = slot(key);
  kept.list = std::move(list);
  kept.since = loop_.now();
  const std::shared_ptr<const NameList> told = kept.list;
  for (const Listed& listed : std::exchange(kept.waiting, {})) listed(told, failure);
}

void PlayerLibrary::forget(const std::string& category) {
  for (Kept& kept : kept_) {
    if (kept.key == category || kept.key.starts_with(category + '\1')) kept.list.reset();
  }
}

void PlayerLibrary::play(const std::string& category, const std::string& name, const std::string& title,
                         Played played) {
  const auto result = std::make_shared<std::int32_t>(0);
  plugin_.command(
      [this, category, name, title, result](base::Object&) {
        *result = base::ToInt32(script()->invoke("Play", category, name, title));
      },
      [result, played = std::move(played)](const std::string& failure) { played(*result, failure); });
}

void PlayerLibrary::volume(Heard heard) {
  const auto volume = std::make_shared<std::int32_t>(0);
  plugin_.command(
      [this, volume](base::Object&) { *volume = base::ToInt32(script()->get("Volume")); },
      [volume, heard = std::move(heard)](const std::string& failure) { heard(*volume, failure); });
}

void PlayerLibrary::facts(const std::string& category, const std::string& name, const std::string& title,
                          Told told) {
  const auto facts = std::make_shared<MediaFacts>();
  plugin_.command(
      [this, category, name, title, facts](base::Object&) {
        *facts = factsOf(script()->invoke("GetMediaInfo", category, name, title));
      },
      [facts, told = std::move(told)](const std::string& failure) { told(*facts, failure); });
}

}  // namespace standin
