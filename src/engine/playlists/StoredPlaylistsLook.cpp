// What a look around the folder finds.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <utility>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/playlists/StoredPlaylists.hpp"
#include "engine/scan/TagReader.hpp"
#include "files/ReadFile.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

bool IsPlaylistFile(const fs::path& path) {
  const std::string ending = base::LowerCase(path.extension().string());
  return path.filename().native().front() != '.' && (ending == ".m3u8" || ending == ".m3u");
}

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

std::optional<std::vector<std::string>> StoredPlaylists::files() {
  std::vector<std::string> paths;
  std::error_code failed;
  std::error_code ignored;
  bool away = home_.away();
  for (fs::directory_iterator entry(folder_, failed), end; !failed && entry != end; entry.increment(failed)) {
    if (IsPlaylistFile(entry->path()) && entry->is_regular_file(ignored)) {
      paths.push_back(entry->path().string());
    }
  }
  away = away || home_.away();  // the disc may come or go meanwhile
  if (away) {
    if (!std::exchange(folderTold_, true)) events_.message(awayText() + "; its playlists stay");
    return std::nullopt;
  }
  const bool missing = failed.value() == ENOENT || failed.value() == ENOTDIR;
  if (failed && !missing) {
    if (!folderTold_) events_.message(SafeName(folder_) + " can't be read: " + failed.message());
    folderTold_ = true;
    return std::nullopt;
  }
  folderTold_ = false;
  home_.seen();
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::string StoredPlaylists::awayText() const {
  return SafeName(folder_) + " is away, perhaps as its disc is not mounted";
}

void StoredPlaylists::needHome() const {
  if (home_.away()) throw base::Failure(base::number::kPathNotFound, awayText());
}

void StoredPlaylists::lose(const std::vector<std::string>& present) {
  for (auto entry = byPath_.begin(); entry != byPath_.end();) {
    if (std::binary_search(present.begin(), present.end(), entry->first)) {
      ++entry;
      continue;
    }
    lost_.push_back(entry->second);
    entry = byPath_.erase(entry);
  }
}

void StoredPlaylists::refresh() { tell(lookAround()); }

void StoredPlaylists::tell(const Changes& changes) {
  base::Attempt step;
  if (changes.content) step([&] { events_.content(); });
  if (changes.names) step([&] { events_.changed(); });
}

StoredPlaylists::Changes StoredPlaylists::lookAround() {
  Changes changes;
  const auto paths = files();
  if (!paths) return changes;
  const std::size_t before = byPath_.size();
  lose(*paths);
  changes.names = byPath_.size() != before;
  std::erase_if(lost_, [](const auto& entry) { return entry.expired(); });
  std::erase_if(unreadable_, [&](const auto& entry) {
    return !std::binary_search(paths->begin(), paths->end(), entry.first);
  });
  std::erase_if(cutTold_, [&](const std::string& path) {
    return !std::binary_search(paths->begin(), paths->end(), path);
  });
  for (const std::string& path : *paths) {
    base::Attempt step;
    step([&] { look(path, changes); });
  }
  return changes;
}

void StoredPlaylists::look(const std::string& path, Changes& changes) {
  const files::FileStamp stamp = files::StampOf(path);
  const auto known = byPath_.find(path);
  if (known != byPath_.end() && known->second->stamp() == stamp) return;
  const auto told = unreadable_.find(path);
  const bool wasTold = told != unreadable_.end() && told->second.stamp == stamp;
  if (wasTold && !fits(path, told->second.items)) return;
  // Else tried at every look: what stood in the way, the file's rights or a shortage, may be gone without a
  // trace in its stamp.
  base::Attempt step;
  std::size_t items = 0;
  const bool good = step([&] {
    files::FileText file = files::ReadFile(behind(path), kLargest);
    CheckEncoding(file.text);
    items = M3uText::kMostItems + 1;
    const M3uText text(std::move(file.text));
    items = text.count();
    read(path, file.stamp, text, changes);
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
