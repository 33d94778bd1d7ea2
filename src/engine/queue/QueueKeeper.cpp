#include "engine/queue/QueueKeeper.hpp"

#include <utility>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"

namespace engine {
namespace {

constexpr base::Milliseconds kBetween{5000};

}  // namespace

QueueKeeper::QueueKeeper(Parts parts, const std::string& folder, files::WriteCall write)
    : parts_(std::move(parts)),
      journal_(folder, parts_.message, std::move(write)),
      timer_(parts_.loop.makeTimer(kBetween, [this] { look(); })),
      post_(parts_.loop) {}

QueueKeeper::~QueueKeeper() {
  if (ready_) note();
  if (watched_) watched_->watch(nullptr);
}

void QueueKeeper::keep(const std::function<void()>& write) {
  base::Handled(
      [&] {
        write();
        told_ = false;
      },
      [&](const base::Failure& failure) {
        if (!std::exchange(told_, true))
          parts_.message("What is played can't be kept for the next start: " + failure.description());
      });
}

KeptPlace QueueKeeper::place() const {
  const auto& media = parts_.playback.queue().current();
  if (!media) return {};
  // What has no length is no recording: there is no place in it to come back to.
  const double seconds = media->duration() > 0 ? parts_.playback.position() : 0;
  return {std::max(0, parts_.playback.queue().index()), SourceOf(*media), seconds};
}

KeptName QueueKeeper::name() const {
  KeptName name;
  name.mark = parts_.mark();
  if (!parts_.chosen()) return name;
  name.kind = list_ ? QueueKind::kList : QueueKind::kNothing;
  if (!list_) return name;
  name.name = list_->name();
  if (const auto* stored = dynamic_cast<const StoredPlaylist*>(list_.get())) {
    name.kind = QueueKind::kStored;
    name.path = stored->path();
  }
  return name;
}

void QueueKeeper::watch(const player::PlaylistRef& list) {
  if (watched_) watched_->watch(nullptr);
  list_ = list;
  revision_ = list ? list->revision() : 0;
  watched_ = std::dynamic_pointer_cast<ListPlaylist>(list);
  // A stored one is in its own file with every change, so that its items here have time.
  if (dynamic_cast<StoredPlaylist*>(watched_.get()) != nullptr) watched_.reset();
  if (watched_) watched_->watch(this);
}

void QueueKeeper::note() {
  if (!ready_) return;
  const Playback& playback = parts_.playback;
  const bool playing = playback.running() || playback.state() == player::kBuffering;
  const auto& list = playback.queue().playlist();
  const bool library = !parts_.chosen();
  const bool changed = list != list_;
  if (changed) watch(list);
  if (list && !changed && list->revision() != revision_) {
    revision_ = list->revision();
    stale_ = true;
  }
  const bool look = playing || stale_;
  if (timer_->enabled() != look) timer_->enabled(look);

  const KeptPlace now = place();
  if (library && !journal_.any() && now.index == 0 && now.seconds == 0) return;  // as it is without a word
  if ((changed && !library) || library != keptLibrary_ || parts_.mark() != keptMark_ ||
      journal_.wantsWhole()) {
    keep([this] { writeWhole(); });
    return;
  }
  if (now == kept_) return;
  const bool stopped = playback.state() == player::kStopped && now.source == kept_.source && now.seconds == 0;
  if (!stopped) {
    keep([&] { writePlace(now); });
    return;
  }
  // Stopped by somebody, it begins anew; stopped as the player ends, it goes on from here at the next start.
  // Whoever ends the player gives the loop no other turn.
  if (std::exchange(zeroing_, true)) return;
  post_([this] {
    zeroing_ = false;
    if (!parts_.playback.running()) keep([this] { writePlace(place()); });
  });
}

void QueueKeeper::look() {
  if (stale_) keep([this] { writeWhole(); });
  note();
}

void QueueKeeper::writePlace(const KeptPlace& place) {
  if (place == kept_) return;
  if (journal_.wantsWhole()) return writeWhole();
  journal_.append(EncodedPlace(place));
  kept_ = place;
}

void QueueKeeper::writeWhole() {
  KeptQueue queue{name(), {}, place()};
  stale_ = false;
  if (list_ && queue.name.kind != QueueKind::kLibrary) {
    const std::int32_t count = list_->count();
    queue.items.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) queue.items.push_back(EncodedItem(*list_->item(i)));
  }
  // Also if it fails: what can't be written is tried again when something changes, not at every look.
  keptLibrary_ = queue.name.kind == QueueKind::kLibrary;
  keptMark_ = queue.name.mark;
  journal_.begin(queue);
  kept_ = queue.place;
}

void QueueKeeper::edited(const std::vector<ListStep>& steps) {
  keep([&] {
    if (!parts_.chosen()) return;
    if (journal_.wantsWhole()) return writeWhole();
    std::vector<std::string> added;
    for (const ListStep& step : steps) {  // what a change adds lies where it says, and nothing else moves it
      for (std::size_t i = 0; i < step.added; ++i)
        added.push_back(EncodedItem(*watched_->item(static_cast<std::int32_t>(step.place + i))));
    }
    journal_.append(EncodedEdit(steps, added));
  });
  if (std::exchange(settling_, true)) return;
  post_([this] {
    settling_ = false;
    parts_.playback.listChanged();
  });
}

player::MediaRef QueueKeeper::mediaOf(const DecodedItem& item) const {
  if (auto known = parts_.library.trackAt(item.location)) return known;
  if (item.track) return parts_.library.mediaAt(item.location);
  return std::make_shared<LooseMedia>(item.location, item.tags, parts_.library.shelf());
}

player::PlaylistRef QueueKeeper::listOf(const KeptQueue& queue) const {
  if (queue.name.kind == QueueKind::kStored) {
    const auto all = parts_.playlists.getByName(queue.name.name);
    player::PlaylistRef found;
    for (std::int32_t i = 0; i < all->count(); ++i) {
      auto list = all->item(i);
      const auto* stored = dynamic_cast<const StoredPlaylist*>(list.get());
      if (!found || (stored != nullptr && stored->path() == queue.name.path)) found = std::move(list);
    }
    if (found) return found;
  }
  std::vector<player::MediaRef> items;
  items.reserve(queue.items.size());
  for (const std::string& item : queue.items) items.push_back(mediaOf(DecodeItem(item)));
  return std::make_shared<ListPlaylist>(queue.name.name, std::move(items));
}

void QueueKeeper::begin() {
  ready_ = true;
  note();
}

std::optional<QueueKeeper::TakenUp> QueueKeeper::takeUp() {
  std::optional<TakenUp> taken;
  keep([&] {
    const auto kept = journal_.load();
    if (!kept) return;
    player::PlaylistRef list = parts_.playback.queue().playlist();
    if (kept->name.kind == QueueKind::kNothing) list.reset();
    if (kept->name.kind == QueueKind::kList || kept->name.kind == QueueKind::kStored) list = listOf(*kept);
    parts_.playback.preset(list, kept->place.source, kept->place.index, kept->place.seconds);
    taken = TakenUp{kept->name.kind != QueueKind::kLibrary, kept->name.mark};
    kept_ = kept->place;
    keptLibrary_ = !taken->chosen;
    keptMark_ = taken->mark;
  });
  watch(parts_.playback.queue().playlist());
  return taken;
}

}  // namespace engine
