#include "engine/playback/PlayQueue.hpp"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <functional>
#include <unordered_map>

#include "engine/library/Media.hpp"

namespace engine {
namespace {

/// The same for an item before and after the library has got to know it. A number, as there may be very many;
/// two that share one by chance would only be taken for twins.
std::size_t KeyOf(const player::Media& media) { return std::hash<std::string>{}(SourceOf(media)); }

}  // namespace

int PlayQueue::count() const { return playlist_ ? playlist_->count() : 0; }

void PlayQueue::assign(player::PlaylistRef playlist) {
  playlist_ = std::move(playlist);
  current_.reset();
  rewind();
}

bool PlayQueue::assignAt(player::PlaylistRef playlist, const std::string& source, int near) {
  assign(std::move(playlist));
  if (!current_) return false;
  const int place = placeOf(source, std::clamp(near, 0, knownCount_ - 1));
  moveTo(place >= 0 ? place : std::clamp(near, 0, knownCount_ - 1));
  return place >= 0;
}

void PlayQueue::rewind() {
  knownCount_ = count();
  index_ = 0;
  gone_ = stale_ = false;
  if (shuffle_) {
    order_.restart(knownCount_);
    keys_ = keys();
    if (knownCount_ > 0) index_ = order_.current();
  }
  current_ = knownCount_ > 0 ? playlist_->item(index_) : nullptr;
}

void PlayQueue::takeUp() {
  if (!current_ && count() > 0) rewind();
}

void PlayQueue::letGo() {
  if (!current_) return;
  catchUp();
  if (knownCount_ == 0) {
    rewind();
  } else if (gone_) {
    moveTo(following(true).value_or(0));
  }
}

int PlayQueue::place() {
  if (!current_) return -1;
  catchUp();
  return gone_ || knownCount_ == 0 ? -1 : index_;
}

void PlayQueue::comeNext(int first, int count) {
  if (!shuffle_ || !current_) return;
  catchUp();
  order_.comeNext(first, count);
}

void PlayQueue::replace(player::PlaylistRef playlist) {
  playlist_ = std::move(playlist);
  stale_ = true;
  if (!current_) {
    rewind();
    return;
  }
  catchUp();
}

void PlayQueue::moveTo(int index) {
  index_ = index;
  gone_ = false;
  if (shuffle_) order_.moveTo(index);
  current_ = playlist_->item(index);
}

void PlayQueue::moveTo(const player::MediaRef& media, int index) {
  const std::string source = SourceOf(*media);
  const auto next = following(true);  // among several of the same, the one that was meant
  const int place = next && SourceOf(*playlist_->item(*next)) == source ? *next : placeOf(source, index);
  if (place >= 0) {
    moveTo(place);
    return;
  }
  if (!gone_) index_ = std::min(index_, knownCount_ - 1);
  gone_ = true;
  current_ = media;
}

int PlayQueue::placeOf(const std::string& source, int near) const {
  const int now = count();
  const auto stands = [&](int place) {
    return place >= 0 && place < now && SourceOf(*playlist_->item(place)) == source;
  };
  const int furthest = std::max(std::abs(near), std::abs(now - near));
  for (int away = 0; away <= furthest; ++away) {
    if (stands(near + away)) return near + away;
    if (stands(near - away)) return near - away;
  }
  return -1;
}

std::vector<std::size_t> PlayQueue::keys() const {
  const int now = count();
  std::vector<std::size_t> all;
  all.reserve(static_cast<std::size_t>(now));
  for (int place = 0; place < now; ++place) all.push_back(KeyOf(*playlist_->item(place)));
  return all;
}

void PlayQueue::renumber() {
  std::vector<std::size_t> now = keys();
  if (now == keys_) return;
  std::unordered_map<std::size_t, std::deque<int>> places;  // several for an item that is in it twice
  for (std::size_t place = 0; place < now.size(); ++place) {
    places[now[place]].push_back(static_cast<int>(place));
  }
  std::vector<int> to(keys_.size(), -1);
  for (std::size_t old = 0; old < keys_.size(); ++old) {
    const auto found = places.find(keys_[old]);
    if (found == places.end() || found->second.empty()) continue;
    to[old] = found->second.front();
    found->second.pop_front();
  }
  order_.renumber(to, static_cast<int>(now.size()));
  keys_ = std::move(now);
}

void PlayQueue::catchUp() {
  const int now = count();
  if (!current_ || now == 0) {
    knownCount_ = now;
    return;
  }
  const std::string source = SourceOf(*current_);
  const auto stands = [&](int place) {
    return place >= 0 && place < now && SourceOf(*playlist_->item(place)) == source;
  };
  if (!stale_ && now == knownCount_ && (gone_ || stands(index_))) return;
  stale_ = false;
  knownCount_ = now;
  if (shuffle_) renumber();
  const int place = shuffle_ && stands(order_.current()) ? order_.current() : placeOf(source, index_);
  if (place >= 0) {
    index_ = place;
    gone_ = false;
    if (shuffle_ && order_.current() != place) order_.moveTo(place);
    return;
  }
  if (!gone_) index_ = std::min(index_, now) - 1;  // what has moved up into its place comes next
  gone_ = true;
}

std::optional<int> PlayQueue::following(bool wrap) {
  catchUp();
  if (knownCount_ == 0) return std::nullopt;
  if (shuffle_) return order_.following(wrap);
  if (index_ + 1 < knownCount_) return index_ + 1;
  return wrap ? std::optional<int>(0) : std::nullopt;
}

std::optional<int> PlayQueue::preceding(bool wrap) {
  catchUp();
  if (knownCount_ == 0) return std::nullopt;
  if (shuffle_) {
    if (const auto before = order_.preceding()) return before;
    return wrap ? order_.following(true) : std::nullopt;
  }
  if (index_ > 0) return index_ - 1;
  return wrap ? std::optional<int>(knownCount_ - 1) : std::nullopt;
}

void PlayQueue::shuffle(bool value) {
  if (value && !shuffle_) {
    catchUp();
    order_.restart(count(), index_);
    keys_ = keys();
  }
  shuffle_ = value;
}

}  // namespace engine
