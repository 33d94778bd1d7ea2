#include <limits>

#include "base/Attempt.hpp"
#include "base/Text.hpp"
#include "catalogue/MediaCatalogue.hpp"

// The half of MediaCatalogue that finds groups and items and changes playlists; lists of names are in
// CategoryLists.cpp.
namespace catalogue {

using base::Attempt;
using base::Failure;

namespace {

template <class T>
T& Existing(const std::shared_ptr<T>& object) {
  if (!object) throw Failure(base::number::kObjectMissing);
  return *object;
}

}  // namespace

std::int32_t MediaCatalogue::GetGroupItems(const std::string& category, const std::string& name,
                                           player::PlaylistRef& group) {
  ProgressShown shown(in_.progress, "GetGroupItems");
  group.reset();
  Attempt step;
  std::int32_t status = kDone;
  if (base::SameText(category, kMediaLibraryCategory)) {
    // Its failure is no longer pending when it returns, and so counts as not found below.
    status = GetAllMedia(group);
  } else if (base::SameText(category, kPlayListCategory)) {
    status = GetPlayListByName(name, group);
    if (status != kDone && status != kNotFound) return status;
  } else if (!name.empty()) {
    step([&] { group = media().getByAttribute(category, in_.xref.LookupNameXref(category, name)); });
    if (step.failed()) return step.number();
  }
  if (!group) return kNotFound;
  // Held while the walk calls the host, which may let in whoever owns `group`.
  const player::PlaylistRef walked = group;
  registerTitles(*walked, shown);
  return status;
}

// From here on the titles of the group lead back from their keys.
void MediaCatalogue::registerTitles(const player::Playlist& group, ProgressShown& shown) {
  Attempt step;
  std::int32_t count = 0;
  step([&] { count = group.count(); });
  plugin::Unwaited saves(in_.host);
  step([&] {
    // The counter has 16 bits. It overflows behind item 32,767, which ends the walk and nothing else: the
    // group is handed out in full.
    for (std::int16_t i = 0; i < count;) {
      Attempt item;
      item([&] { registerName(kMediaLibraryCategory, Existing(group.item(i)).name(), saves); });
      shown.update(std::int64_t{i} + 1, count);
      if (i == std::numeric_limits<std::int16_t>::max()) throw Failure(base::number::kOverflow);
      ++i;
    }
  });
}

std::int32_t MediaCatalogue::GetMediaItem(std::string& title, player::PlaylistRef& list,
                                          player::MediaRef& item) {
  ProgressShown shown(in_.progress, "GetMediaItem");
  item.reset();
  title = in_.xref.LookupNameXref(kMediaLibraryCategory, title);
  Attempt step;
  if (!list) {
    step([&] { list = media().getByName(title); });
    if (step.failed()) return step.number();
    step([&] {
      if (Existing(list).count() > 0) item = list->item(0);
    });
  } else {
    const std::string wanted = base::LowerCase(title);
    std::int32_t count = 0;
    step([&] { count = list->count(); });
    for (std::int32_t i = 0; i < count && !item; ++i) {
      step([&] {
        const player::MediaRef member = list->item(i);
        if (base::LowerCase(Existing(member).name()) == wanted) item = member;
      });
    }
    // The item is handed out all the same: not everybody asks for the status.
    if (step.failed()) return step.number();
  }
  if (!item) return kNotFound;
  const player::MediaRef kept = item;
  step([&] { registerName(kMediaLibraryCategory, kept->name()); });
  return kDone;
}

std::int32_t MediaCatalogue::GetPlayListByName(const std::string& name, player::PlaylistRef& list) {
  if (name.empty()) return kNotFound;
  Attempt step;
  player::PlaylistArrayRef found;
  std::int32_t count = 0;
  step([&] {
    found = playlists().getByName(in_.xref.LookupNameXref(kPlayListCategory, name));
    count = Existing(found).count();
  });
  if (step.failed()) return step.number();
  if (count == 0) return kNotFound;
  // Others of the same name are ignored.
  step([&] { list = found->item(0); });
  return step.number();
}

std::int32_t MediaCatalogue::GetAllMedia(player::PlaylistRef& list) {
  Attempt step;
  step([&] { list = media().getAll(); });
  return step.number();
}

std::int32_t MediaCatalogue::CreatePlayList(const std::string& name, player::PlaylistRef& list) {
  constexpr std::int32_t kNothingMade = -2;
  if (name.empty()) return kNotFound;
  list.reset();
  Attempt step;
  step([&] { list = playlists().newPlaylist(name); });
  if (step.failed()) return step.number();
  if (!list) return kNothingMade;
  registerName(kPlayListCategory, name);
  in_.stale.PlayListsStale = true;
  return kDone;
}

namespace {

constexpr std::int32_t kNoPlayList = -1;
constexpr std::int32_t kNoItem = -2;
constexpr std::int32_t kRefused = -3;
constexpr std::int32_t kNothingPlayed = -4;
constexpr std::int32_t kNamelessMedia = -5;
constexpr std::int32_t kNotInPlayedList = -6;
constexpr std::int32_t kUrlNotAdded = -7;

}  // namespace

std::int32_t MediaCatalogue::itemToAdd(player::MediaRef& item) {
  player::PlayTarget& target = in_.target;
  Attempt step;
  if (!target.PlayTargetURL.empty()) {
    step([&] { item = media().add(target.PlayTargetURL); });
    return item ? kDone : kUrlNotAdded;
  }
  item = target.PlayTargetMedia;
  if (item) return kDone;
  if (!target.PlayTargetPlayList) return kNothingPlayed;
  std::string name;
  step([&] { name = in_.form.currentMedia()->name(); });
  if (name.empty()) return kNamelessMedia;
  return GetMediaItem(name, target.PlayTargetPlayList, item) == kDone ? kDone : kNotInPlayedList;
}

base::Value MediaCatalogue::AddMediaToPlayList(const std::string& name) {
  player::PlaylistRef list;
  // A playlist that can't be read is made anew, like one that is missing.
  if (GetGroupItems(kPlayListCategory, name, list) != kDone) CreatePlayList(name, list);
  if (!list) return kNoPlayList;
  player::MediaRef item;
  if (const std::int32_t reason = itemToAdd(item); reason != kDone) return reason;
  if (!item) return kNoItem;
  Attempt step;
  step([&] { list->appendItem(item); });
  if (!step.failed()) return {};
  // The title of the refused item is registered, that of an added one is not: it comes with its group.
  step([&] { registerName(kMediaLibraryCategory, item->name()); });
  return kRefused;
}

}  // namespace catalogue
