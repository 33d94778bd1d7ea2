#include "engine/playback/QueueList.hpp"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "base/Failure.hpp"
#include "engine/library/Lists.hpp"

namespace engine {
namespace {

std::int64_t Milliseconds() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace

QueueList::QueueList(Playback& playback, Parts parts)
    : playback_(playback), parts_(std::move(parts)), mark_(Milliseconds()), revision_(mark_ * 1000) {}

void QueueList::begin() {
  mark_ = std::max(mark_ + 1, Milliseconds());
  own_.reset();
}

player::PlaylistRef QueueList::held() const {
  return parts_.shown() ? playback_.queue().playlist() : nullptr;
}

QueueList::Seen QueueList::seen() const {
  const player::PlaylistRef list = held();
  return {list.get(), mark_, list ? list->revision() : 0, list ? list->count() : 0};
}

std::string QueueList::name() const {
  const player::PlaylistRef list = held();
  return list ? list->name() : std::string();
}

void QueueList::name(const std::string& /*value*/) { throw base::Failure(base::number::kInvalidArgument); }

std::int32_t QueueList::count() const {
  const player::PlaylistRef list = held();
  return list ? list->count() : 0;
}

player::MediaRef QueueList::item(std::int32_t index) const {
  const player::PlaylistRef list = held();
  if (!list) throw base::Failure(base::number::kIndex);
  return list->item(index);
}

std::int64_t QueueList::revision() const {
  countOthers();
  return revision_;
}

void QueueList::countOthers() const {
  const Seen now = seen();
  if (!(now == seen_)) ++revision_;
  seen_ = now;
}

template <class Work>
void QueueList::change(std::int64_t steps, Work work) {
  countOthers();  // before this
  const player::PlaylistRef list = held();
  if (!list || list != own_) {
    std::vector<player::MediaRef> items;
    const std::int32_t size = list ? list->count() : 0;
    items.reserve(static_cast<std::size_t>(size));
    for (std::int32_t i = 0; i < size; ++i) items.push_back(list->item(i));
    const auto own = std::make_shared<ListPlaylist>(list ? list->name() : std::string(), std::move(items));
    work(*own);  // a change that can't be made leaves everything as it was
    own_ = own;
    parts_.edited();
    playback_.refresh(own);
  } else {
    work(dynamic_cast<ListPlaylist&>(*own_));
    parts_.edited();
    playback_.listChanged();
  }
  revision_ += steps;
  seen_ = seen();
}

void QueueList::insert(std::int32_t index, const std::vector<player::MediaRef>& media) {
  if (media.empty()) return;
  const auto size = static_cast<std::int32_t>(media.size());
  const bool next = index > 0 && parts_.shown() && playback_.place() == index - 1;
  change(size, [&](ListPlaylist& list) { list.insertAll(index, media); });
  if (next) playback_.comeNext(index, size);
}

void QueueList::insertItem(std::int32_t index, const player::MediaRef& media) { insert(index, {media}); }

void QueueList::insertItems(std::int32_t index, const std::vector<player::ToldMedia>& items) {
  std::vector<player::MediaRef> media;
  media.reserve(items.size());
  for (const player::ToldMedia& each : items) media.push_back(parts_.mediaOf(each));
  insert(index, media);
}

void QueueList::removeItem(const player::MediaRef& media) {
  change(1, [&](ListPlaylist& list) { list.removeItem(media); });
}

void QueueList::removeItems(const std::vector<std::int32_t>& places) {
  if (places.empty()) return;
  change(static_cast<std::int64_t>(places.size()), [&](ListPlaylist& list) { list.removeItems(places); });
}

void QueueList::moveItem(std::int32_t oldIndex, std::int32_t newIndex) {
  const std::int32_t place = parts_.shown() ? playback_.place() : -1;
  const std::int32_t placeThen = oldIndex < place ? place - 1 : place;
  const bool next = place >= 0 && oldIndex != place && newIndex == placeThen + 1;
  change(1, [&](ListPlaylist& list) { list.moveItem(oldIndex, newIndex); });
  if (next) playback_.comeNext(newIndex, 1);
}

}  // namespace engine
