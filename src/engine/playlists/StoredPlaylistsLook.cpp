// What a look around the folder finds.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string_view>
#include <utility>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "engine/playlists/StoredPlaylists.hpp"
#include "engine/scan/TagReader.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLooks = 32;  // at a time, where there is much to read

/// Throws for a text of which no line could be read, and which a change would spoil.
void CheckEncoding(std::string_view text) {
  const bool marked = text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
  if (marked && text.find('\0') != std::string_view::npos)
    throw base::Failure(base::number::kInvalidArgument, "it is UTF-16; it has to be saved as UTF-8");
}

std::string NameOf(const M3uText& text, const std::string& path) {
  const std::string name = text.name();
  return !name.empty() ? name : TextOf(UnescapeFileName(fs::path(path).stem().string()));
}

}  // namespace

files::FileText StoredPlaylists::textAt(const std::string& path) const {
  files::FileText file = files::ReadFile(behind(path), kLargestPlaylist);
  CheckEncoding(file.text);
  return file;
}

base::Failure StoredPlaylists::silent() const {
  return {base::number::kDeviceIo, SafeName(folder_) + " doesn't answer"};
}

base::Failure StoredPlaylists::isAway() const {
  return {base::number::kPathNotFound, SafeName(folder_) + " is away, perhaps as its disc is not mounted"};
}

void StoredPlaylists::needFolder() {
  if (!refresh(kPatienceToChange)) throw silent();
  if (away_) throw isAway();
}

bool StoredPlaylists::needFile(const std::string& path) {
  struct Reached {
    bool away;
    bool there;
  };
  pending_.reset();  // what a look has found will be older than what is done now
  const auto reached = thread_.ask<Reached>(
      [disc = onDisc_, reach = disc_.reach, path]() -> Reached {
        reach();
        std::error_code ignored;
        return {disc->away(), fs::exists(path, ignored)};
      },
      disc_.patience(kPatienceToChange));
  if (!reached) throw silent();
  if (reached->away) throw isAway();
  return reached->there;
}

void StoredPlaylists::lose(const std::set<std::string>& present) {
  for (auto entry = byPath_.begin(); entry != byPath_.end();) {
    if (present.contains(entry->first)) {
      ++entry;
      continue;
    }
    lost_.push_back(entry->second);
    entry = byPath_.erase(entry);
  }
}

bool StoredPlaylists::refresh(base::Milliseconds limit) {
  Changes changes;
  const bool fresh = lookAround(limit, changes);
  tell(changes);
  return fresh;
}

void StoredPlaylists::tell(const Changes& changes) {
  base::Attempt step;
  if (changes.content) step([&] { events_.content(); });
  if (changes.names) step([&] { events_.changed(); });
}

bool StoredPlaylists::beginLook() {
  FolderOnDisc::Known known{{}, library_.folders()};
  for (const auto& [path, playlist] : byPath_) known.stamps[path] = playlist->stamp();
  for (const auto& [path, told] : unreadable_)
    if (!fits(path, told.items)) known.stamps[path] = told.stamp;
  auto look = std::make_shared<std::optional<FolderLook>>();
  const bool begun = thread_.begin([look, known = std::move(known), disc = onDisc_, reach = disc_.reach] {
    reach();
    *look = disc->look(known);
  });
  if (begun) pending_ = std::move(look);
  return begun;
}

bool StoredPlaylists::lookAround(base::Milliseconds limit, Changes& changes) {
  limit = disc_.patience(limit);
  for (int look = 0; look < kMostLooks; ++look) {
    const DiscThread::Time until = std::chrono::steady_clock::now() + limit;  // each look has its own time
    // One that is under way may have begun before what the caller wants to know of.
    if (!thread_.wait(until) || !beginLook() || !thread_.wait(until)) {
      if (!std::exchange(silentTold_, true))
        events_.message(silent().description() + "; its playlists are as they were known last");
      return false;
    }
    if (!take(changes)) break;
  }
  return true;
}

void StoredPlaylists::takeLate() {
  if (thread_.busy()) return;
  Changes changes;
  take(changes);
  tell(changes);
}

bool StoredPlaylists::take(Changes& changes) {
  const auto pending = std::exchange(pending_, nullptr);
  if (!pending || !*pending) return false;
  FolderLook& look = **pending;
  silentTold_ = false;
  away_ = look.outcome == FolderLook::Outcome::kAway;
  if (look.outcome != FolderLook::Outcome::kSeen) {
    if (!std::exchange(folderTold_, true))
      events_.message(away_ ? isAway().description() + "; its playlists stay"
                            : SafeName(folder_) + " can't be read: " + look.why);
    return false;
  }
  folderTold_ = false;
  std::set<std::string> present;
  for (const FolderLook::File& file : look.files) present.insert(file.path);
  const std::size_t before = byPath_.size();
  lose(present);
  changes.names = changes.names || byPath_.size() != before;
  std::erase_if(lost_, [](const auto& entry) { return entry.expired(); });
  std::erase_if(unreadable_, [&](const auto& entry) { return !present.contains(entry.first); });
  std::erase_if(cutTold_, [&](const std::string& path) { return !present.contains(path); });
  for (FolderLook::File& file : look.files) {
    base::Attempt step;
    step([&] { take(file, changes); });
  }
  return look.more;
}

void StoredPlaylists::take(FolderLook::File& file, Changes& changes) {
  if (!file.stamp) return;
  const std::string& path = file.path;
  const files::FileStamp& stamp = *file.stamp;
  const auto known = byPath_.find(path);
  if (known != byPath_.end() && known->second->stamp() == stamp) return;
  const auto told = unreadable_.find(path);
  const bool wasTold = told != unreadable_.end() && told->second.stamp == stamp;
  if (wasTold && !fits(path, told->second.items)) return;
  if (!file.text && !file.failure) return;  // left for the next look
  // Else tried at every look: what stood in the way, the file's rights or a shortage, may be gone without a
  // trace in its stamp.
  base::Attempt step;
  std::size_t items = 0;
  const bool good = step([&] {
    if (!file.text) throw base::Failure(*file.failure);
    CheckEncoding(file.text->text);
    items = M3uText::kMostItems + 1;
    const M3uText text(std::move(file.text->text));
    items = text.count();
    read(path, file.text->stamp, text, changes);
  });
  if (good) {
    unreadable_.erase(path);
    return;
  }
  unreadable_[path] = {stamp, step.number() == base::number::kOverflow ? items : 0};
  if (wasTold) return;
  events_.message("The playlist " + SafeName(path) + " can't be read: " + step.text());
}

void StoredPlaylists::read(const std::string& path, const files::FileStamp& stamp, const M3uText& text,
                           Changes& changes) {
  checkRoom(path, text.count());
  const std::string folder = fs::path(path).parent_path().string();
  const std::string name = NameOf(text, path);
  std::vector<player::MediaRef> items;
  items.reserve(text.count());
  bool cut = text.nameIsCut();
  for (std::size_t i = 0; i < text.count(); ++i) {
    const M3uItem item = text.item(i, folder);
    cut = cut || item.cut;
    items.push_back(mediaOf(item));
  }
  if (cut && cutTold_.insert(path).second)
    events_.message("The playlist " + SafeName(path) + ": a name in it is too long and was cut");
  const auto known = byPath_.find(path);
  const bool isKnown = known != byPath_.end();
  Stored playlist = found(path, stamp, isKnown);
  if (playlist && isKnown) lost_.push_back(known->second);  // its file was replaced by the other's
  if (!playlist && !isKnown) {
    add(path, stamp, name, std::move(items));
    changes.names = true;
    return;
  }
  changes.names = changes.names || playlist || known->second->name() != name;
  changes.content = true;
  if (!playlist) playlist = known->second;
  playlist->take(name, std::move(items));
  playlist->stored(path, stamp);
  byPath_[path] = playlist;
}

StoredPlaylists::Stored StoredPlaylists::add(const std::string& path, const files::FileStamp& stamp,
                                             const std::string& name, std::vector<player::MediaRef> items) {
  PlaylistKeeper& keeper = *this;
  auto playlist = std::make_shared<StoredPlaylist>(keeper, name, std::move(items));
  playlist->stored(path, stamp);
  byPath_[path] = playlist;
  return playlist;
}

StoredPlaylists::Stored StoredPlaylists::found(const std::string& path, const files::FileStamp& stamp,
                                               bool veryFileOnly) {
  const auto fit = [&](const StoredPlaylist& lost) {
    const bool veryFile = lost.stamp() == stamp;
    const bool there = lost.path() == path;
    return veryFileOnly && !veryFile ? 0 : (veryFile ? 2 : 0) + (there ? 1 : 0);
  };
  int best = 0;
  auto place = lost_.end();
  for (auto entry = lost_.begin(); entry != lost_.end(); ++entry) {
    const Stored playlist = entry->lock();
    const int now = playlist ? fit(*playlist) : 0;
    if (now == 0 || now < best) continue;  // of several, the last one that was there
    best = now;
    place = entry;
  }
  if (place == lost_.end()) return nullptr;
  Stored playlist = place->lock();
  lost_.erase(place);
  return playlist;
}

}  // namespace engine
