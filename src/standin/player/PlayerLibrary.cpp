#include "standin/player/PlayerLibrary.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

constexpr base::Milliseconds kGood = std::chrono::seconds(30);
constexpr std::size_t kListsKept = 12;
constexpr std::array kCategories{"Artist", "Album", "Genre", "PlayList"};

std::vector<std::string> NamesOf(const base::Value& value) {
  const bool isList = value.is<std::shared_ptr<const base::Array>>();
  // Before its library is open the player answers with nothing at all.
  if (!isList) throw base::Failure(base::number::kObjectMissing, "The player isn't ready yet");
  std::vector<std::string> names;
  names.reserve(value.array().size());
  for (const base::Value& each : value.array()) names.push_back(base::ToText(each));
  return names;
}

std::string KeyOf(const std::string& category, const std::string& group) { return category + '\1' + group; }

/// The places in order, cut where one doesn't follow the other: first place and length.
std::vector<std::pair<std::size_t, std::size_t>> RunsOf(const std::vector<std::size_t>& places) {
  std::vector<std::pair<std::size_t, std::size_t>> runs;
  for (const std::size_t place : places) {
    if (!runs.empty() && place == runs.back().first + runs.back().second) {
      ++runs.back().second;
    } else {
      runs.emplace_back(place, 1);
    }
  }
  return runs;
}

}  // namespace

template <class List>
typename PlayerLibrary::Shelf<List>::Kept& PlayerLibrary::Shelf<List>::slot(const std::string& key) {
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

template <class List>
bool PlayerLibrary::Shelf<List>::ask(const std::string& key, bool fresh, Told told) {
  Kept& kept = slot(key);
  if (kept.waiting.empty() && !fresh && kept.list && loop_.now() - kept.since < kGood) {
    told(kept.list, {});
    return false;
  }
  kept.waiting.push_back(std::move(told));
  return kept.waiting.size() == 1;  // otherwise it is on its way
}

template <class List>
void PlayerLibrary::Shelf<List>::fetched(const std::string& key, Ref list, const Failed& failed) {
  Kept& kept = slot(key);
  kept.list = std::move(list);
  kept.since = loop_.now();
  const Ref told = kept.list;
  for (const Told& each : std::exchange(kept.waiting, {})) each(told, failed);
}

PlayerLibrary::PlayerLibrary(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin,
                             PluginKeeper::Address address)
    : connection_(connection), plugin_(plugin), address_(std::move(address)), names_(loop), titles_(loop) {}

std::optional<std::string> PlayerLibrary::categoryOf(const std::string& text) {
  const auto* const found = std::find_if(kCategories.begin(), kCategories.end(),
                                         [&](const char* each) { return base::SameText(each, text); });
  if (found == kCategories.end()) return std::nullopt;
  return *found;
}

base::ObjectRef PlayerLibrary::script() { return connection_.proxy(address_.name, "/scriptclass"); }

void PlayerLibrary::ask(Work work, std::function<void(const Failed& failed)> done) {
  const auto number = std::make_shared<std::int32_t>(0);
  plugin_.command(
      [this, number, work = std::move(work)](base::Object&) {
        try {
          PlayerLists lists(script());
          work(lists);
        } catch (const base::Failure& failure) {
          *number = failure.number();
          throw;
        }
      },
      [number, done = std::move(done)](const std::string& failure) {
        done({failure, *number});
      });
}

PlayerList PlayerLibrary::groupOf(PlayerLists& lists, const std::string& category, const std::string& group) {
  std::optional<PlayerList> found = lists.group(category, group);
  if (!found) throw base::Failure(base::number::kElementNotFound, "The player can't find “" + group + "”");
  return *found;
}

void PlayerLibrary::list(const std::string& category, bool fresh, Listed listed) {
  if (!names_.ask(category, fresh, std::move(listed))) return;
  const auto list = std::make_shared<std::shared_ptr<const NameList>>();
  plugin_.command(
      [this, category, list](base::Object&) {
        *list = std::make_shared<NameList>(NamesOf(script()->invoke("GetCategoryList", category)));
      },
      [this, category, list](const std::string& failure) { names_.fetched(category, *list, {failure}); });
}

void PlayerLibrary::albums(const std::string& category, const std::string& group, Listed listed) {
  if (category == "Genre") return albumsOfTitles(category, group, std::move(listed));
  const std::string key = KeyOf(category, group);
  if (!names_.ask(key, false, std::move(listed))) return;
  const auto list = std::make_shared<std::shared_ptr<const NameList>>();
  plugin_.command(
      [this, category, group, list](base::Object&) {
        *list = std::make_shared<NameList>(NamesOf(script()->invoke("GetAlbumsByCategory", category, group)));
      },
      [this, key, list](const std::string& failure) { names_.fetched(key, *list, {failure}); });
}

// The script object has no albums of a genre.
void PlayerLibrary::albumsOfTitles(const std::string& category, const std::string& group, Listed listed) {
  titles(category, group, false,
         [listed = std::move(listed)](const std::shared_ptr<const TitleList>& list, const Failed& failed) {
           if (!list) return listed(nullptr, failed);
           std::vector<std::string> albums;
           std::set<std::string> known;
           for (const Title& each : list->all())
             if (!each.album.empty() && known.insert(base::LowerCase(each.album)).second)
               albums.push_back(each.album);
           listed(std::make_shared<NameList>(std::move(albums)), {});
         });
}

void PlayerLibrary::titles(const std::string& category, const std::string& group, bool fresh,
                           TitlesListed listed) {
  const std::string key = KeyOf(category, group);
  if (!titles_.ask(key, fresh, std::move(listed))) return;
  const auto list = std::make_shared<std::shared_ptr<const TitleList>>();
  ask(
      [category, group, list](PlayerLists& lists) {
        const PlayerList found = groupOf(lists, category, group);
        *list = std::make_shared<TitleList>(found.titles(0, found.count()));
      },
      [this, key, list](const Failed& failed) { titles_.fetched(key, *list, failed); });
}

void PlayerLibrary::titlesAt(const std::string& category, const std::string& group,
                             std::vector<std::size_t> places, TitlesRead read) {
  if (places.empty()) return read({}, {});
  const auto titles = std::make_shared<std::vector<Title>>();
  ask(
      [category, group, places = std::move(places), titles](PlayerLists& lists) {
        const PlayerList found = groupOf(lists, category, group);
        for (const auto& [from, count] : RunsOf(places)) {
          std::vector<Title> some =
              found.titles(static_cast<std::int32_t>(from), static_cast<std::int32_t>(count));
          some.resize(count);
          std::move(some.begin(), some.end(), std::back_inserter(*titles));
        }
      },
      [titles, read = std::move(read)](const Failed& failed) { read(std::move(*titles), failed); });
}

void PlayerLibrary::artistsOf(std::vector<std::string> albums, ArtistsRead read) {
  if (albums.empty()) return read({});
  const auto artists = std::make_shared<std::vector<std::string>>(albums.size());
  ask([albums = std::move(albums), artists](PlayerLists& lists) { *artists = lists.artistsOf(albums); },
      [artists, read = std::move(read)](const Failed&) { read(std::move(*artists)); });
}

void PlayerLibrary::forget(const std::string& category) {
  const auto ofCategory = [&](const std::string& key) {
    return key == category || key.starts_with(category + '\1');
  };
  names_.forget(ofCategory);
  titles_.forget(ofCategory);
}

}  // namespace standin
