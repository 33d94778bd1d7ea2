#include "engine/playlists/StoredPlaylist.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <list>

#include "base/Failure.hpp"

namespace engine {
namespace {

/// A length that the file does not tell may have been learnt since.
bool SameLength(double told, double known) { return told <= 0 || std::lround(told) == std::lround(known); }

/// An album that the file does not tell, as none can, may be known.
bool SameAlbum(const std::string& told, const std::string& known) { return told.empty() || told == known; }

bool IsTrack(const player::Media& media) { return dynamic_cast<const TrackMedia*>(&media) != nullptr; }

bool Same(const player::Media& now, const player::Media& before) {
  return now.sourceURL() == before.sourceURL() && now.name() == before.name() &&
         SameLength(now.duration(), before.duration()) && (IsTrack(before) || !IsTrack(now)) &&
         SameAlbum(now.getItemInfo("Album"), before.getItemInfo("Album")) &&
         now.getItemInfo("Artist") == before.getItemInfo("Artist");
}

M3uItem Written(const player::MediaRef& media) {
  if (!media) throw base::Failure(base::number::kObjectMissing);
  return ItemOf(*media);
}

}  // namespace

M3uItem ItemOf(const player::Media& media) {
  M3uItem item;
  item.location = LocationOf(media);
  const std::string artist = media.getItemInfo("Artist");
  item.title = artist.empty() ? media.name() : artist + " - " + media.name();
  if (media.duration() > 0) item.seconds = static_cast<int>(std::lround(media.duration()));
  return item;
}

M3uItem ItemOf(const player::ToldMedia& told) {
  M3uItem item{PathOf(told.url), told.artist.empty() ? told.title : told.artist + " - " + told.title};
  if (told.seconds > 0 && told.seconds < kLongestItem)
    item.seconds = static_cast<int>(std::lround(told.seconds));
  return item;
}

void StoredPlaylist::name(const std::string& value) {
  if (keeper_ != nullptr)
    keeper_->rename(*this, value);
  else
    ListPlaylist::name(value);
}

// A player that is started anew is later than this one, and no list changes a thousand times a millisecond.
std::int64_t StoredPlaylist::firstRevision() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count() * 1000;
}

void StoredPlaylist::appendItem(const player::MediaRef& media) {
  if (keeper_ == nullptr) return ListPlaylist::appendItem(media);
  const M3uItem item = Written(media);
  M3uText text = keeper_->open(*this);
  text.insert(size(), item);
  keeper_->save(*this, text);
  ListPlaylist::appendItem(media);
  ++revision_;
  keeper_->tellContent();
}

void StoredPlaylist::insertItem(std::int32_t index, const player::MediaRef& media) {
  if (keeper_ == nullptr) return ListPlaylist::insertItem(index, media);
  const M3uItem item = Written(media);
  M3uText text = keeper_->open(*this);
  check(index, size() + 1);
  text.insert(static_cast<std::size_t>(index), item);
  keeper_->save(*this, text);
  ListPlaylist::insertItem(index, media);
  ++revision_;
  keeper_->tellContent();
}

void StoredPlaylist::insertItems(std::int32_t index, const std::vector<player::ToldMedia>& told) {
  if (keeper_ == nullptr) return ListPlaylist::insertItems(index, told);
  M3uText text = keeper_->open(*this);
  check(index, size() + 1);
  std::vector<player::MediaRef> media;
  std::vector<M3uItem> items;
  for (const player::ToldMedia& each : told) {
    media.push_back(keeper_->mediaOf(ItemOf(each)));
    items.push_back(ItemOf(*media.back()));
  }
  text.insertAll(static_cast<std::size_t>(index), items);
  keeper_->save(*this, text);
  own().insert(own().begin() + index, media.begin(), media.end());
  revision_ += static_cast<std::int64_t>(media.size());
  keeper_->tellContent();
}

void StoredPlaylist::removeItem(const player::MediaRef& media) {
  if (keeper_ == nullptr) return ListPlaylist::removeItem(standsFor(media));
  M3uText text = keeper_->open(*this);
  const std::size_t place = placeOf(standsFor(media));
  text.remove(place);
  keeper_->save(*this, text);
  own().erase(own().begin() + static_cast<std::ptrdiff_t>(place));
  ++revision_;
  keeper_->tellContent();
}

void StoredPlaylist::removeItems(const std::vector<std::int32_t>& places) {
  if (keeper_ == nullptr) return ListPlaylist::removeItems(places);
  M3uText text = keeper_->open(*this);
  checkPlaces(places);
  text.removeAll(places);
  keeper_->save(*this, text);
  ListPlaylist::removeItems(places);
  revision_ += static_cast<std::int64_t>(places.size());
  keeper_->tellContent();
}

void StoredPlaylist::moveItem(std::int32_t oldIndex, std::int32_t newIndex) {
  if (keeper_ == nullptr) return ListPlaylist::moveItem(oldIndex, newIndex);
  M3uText text = keeper_->open(*this);
  check(oldIndex, size());
  check(newIndex, size());
  text.move(static_cast<std::size_t>(oldIndex), static_cast<std::size_t>(newIndex));
  keeper_->save(*this, text);
  ListPlaylist::moveItem(oldIndex, newIndex);
  ++revision_;
  keeper_->tellContent();
}

void StoredPlaylist::take(const std::string& name, std::vector<player::MediaRef> items) {
  forgetSwaps();
  std::vector<player::MediaRef>& before = own();
  const auto keep = [&](std::size_t now, std::size_t then) {
    const bool same = Same(*items[now], *before[then]);
    if (same) items[now] = std::move(before[then]);
    return same;
  };
  std::size_t front = 0;
  while (front < items.size() && front < before.size() && keep(front, front)) ++front;
  const std::size_t most = std::min(items.size(), before.size()) - front;
  std::size_t back = 0;
  while (back < most && keep(items.size() - back - 1, before.size() - back - 1)) ++back;

  // Between, others have changed more than one place: by their sources, in their order, and those first that
  // are the same in all.
  std::unordered_map<std::string, std::list<std::size_t>> left;
  for (std::size_t then = front; then + back < before.size(); ++then) {
    left[SourceOf(*before[then])].push_back(then);
  }
  std::vector<std::size_t> changed;
  const auto those = [&](std::size_t now) { return left.find(SourceOf(*items[now])); };
  for (std::size_t now = front; now + back < items.size(); ++now) {
    const auto found = those(now);
    if (found == left.end()) continue;
    auto& places = found->second;
    const auto same =
        std::find_if(places.begin(), places.end(), [&](std::size_t then) { return keep(now, then); });
    if (same == places.end())
      changed.push_back(now);
    else
      places.erase(same);
  }
  for (const std::size_t now : changed) {
    auto& places = those(now)->second;
    if (places.empty()) continue;
    noteSwap(before[places.front()], items[now]);
    places.pop_front();
  }
  own() = std::move(items);
  ++revision_;
  ListPlaylist::name(name);
}

void StoredPlaylist::renew(const std::function<player::MediaRef(const player::MediaRef&)>& newer) {
  forgetSwaps();
  ++revision_;
  for (player::MediaRef& item : own()) {
    const player::MediaRef now = newer(item);
    if (!now) continue;
    noteSwap(item, now);
    item = now;
  }
}

void StoredPlaylist::forgetSwaps() {
  std::erase_if(swaps_, [](const auto& swap) { return swap.second.held.expired(); });
}

void StoredPlaylist::noteSwap(const player::MediaRef& before, const player::MediaRef& now) {
  if (before.use_count() > 1) swaps_.insert_or_assign(before.get(), Swap{before, now});  // somebody holds it
}

player::MediaRef StoredPlaylist::standsFor(player::MediaRef media) const {
  while (true) {
    const auto swap = swaps_.find(media.get());
    if (swap == swaps_.end() || swap->second.held.lock() != media) return media;
    media = swap->second.now;
  }
}

}  // namespace engine
