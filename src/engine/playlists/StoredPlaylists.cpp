#include "engine/playlists/StoredPlaylists.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/scan/TagReader.hpp"
#include "engine/tags/TextForms.hpp"
#include "files/FileError.hpp"
#include "files/ReadFile.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr base::Milliseconds kLookInterval{2000};
constexpr std::int64_t kLargest = 64LL << 20;  // of a file; half a million items
constexpr std::size_t kLongestStem = 180;      // bytes of a file's name

bool IsPlaylistFile(const fs::path& path) {
  const std::string ending = base::LowerCase(path.extension().string());
  return path.filename().native().front() != '.' && (ending == ".m3u8" || ending == ".m3u");
}

void CheckName(const std::string& name) {
  if (name.empty()) throw base::Failure(base::number::kInvalidArgument, "A playlist needs a name");
  if (!base::IsPlainUtf8(name)) throw base::Failure(base::number::kInvalidArgument, "The name is no text");
}

std::string NameOf(const M3uText& text, const std::string& path) {
  const std::string name = text.name();
  return !name.empty() ? name : TextOf(UnescapeFileName(fs::path(path).stem().string()));
}

/// Where the item lies: a list in an older encoding may mean a file whose name is UTF-8.
std::string PlaceOf(const std::string& location) {
  if (IsAddress(location) || base::IsPlainUtf8(location)) return location;
  std::error_code ignored;
  const std::string text = TextOf(location);
  return !fs::exists(location, ignored) && fs::exists(text, ignored) ? text : location;
}

/// The library's own media at a location, which most players write from the playlist's folder on
/// ("../Artist/x.flac"); nothing where it has none.
player::MediaRef TrackAt(const Library& library, const std::string& location) {
  auto known = library.trackAt(location);
  if (known || location.find("/.") == std::string::npos) return known;
  return library.trackAt(PlainLocation(location));
}

}  // namespace

player::MediaRef StoredPlaylists::mediaOf(const M3uItem& item) const {
  const std::string place = PlaceOf(item.location);
  if (auto known = TrackAt(library_, place)) return known;
  const auto media = library_.mediaAt(place);
  TrackTags tags;
  tags.title = item.title.empty() ? media->name() : item.title;
  const auto dash = tags.title.find(" - ");
  if (dash != std::string::npos && dash > 0 && tags.title != media->name()) {
    tags.artist = tags.title.substr(0, dash);
    tags.title.erase(0, dash + 3);
  }
  if (item.seconds > 0) tags.milliseconds = static_cast<std::uint32_t>(item.seconds) * 1000;
  return std::make_shared<LooseMedia>(LocationOf(*media), std::move(tags), library_.shelf());
}

namespace {

/// As queries write a double quote.
std::string WithSingleQuotes(const std::string& name) {
  std::string single;
  for (std::size_t i = 0; i < name.size(); ++i) {
    single += name[i];
    if (name.compare(i, 2, "\"\"") == 0) ++i;
  }
  return single;
}

}  // namespace

StoredPlaylists::StoredPlaylists(base::Loop& loop, std::string folder, const Library& library, Events events,
                                 files::WriteCall write)
    : folder_(std::move(folder)),
      library_(library),
      events_(std::move(events)),
      write_(std::move(write)),
      timer_(loop.makeTimer(kLookInterval, [this] {
        base::Attempt step;
        step([&] { refresh(); });
      })) {
  base::Attempt step;
  step([&] { lookAround(); });
  step([&] { clearLeftovers(); });
  timer_->enabled(true);
}

StoredPlaylists::~StoredPlaylists() {
  for (const auto& entry : byPath_) entry.second->disown();
  for (const auto& entry : lost_) {
    if (const auto playlist = entry.lock()) playlist->disown();
  }
}

void StoredPlaylists::clearLeftovers() const {
  std::set<std::string> folders{folder_};
  std::error_code ignored;
  for (const auto& entry : byPath_) {  // a link's file is written where it lies
    if (fs::is_symlink(entry.first, ignored))
      folders.insert(fs::canonical(entry.first, ignored).parent_path().string());
  }
  for (const std::string& folder : folders) files::ClearLeftovers(folder);
}

void StoredPlaylists::libraryChanged() {
  for (const auto& entry : byPath_) {
    entry.second->renew([this](const player::MediaRef& item) -> player::MediaRef {
      const auto* loose = dynamic_cast<const LooseMedia*>(item.get());
      return loose != nullptr ? TrackAt(library_, loose->place()) : nullptr;
    });
  }
}

std::optional<std::vector<std::string>> StoredPlaylists::files() {
  std::vector<std::string> paths;
  std::error_code failed;
  std::error_code ignored;
  for (fs::directory_iterator entry(folder_, failed), end; !failed && entry != end; entry.increment(failed)) {
    if (IsPlaylistFile(entry->path()) && entry->is_regular_file(ignored)) {
      paths.push_back(entry->path().string());
    }
  }
  const bool missing = failed.value() == ENOENT || failed.value() == ENOTDIR;
  if (failed && !missing) {
    if (!folderTold_) events_.message(SafeName(folder_) + " can't be read: " + failed.message());
    folderTold_ = true;
    return std::nullopt;
  }
  folderTold_ = false;
  std::sort(paths.begin(), paths.end());
  return paths;
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
  // Tried at every look: what stood in the way, the file's rights or a shortage, may be gone without a trace
  // in its stamp.
  base::Attempt step;
  const bool good = step([&] {
    const files::FileText file = files::ReadFile(behind(path), kLargest);
    read(path, file.stamp, M3uText(file.text), changes);
  });
  if (good) {
    unreadable_.erase(path);
    return;
  }
  const auto told = unreadable_.find(path);
  if (told != unreadable_.end() && told->second == stamp) return;
  unreadable_[path] = stamp;
  events_.message("The playlist " + SafeName(path) + " can't be read: " + step.text());
}

void StoredPlaylists::read(const std::string& path, const files::FileStamp& stamp, const M3uText& text,
                           Changes& changes) {
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

bool StoredPlaylists::holds(const StoredPlaylist& playlist) const {
  const auto entry = byPath_.find(playlist.path());
  return entry != byPath_.end() && entry->second.get() == &playlist;
}

M3uText StoredPlaylists::open(StoredPlaylist& playlist) {
  std::error_code ignored;
  if (!holds(playlist) || !fs::exists(playlist.path(), ignored))
    refresh();  // it may have come back, or moved
  if (!holds(playlist)) files::FailOn(playlist.path(), ENOENT);
  files::FileText file = files::ReadFile(behind(playlist.path()), kLargest);
  M3uText text(std::move(file.text));
  const bool foreign = file.stamp != playlist.stamp() || text.count() != playlist.items().size();
  if (foreign) {
    Changes changes;
    read(playlist.path(), file.stamp, text, changes);
    tell(changes);
  }
  return text;
}

void StoredPlaylists::save(StoredPlaylist& playlist, const std::string& text) {
  if (static_cast<std::int64_t>(text.size()) > kLargest) {
    throw base::Failure(base::number::kInvalidArgument, "The playlist would be too large");
  }
  playlist.stored(playlist.path(), files::WriteFile(behind(playlist.path()), text, {.write = write_}));
}

bool StoredPlaylists::taken(const std::string& name, const StoredPlaylist* own) const {
  return std::any_of(byPath_.begin(), byPath_.end(), [&](const auto& entry) {
    return entry.second.get() != own && base::SameText(entry.second->name(), name);
  });
}

std::string StoredPlaylists::freePath(const std::string& name, const std::string& own) const {
  std::string stem = EscapeFileName(name);
  stem.resize(tags::Shortened(stem, kLongestStem).size());
  const std::string ending = own.empty() ? ".m3u8" : fs::path(own).extension().string();
  std::string path = folder_ + '/' + stem + ending;
  std::error_code ignored;
  const auto taken = [&] {
    return path != own && (byPath_.contains(path) || fs::exists(fs::symlink_status(path, ignored)));
  };
  for (int number = 2; taken(); ++number) {
    path = folder_;
    path.append("/").append(stem).append(" (").append(std::to_string(number)).append(")").append(ending);
  }
  return path;
}

void StoredPlaylists::rename(StoredPlaylist& playlist, const std::string& name) {
  CheckName(name);
  refresh();
  M3uText text = open(playlist);
  if (taken(name, &playlist)) throw base::Failure(base::number::kNameInUse, "The name is in use");
  text.name(name);
  save(playlist, text.text());
  playlist.rename(name);
  // The name inside counts. The file's own follows if it can; until then it is the old one, but there is
  // never a moment with two files or none.
  const std::string old = playlist.path();
  const std::string path = freePath(name, old);
  if (path != old && files::MoveFile(old, path)) {
    auto node = byPath_.extract(old);
    node.key() = path;
    byPath_.insert(std::move(node));
    playlist.stored(path, playlist.stamp());
  }
  events_.changedByCall();
}

player::PlaylistArrayRef StoredPlaylists::getAll() {
  refresh();
  std::vector<std::pair<std::string, player::PlaylistRef>> order;
  for (const auto& entry : byPath_) order.emplace_back(base::LowerCase(entry.second->name()), entry.second);
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& left, const auto& right) { return left.first < right.first; });
  std::vector<player::PlaylistRef> playlists;
  playlists.reserve(order.size());
  for (auto& entry : order) playlists.push_back(std::move(entry.second));
  return std::make_shared<ListPlaylistArray>(std::move(playlists));
}

player::PlaylistArrayRef StoredPlaylists::getByName(const std::string& name) {
  refresh();
  std::vector<player::PlaylistRef> playlists;
  for (const auto& entry : byPath_) {
    if (base::SameText(entry.second->name(), name)) playlists.push_back(entry.second);
  }
  if (playlists.empty() && name.find("\"\"") != std::string::npos) return getByName(WithSingleQuotes(name));
  return std::make_shared<ListPlaylistArray>(std::move(playlists));
}

player::PlaylistRef StoredPlaylists::newPlaylist(const std::string& name) {
  CheckName(name);
  M3uText text;
  text.name(name);
  refresh();
  if (taken(name, nullptr)) throw base::Failure(base::number::kNameInUse, "The name is in use");
  files::MakeFolder(folder_);
  std::string path;
  std::optional<files::FileStamp> stamp;
  while (!stamp) {  // until nobody else has taken the path meanwhile
    path = freePath(name, {});
    stamp = files::WriteNewFile(path, text.text(), {.write = write_});
  }
  auto playlist = add(path, *stamp, name, {});
  events_.changedByCall();
  return playlist;
}

void StoredPlaylists::remove(const player::PlaylistRef& playlist) {
  if (!playlist) throw base::Failure(base::number::kObjectMissing);
  const auto stored = std::dynamic_pointer_cast<StoredPlaylist>(playlist);
  if (!stored || !stored->keptBy(*this)) {
    throw base::Failure(base::number::kInvalidArgument, "The playlist is not in the collection");
  }
  refresh();  // its file may lie elsewhere by now, and another one at its path
  if (!holds(*stored)) files::FailOn(stored->path(), ENOENT);
  files::RemoveFile(stored->path());
  byPath_.erase(stored->path());
  stored->disown();
  events_.changedByCall();
}

}  // namespace engine
