#include "engine/PlayQueue.hpp"

#include <algorithm>

namespace engine {

int PlayQueue::count() const { return playlist_ ? playlist_->count() : 0; }

void PlayQueue::assign(player::PlaylistRef playlist) {
  playlist_ = std::move(playlist);
  current_.reset();
  rewind();
}

void PlayQueue::rewind() {
  knownCount_ = count();
  index_ = 0;
  gone_ = false;
  order_.restart(knownCount_);
  if (shuffle_ && knownCount_ > 0) index_ = order_.current();
  if (!shuffle_) order_.restart(knownCount_, 0);
  current_ = knownCount_ > 0 ? playlist_->item(index_) : nullptr;
}

void PlayQueue::replace(player::PlaylistRef playlist) {
  playlist_ = std::move(playlist);
  if (!current_) {
    rewind();
    return;
  }
  catchUp();
}

void PlayQueue::moveTo(int index) {
  index_ = index;
  gone_ = false;
  order_.moveTo(index);
  current_ = playlist_->item(index);
}

void PlayQueue::catchUp() {
  const int now = count();
  if (!current_ || now == 0) {
    knownCount_ = now;
    return;
  }
  const std::string source = current_->sourceURL();
  const auto stands = [&](int place) {
    return place >= 0 && place < now && playlist_->item(place)->sourceURL() == source;
  };
  if (now == knownCount_ && (gone_ || stands(index_))) return;
  order_.resize(now);
  knownCount_ = now;
  if (stands(index_)) return;
  for (int place = 0; place < now; ++place) {
    if (!stands(place)) continue;
    index_ = place;
    gone_ = false;
    order_.moveTo(place);
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
  if (value && !shuffle_) order_.restart(count(), index_);
  shuffle_ = value;
}

}  // namespace engine
