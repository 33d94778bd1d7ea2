#include "engine/StoredPlaylist.hpp"

#include <algorithm>
#include <cmath>

#include "base/Failure.hpp"

namespace engine {
namespace {

/// A length that the file does not tell may have been learnt since.
bool SameLength(double told, double known) { return told <= 0 || std::lround(told) == std::lround(known); }

bool Same(const player::Media& now, const player::Media& before) {
  return now.sourceURL() == before.sourceURL() && now.name() == before.name() &&
         SameLength(now.duration(), before.duration()) &&
         now.getItemInfo("Album") == before.getItemInfo("Album") &&
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

void StoredPlaylist::name(const std::string& value) {
  if (keeper_ != nullptr)
    keeper_->rename(*this, value);
  else
    ListPlaylist::name(value);
}

void StoredPlaylist::appendItem(const player::MediaRef& media) {
  if (keeper_ == nullptr) return ListPlaylist::appendItem(media);
  const M3uItem item = Written(media);
  M3uText text = keeper_->open(*this);
  text.insert(size(), item);
  keeper_->save(*this, text.text());
  ListPlaylist::appendItem(media);
  keeper_->tellContent();
}

void StoredPlaylist::insertItem(std::int32_t index, const player::MediaRef& media) {
  if (keeper_ == nullptr) return ListPlaylist::insertItem(index, media);
  const M3uItem item = Written(media);
  M3uText text = keeper_->open(*this);
  check(index, size() + 1);
  text.insert(static_cast<std::size_t>(index), item);
  keeper_->save(*this, text.text());
  ListPlaylist::insertItem(index, media);
  keeper_->tellContent();
}

void StoredPlaylist::removeItem(const player::MediaRef& media) {
  if (keeper_ == nullptr) return ListPlaylist::removeItem(media);
  M3uText text = keeper_->open(*this);
  const std::size_t place = placeOf(media);
  text.remove(place);
  keeper_->save(*this, text.text());
  own().erase(own().begin() + static_cast<std::ptrdiff_t>(place));
  keeper_->tellContent();
}

void StoredPlaylist::moveItem(std::int32_t oldIndex, std::int32_t newIndex) {
  if (keeper_ == nullptr) return ListPlaylist::moveItem(oldIndex, newIndex);
  M3uText text = keeper_->open(*this);
  check(oldIndex, size());
  check(newIndex, size());
  text.move(static_cast<std::size_t>(oldIndex), static_cast<std::size_t>(newIndex));
  keeper_->save(*this, text.text());
  ListPlaylist::moveItem(oldIndex, newIndex);
  keeper_->tellContent();
}

void StoredPlaylist::take(const std::string& name, std::vector<player::MediaRef> items) {
  const std::vector<player::MediaRef>& before = own();
  const auto keep = [&](std::size_t now, std::size_t then) {
    const bool same = Same(*items[now], *before[then]);
    if (same) items[now] = before[then];
    return same;
  };
  std::size_t front = 0;
  while (front < items.size() && front < before.size() && keep(front, front)) ++front;
  const std::size_t most = std::min(items.size(), before.size()) - front;
  for (std::size_t back = 1; back <= most && keep(items.size() - back, before.size() - back);) ++back;
  own() = std::move(items);
  ListPlaylist::name(name);
}

}  // namespace engine
