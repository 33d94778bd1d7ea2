#include "engine/library/Lists.hpp"

#include <algorithm>
#include <iterator>

#include "base/Failure.hpp"
#include "engine/common/EraseAt.hpp"

namespace engine {
namespace {

void CheckIndex(std::int32_t index, std::size_t count) {
  if (index < 0 || static_cast<std::size_t>(index) >= count) throw base::Failure(base::number::kIndex);
}

void CheckMedia(const player::MediaRef& media) {
  if (!media) throw base::Failure(base::number::kObjectMissing);
}

}  // namespace

void ListPlaylist::check(std::int32_t index, std::size_t limit) { CheckIndex(index, limit); }

std::int32_t ListPlaylist::count() const { return static_cast<std::int32_t>(size()); }

player::MediaRef ListPlaylist::item(std::int32_t index) const {
  check(index, size());
  const auto place = static_cast<std::size_t>(index);
  if (items_) return (*items_)[place];
  return std::make_shared<TrackMedia>(shelf_, (*tracks_)[place]);
}

std::vector<player::MediaRef>& ListPlaylist::own() {
  if (!items_) {
    std::vector<player::MediaRef> items;
    items.reserve(tracks_->size());
    for (const TrackId id : *tracks_) items.push_back(std::make_shared<TrackMedia>(shelf_, id));
    items_ = std::move(items);
    tracks_.reset();
  }
  return *items_;
}

void ListPlaylist::appendItem(const player::MediaRef& media) { ListPlaylist::insertItem(count(), media); }

void ListPlaylist::insertItem(std::int32_t index, const player::MediaRef& media) {
  ListPlaylist::insertAll(index, {media});
}

void ListPlaylist::insertAll(std::int32_t index, const std::vector<player::MediaRef>& media) {
  check(index, size() + 1);
  std::vector<player::MediaRef> copies;
  copies.reserve(media.size());
  for (const player::MediaRef& each : media) {
    CheckMedia(each);
    // Each place has an object of its own, so that one of two equal items can be told from the other.
    const auto* known = dynamic_cast<const EngineMedia*>(each.get());
    copies.push_back(known != nullptr ? known->copy() : each);
  }
  own().insert(own().begin() + index, copies.begin(), copies.end());
  tell({{static_cast<std::size_t>(index), 0, copies.size()}});
}

std::size_t ListPlaylist::placeOf(const player::MediaRef& media) {
  CheckMedia(media);
  const auto& items = own();
  auto found = std::find(items.begin(), items.end(), media);
  if (found == items.end()) {
    const std::string source = media->sourceURL();
    found = std::find_if(items.begin(), items.end(),
                         [&](const auto& item) { return item->sourceURL() == source; });
  }
  if (found == items.end())
    throw base::Failure(base::number::kInvalidArgument, "The item is not in the playlist");
  return static_cast<std::size_t>(found - items.begin());
}

void ListPlaylist::removeItem(const player::MediaRef& media) {
  const std::size_t place = placeOf(media);
  own().erase(own().begin() + static_cast<std::ptrdiff_t>(place));
  tell({{place, 1, 0}});
}

void ListPlaylist::removeItems(const std::vector<std::int32_t>& places) {
  checkPlaces(places);
  EraseAt(own(), places);
  std::vector<ListStep> steps;
  steps.reserve(places.size());
  std::transform(places.rbegin(), places.rend(), std::back_inserter(steps), [](std::int32_t place) {
    return ListStep{static_cast<std::size_t>(place), 1, 0};
  });
  tell(steps);
}

void ListPlaylist::checkPlaces(const std::vector<std::int32_t>& places) const {
  std::int32_t before = -1;
  for (const std::int32_t place : places) {
    if (place <= before) throw base::Failure(base::number::kIndex);
    check(place, size());
    before = place;
  }
}

void ListPlaylist::moveItem(std::int32_t oldIndex, std::int32_t newIndex) {
  check(oldIndex, size());
  check(newIndex, size());
  auto& items = own();
  const player::MediaRef media = items[static_cast<std::size_t>(oldIndex)];
  items.erase(items.begin() + oldIndex);
  items.insert(items.begin() + newIndex, media);
  tell({{static_cast<std::size_t>(oldIndex), 1, 0}, {static_cast<std::size_t>(newIndex), 0, 1}});
}

void ListPlaylist::tell(const std::vector<ListStep>& steps) const {
  if (watch_ != nullptr) watch_->edited(steps);
}

player::PlaylistRef ListPlaylistArray::item(std::int32_t index) const {
  CheckIndex(index, items_.size());
  return items_[static_cast<std::size_t>(index)];
}

std::string ListStringCollection::item(std::int32_t index) const {
  CheckIndex(index, items_.size());
  return items_[static_cast<std::size_t>(index)];
}

}  // namespace engine
