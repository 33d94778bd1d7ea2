#include "engine/playlists/StoredPlaylist.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <deque>
#include <optional>

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

/// The places of items by all that `Same` looks at, so that one that is the same as another is found without
/// comparing it with each, where many are of one source.
class SamePlaces {
 public:
  SamePlaces(const std::vector<player::MediaRef>& items, std::size_t begin, std::size_t end)
      : items_(items), begin_(begin), end_(end) {}

  /// The first place at which `same` holds and that is not `used`, or nothing.
  template <class SameAt>
  std::optional<std::size_t> find(const player::Media& now, const std::vector<bool>& used, SameAt&& same) {
    const unsigned told = (now.duration() > 0 ? kLength : 0U) |
                          (now.getItemInfo("Album").empty() ? 0U : kAlbum) | (IsTrack(now) ? kTrack : 0U);
    const auto found = index(told).find(hash(now, told));
    if (found == index(told).end()) return std::nullopt;
    Places& places = found->second;
    while (places.next < places.all.size() && used[places.all[places.next]]) ++places.next;
    for (std::size_t i = places.next; i < places.all.size(); ++i)
      if (!used[places.all[i]] && same(places.all[i])) return places.all[i];
    return std::nullopt;
  }

 private:
  static constexpr unsigned kLength = 1;
  static constexpr unsigned kAlbum = 2;
  static constexpr unsigned kTrack = 4;
  struct Places {
    std::vector<std::size_t> all;
    std::size_t next = 0;  ///< those before are used
  };
  using Index = std::unordered_map<std::size_t, Places>;

  static std::size_t hash(const player::Media& media, unsigned told) {
    std::string key = media.sourceURL() + '\0' + media.name() + '\0' + media.getItemInfo("Artist");
    if ((told & kLength) != 0) key += '\0' + std::to_string(std::lround(media.duration()));
    if ((told & kAlbum) != 0) key += '\0' + media.getItemInfo("Album");
    return std::hash<std::string>()(key);
  }
  /// Of those that tell what the item tells; made when it is first asked for.
  Index& index(unsigned told) {
    auto& index = indices_.at(told);
    if (index) return *index;
    index.emplace();
    for (std::size_t place = begin_; place < end_; ++place) {
      // One that has been used may have been taken away.
      if (!items_[place] || ((told & kTrack) != 0 && !IsTrack(*items_[place]))) continue;
      (*index)[hash(*items_[place], told)].all.push_back(place);
    }
    return *index;
  }

  const std::vector<player::MediaRef>& items_;
  std::size_t begin_;
  std::size_t end_;
  std::array<std::optional<Index>, 8> indices_;
};

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
  const std::size_t end = before.size() - back;
  SamePlaces places(before, front, end);
  std::vector<bool> used(before.size());
  std::vector<std::size_t> changed;
  for (std::size_t now = front; now + back < items.size(); ++now) {
    const auto same = places.find(*items[now], used, [&](std::size_t then) { return keep(now, then); });
    if (same)
      used[*same] = true;
    else
      changed.push_back(now);
  }
  std::unordered_map<std::string, std::deque<std::size_t>> left;
  for (std::size_t then = front; then < end; ++then)
    if (!used[then]) left[SourceOf(*before[then])].push_back(then);
  for (const std::size_t now : changed) {
    const auto found = left.find(SourceOf(*items[now]));
    if (found == left.end() || found->second.empty()) continue;
    noteSwap(before[found->second.front()], items[now]);
    found->second.pop_front();
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
