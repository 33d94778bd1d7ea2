#include "engine/StoredPlaylists.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/M3u.hpp"
#include "engine/TagReader.hpp"
#include "engine/WriteFile.hpp"

namespace engine {

/// A playlist with a file behind it. Once it has been removed it is a list like any other.
class StoredPlaylist : public ListPlaylist {
 public:
  StoredPlaylist(StoredPlaylists& owner, std::string path, std::string name,
                 std::vector<player::MediaRef> items)
      : ListPlaylist(std::move(name), std::move(items)), owner_(&owner), path_(std::move(path)) {}

  using ListPlaylist::name;
  void name(const std::string& value) override {
    if (owner_ != nullptr) {
      owner_->catchUp(*this);
      owner_->rename(*this, value);
    }
    ListPlaylist::name(value);
    if (owner_ != nullptr) owner_->tellChanged();
  }
  void appendItem(const player::MediaRef& media) override {
    change([&] { ListPlaylist::appendItem(media); });
  }
  void insertItem(std::int32_t index, const player::MediaRef& media) override {
    change([&] { ListPlaylist::insertItem(index, media); });
  }
  void removeItem(const player::MediaRef& media) override {
    change([&] { ListPlaylist::removeItem(media); });
  }
  void moveItem(std::int32_t oldIndex, std::int32_t newIndex) override {
    change([&] { ListPlaylist::moveItem(oldIndex, newIndex); });
  }

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const FileStamp& stamp() const { return stamp_; }
  void stamp(const FileStamp& value) { stamp_ = value; }
  void moved(std::string path) { path_ = std::move(path); }
  void disown() { owner_ = nullptr; }
  void adopt(const Library& library) {
    for (player::MediaRef& item : own()) {
      if (dynamic_cast<const LooseMedia*>(item.get()) == nullptr) continue;
      auto known = library.mediaAt(LocationOf(*item));
      if (dynamic_cast<const TrackMedia*>(known.get()) != nullptr) item = std::move(known);
    }
  }
  /// Takes what the file says now. True when the name has changed.
  bool take(const std::string& name, std::vector<player::MediaRef> items) {
    own() = std::move(items);
    const bool renamed = name != ListPlaylist::name();
    ListPlaylist::name(name);
    return renamed;
  }

 private:
  /// Changes the items, and the file with them or neither.
  template <class Change>
  void change(Change&& apply) {
    if (owner_ != nullptr) owner_->catchUp(*this);
    const std::vector<player::MediaRef> before = own();
    std::forward<Change>(apply)();
    if (owner_ == nullptr) return;
    try {
      owner_->write(*this);
    } catch (const base::Failure&) {
      own() = before;
      throw;
    }
    owner_->events_.content();
  }

  StoredPlaylists* owner_;
  std::string path_;
  FileStamp stamp_;
};

namespace {

namespace fs = std::filesystem;

constexpr base::Milliseconds kLookInterval{2000};

bool IsPlaylistFile(const fs::path& path) {
  const std::string ending = base::LowerCase(path.extension().string());
  return ending == ".m3u8" || ending == ".m3u";
}

std::vector<std::string> PlaylistFiles(const std::string& folder) {
  std::vector<std::string> paths;
  std::error_code ignored;
  for (fs::directory_iterator entry(folder, ignored), end; entry != end; entry.increment(ignored)) {
    const bool hidden = entry->path().filename().string().front() == '.';
    if (!hidden && IsPlaylistFile(entry->path()) && entry->is_regular_file(ignored)) {
      paths.push_back(entry->path().string());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

M3u::Entry EntryOf(const player::Media& media) {
  M3u::Entry entry;
  entry.location = LocationOf(media);
  const std::string artist = media.getItemInfo("Artist");
  entry.title = artist.empty() ? media.name() : artist + " - " + media.name();
  if (media.duration() > 0) entry.seconds = static_cast<int>(std::lround(media.duration()));
  return entry;
}

player::MediaRef MediaOf(const Library& library, const M3u::Entry& entry) {
  auto media = library.mediaAt(entry.location);
  if (dynamic_cast<const TrackMedia*>(media.get()) != nullptr) return media;
  TrackTags tags;
  const auto dash = entry.title.find(" - ");
  if (dash != std::string::npos) tags.artist = entry.title.substr(0, dash);
  tags.title = dash != std::string::npos ? entry.title.substr(dash + 3) : entry.title;
  if (tags.title.empty()) tags.title = media->name();
  if (entry.seconds > 0) tags.milliseconds = static_cast<std::uint32_t>(entry.seconds) * 1000;
  return std::make_shared<LooseMedia>(entry.location, std::move(tags));
}

}  // namespace

StoredPlaylists::StoredPlaylists(base::Loop& loop, std::string folder, const Library& library, Events events)
    : folder_(std::move(folder)),
      library_(library),
      events_(std::move(events)),
      timer_(loop.makeTimer(kLookInterval, [this] {
        if (refresh()) tellChanged();
      })) {
  refresh();
  timer_->enabled(true);
}

StoredPlaylists::~StoredPlaylists() {
  for (auto& entry : byPath_) entry.second->disown();
}

void StoredPlaylists::tellChanged() { events_.changed(); }

void StoredPlaylists::libraryChanged() {
  for (const auto& entry : byPath_) entry.second->adopt(library_);
}

bool StoredPlaylists::refresh() {
  bool changed = false;
  const std::vector<std::string> paths = PlaylistFiles(folder_);
  const std::set<std::string> present(paths.begin(), paths.end());
  for (auto entry = byPath_.begin(); entry != byPath_.end();) {
    if (present.contains(entry->first)) {
      ++entry;
      continue;
    }
    entry->second->disown();
    entry = byPath_.erase(entry);
    changed = true;
  }
  for (const std::string& path : paths) {
    try {
      const FileStamp stamp = StampOf(path);
      const auto known = byPath_.find(path);
      if (known != byPath_.end() && known->second->stamp() == stamp) continue;
      changed = read(path, stamp) || changed;
    } catch (const base::Failure&) {  // gone since
    }
  }
  return changed;
}

bool StoredPlaylists::read(const std::string& path, const FileStamp& stamp) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  if (!file || !(text << file.rdbuf() || stamp.size == 0)) {
    if (unreadable_[path] != stamp) events_.message("The playlist " + SafeName(path) + " can't be read");
    unreadable_[path] = stamp;
    return false;
  }
  unreadable_.erase(path);
  M3u list = ParseM3u(text.str(), fs::path(path).parent_path().string());
  if (list.name.empty()) list.name = base::RepairUtf8(UnescapeFileName(fs::path(path).stem().string()));
  std::vector<player::MediaRef> items;
  items.reserve(list.entries.size());
  for (const M3u::Entry& entry : list.entries) items.push_back(MediaOf(library_, entry));
  auto& playlist = byPath_[path];
  bool changed = true;
  if (playlist) {
    changed = playlist->take(list.name, std::move(items));
    events_.content();
  } else {
    playlist = std::make_shared<StoredPlaylist>(*this, path, list.name, std::move(items));
  }
  playlist->stamp(stamp);
  return changed;
}

void StoredPlaylists::write(StoredPlaylist& playlist) {
  M3u list;
  list.name = playlist.name();
  for (std::int32_t i = 0; i < playlist.count(); ++i) list.entries.push_back(EntryOf(*playlist.item(i)));
  WriteFile(playlist.path(), FormatM3u(list));
  playlist.stamp(StampOf(playlist.path()));
}

void StoredPlaylists::catchUp(StoredPlaylist& playlist) {
  FileStamp stamp;
  try {
    stamp = StampOf(playlist.path());
  } catch (const base::Failure&) {
    return;  // the file has gone; what is known of it is written anew
  }
  if (stamp != playlist.stamp() && read(playlist.path(), stamp)) tellChanged();
}

std::shared_ptr<StoredPlaylist> StoredPlaylists::named(const std::string& name) const {
  for (const auto& entry : byPath_) {
    if (base::SameText(entry.second->name(), name)) return entry.second;
  }
  return nullptr;
}

std::string StoredPlaylists::freePath(const std::string& name) const {
  std::string stem = EscapeFileName(name);
  if (stem.size() > 180) {
    stem.resize(180);
    while (!base::IsPlainUtf8(stem)) stem.pop_back();
  }
  std::string path = folder_ + '/' + stem + ".m3u8";
  std::error_code ignored;
  for (int number = 2; fs::exists(path, ignored); ++number) {
    path = folder_ + '/' + stem + " (" + std::to_string(number) + ").m3u8";
  }
  return path;
}

void StoredPlaylists::rename(StoredPlaylist& playlist, const std::string& name) {
  if (name.empty()) throw base::Failure(base::number::kInvalidArgument, "A playlist needs a name");
  const auto holder = named(name);
  if (holder && holder.get() != &playlist)
    throw base::Failure(base::number::kNameInUse, "The name is in use");
  M3u list;
  list.name = name;
  for (std::int32_t i = 0; i < playlist.count(); ++i) list.entries.push_back(EntryOf(*playlist.item(i)));
  const std::string old = playlist.path();
  const std::string path = freePath(name);
  WriteFile(path, FormatM3u(list));
  std::error_code failed;
  fs::remove(old, failed);
  auto node = byPath_.extract(old);
  node.key() = path;
  byPath_.insert(std::move(node));
  playlist.moved(path);
  playlist.stamp(StampOf(path));
}

player::PlaylistArrayRef StoredPlaylists::getAll() {
  if (refresh()) tellChanged();
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
  if (refresh()) tellChanged();
  std::vector<player::PlaylistRef> playlists;
  for (const auto& entry : byPath_) {
    if (base::SameText(entry.second->name(), name)) playlists.push_back(entry.second);
  }
  if (playlists.empty() && name.find("\"\"") != std::string::npos) {
    std::string single;  // as queries write a double quote
    for (std::size_t i = 0; i < name.size(); ++i) {
      single += name[i];
      if (name.compare(i, 2, "\"\"") == 0) ++i;
    }
    return getByName(single);
  }
  return std::make_shared<ListPlaylistArray>(std::move(playlists));
}

player::PlaylistRef StoredPlaylists::newPlaylist(const std::string& name) {
  if (name.empty()) throw base::Failure(base::number::kInvalidArgument, "A playlist needs a name");
  if (!base::IsPlainUtf8(name)) throw base::Failure(base::number::kInvalidArgument, "The name is no text");
  refresh();
  if (named(name)) throw base::Failure(base::number::kNameInUse, "The name is in use");
  std::error_code failed;
  fs::create_directories(folder_, failed);
  if (failed) throw base::Failure(base::number::kPermissionDenied, folder_ + ": " + failed.message());
  const std::string path = freePath(name);
  auto playlist = std::make_shared<StoredPlaylist>(*this, path, name, std::vector<player::MediaRef>());
  write(*playlist);
  byPath_[path] = playlist;
  tellChanged();
  return playlist;
}

void StoredPlaylists::remove(const player::PlaylistRef& playlist) {
  if (!playlist) throw base::Failure(base::number::kObjectMissing);
  const auto found = std::find_if(byPath_.begin(), byPath_.end(),
                                  [&](const auto& entry) { return entry.second == playlist; });
  if (found == byPath_.end()) {
    throw base::Failure(base::number::kInvalidArgument, "The playlist is not in the collection");
  }
  std::error_code failed;
  if (!fs::remove(found->first, failed) && failed) {
    throw base::Failure(base::number::kPermissionDenied, SafeName(found->first) + ": " + failed.message());
  }
  found->second->disown();
  byPath_.erase(found);
  tellChanged();
}

}  // namespace engine
