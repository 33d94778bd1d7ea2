#include <cmath>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "catalogue/MediaCatalogue.hpp"
#include "web/UtilityModule.hpp"

// The half of MediaCatalogue that lists names; groups and items are in MediaCatalogueGroups.cpp.
namespace catalogue {

using base::Attempt;
using base::TextListRef;

void MediaCatalogue::debug(const std::string& text) {
  Attempt step;
  step([&] { in_.loggers.Debug("Media Player: " + text); });
}

void MediaCatalogue::registerName(const std::string& category, const std::string& name,
                                  plugin::Unwaited& saves) {
  std::string key;
  in_.xref.AddNameXref(category, name, key, saves);
}

void MediaCatalogue::registerName(const std::string& category, const std::string& name) {
  std::string key;
  in_.xref.AddNameXref(category, name, key);
}

void MediaCatalogue::yieldAt(std::int32_t index, plugin::Unwaited& saves) {
  Attempt step;
  if (YieldsAt(index)) step([&] { saves.WaitEvents(); });
}

std::int32_t MediaCatalogue::GetGroupList(const std::string& category, TextListRef& list,
                                          const std::string& filter) {
  ProgressShown shown(in_.progress, "GetGroupList");
  list = std::make_shared<base::TextList>();
  if (CategoryLists_.empty()) {
    // The three share the one object until each is first read, which their marks see to.
    for (const char* key : {"Album", "Artist", "Genre"}) CategoryLists_[key] = list;
  }
  return base::SameText(category, kPlayListCategory) ? playLists(list, filter, shown)
                                                     : attributeList(category, list, shown);
}

std::int32_t MediaCatalogue::attributeList(const std::string& category, TextListRef& list,
                                           ProgressShown& shown) {
  debug("Loading " + category + " collection");
  const auto mark = in_.stale.CategoryStale.find(category);
  const auto cached = CategoryLists_.find(category);
  // Only the three categories are ever marked: the list of any other attribute is read once and then stays.
  const bool stale = mark != in_.stale.CategoryStale.end() && mark->second;
  if (stale || cached == CategoryLists_.end() || cached->second->empty()) {
    if (const std::int32_t status = readAttribute(category, list, shown); status != kDone) return status;
  } else {
    list = cached->second;  // before the log line: the host may let a new reading in
    debug("Loading " + category + " collection from cache");
  }
  debug("Finished loading " + category + " collection");
  return kDone;
}

std::int32_t MediaCatalogue::readAttribute(const std::string& category, const TextListRef& list,
                                           ProgressShown& shown) {
  Attempt step;
  player::StringCollectionRef names;
  // Audio only: video and other media never reach these lists.
  step([&] { names = media().getAttributeStringCollection(category, "audio"); });
  if (step.failed()) return step.number();
  std::int32_t count = 0;
  step([&] {
    if (!names) throw base::Failure(base::number::kObjectMissing);
    count = names->count();
  });
  plugin::Unwaited saves(in_.host);
  for (std::int32_t i = 0; i < count; ++i) {
    shown.update(std::int64_t{i} + 1, count);
    std::string name;
    step([&] { name = names->item(i); });
    if (!name.empty()) {
      registerName(category, name, saves);
      list->add(std::move(name));
    }
    yieldAt(i, saves);
  }
  step([&] { saves.settle(); });
  CategoryLists_.erase(category);
  CategoryLists_.emplace(category, list);
  // A mark that was set while the list was read is lost with this.
  in_.stale.CategoryStale.erase(category);
  in_.stale.CategoryStale.emplace(category, false);
  return kDone;
}

std::int32_t MediaCatalogue::playLists(TextListRef& list, const std::string& filter, ProgressShown& shown) {
  debug("Loading playlist collection");
  if (!PlayListNames_->empty() && !in_.stale.PlayListsStale) {
    debug("Loading playlists from cache");
  } else {
    player::PlaylistArrayRef all;
    const std::int32_t status = GetAllPlayLists(all);
    debug("Returned from getting playlists");
    if (status != kDone) return status;
    PlayListNames_ = std::make_shared<base::TextList>();
    readPlayLists(*all, filter, shown);
    in_.stale.PlayListsStale = false;
  }
  list = PlayListNames_;
  debug("Finished loading playlist collection");
  return kDone;
}

std::int32_t MediaCatalogue::GetAllPlayLists(player::PlaylistArrayRef& all) {
  debug("Getting all playlists");
  Attempt step;
  std::int32_t count = 0;
  step([&] { all = playlists().getAll(); });
  debug("Finished getting all playlists");
  step([&] {
    if (!all) throw base::Failure(base::number::kObjectMissing);
    count = all->count();
  });
  if (step.failed()) return step.number();
  return count == 0 ? kNotFound : kDone;
}

void MediaCatalogue::readPlayLists(const player::PlaylistArray& all, const std::string& filter,
                                   ProgressShown& shown) {
  Attempt step;
  std::int32_t count = 0;
  step([&] { count = all.count(); });
  // Kept in hand: a read that starts while this one yields makes a list of its own.
  const TextListRef names = PlayListNames_;
  plugin::Unwaited saves(in_.host);
  for (std::int32_t i = 0; i < count; ++i) {
    Attempt reading;
    const float start = in_.clock.seconds();
    shown.update(std::int64_t{i} + 1, count);
    player::PlaylistRef playlist;
    std::string name;
    reading([&] {
      playlist = all.item(i);
      if (!playlist) throw base::Failure(base::number::kObjectMissing);
      name = playlist->name();
    });
    // A playlist that can't be read is left out without a word.
    if (reading.failed()) continue;
    registerName(kPlayListCategory, name, saves);
    web::FilterString(name, filter, " ");
    if (!name.empty()) names->add(name);
    noteSlow(*playlist, name, start);
    yieldAt(i, saves);
  }
}

// Reading the name of a playlist makes the player load it, and a large one takes its time.
void MediaCatalogue::noteSlow(const player::Playlist& playlist, const std::string& name, float start) {
  constexpr float kExcessive = 2;
  Attempt step;
  const float spent = in_.clock.seconds() - start;
  if (!in_.state.DebugMessages || spent <= kExcessive) return;
  step([&] {
    in_.loggers.Debug("Media Player: Excessive time processing playlist: " + name + " with " +
                      std::to_string(playlist.count()) + " media items in " +
                      std::to_string(std::lrint(spent)) + " seconds");
  });
}

}  // namespace catalogue
