#include "engine/playlists/StoredPlaylists.hpp"

#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/scan/TagReader.hpp"
#include "engine/tags/TextForms.hpp"
#include "files/FileError.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr base::Milliseconds kLookInterval{2000};
constexpr std::size_t kLongestStem = 180;  // bytes of a file's name

void CheckName(const std::string& name) {
  if (name.empty()) throw base::Failure(base::number::kInvalidArgument, "A playlist needs a name");
  if (!base::IsPlainUtf8(name)) throw base::Failure(base::number::kInvalidArgument, "The name is no text");
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
                                 files::WriteCall write, std::size_t mostItems, PlaylistDisc disc)
    : folder_(std::move(folder)),
      library_(library),
      events_(std::move(events)),
      write_(std::move(write)),
      mostItems_(mostItems),
      disc_(std::move(disc)),
      onDisc_(std::make_shared<FolderOnDisc>(folder_)),
      timer_(loop.makeTimer(kLookInterval,
                            [this] {
                              base::Attempt step;
                              step([&] { beginLook(); });
                            })),
      // Called on the thread, while this and the loop are there.
      thread_([this, &loop, alive = std::weak_ptr<bool>(alive_)] {
        loop.post([this, alive] {
          if (alive.expired()) return;
          base::Attempt step;
          step([&] { takeLate(); });
        });
      }) {
  base::Attempt step;
  step([&] {
    Changes untold;
    lookAround(kPatienceAtStart, untold);
  });
  step([&] { clearLeftovers(); });
  timer_->enabled(true);
}

StoredPlaylists::~StoredPlaylists() {
  for (const auto& entry : byPath_) entry.second->disown();
  for (const auto& entry : lost_) {
    if (const auto playlist = entry.lock()) playlist->disown();
  }
}

void StoredPlaylists::clearLeftovers() {
  const auto clear = [disc = onDisc_, reach = disc_.reach, folders = library_.folders()]() -> bool {
    reach();
    disc->clearLeftovers(folders);
    return true;
  };
  thread_.ask<bool>(clear, disc_.patience(kPatienceAtStart));
}

void StoredPlaylists::libraryChanged() {
  for (const auto& entry : byPath_) {
    entry.second->renew([this](const player::MediaRef& item) -> player::MediaRef {
      const auto* loose = dynamic_cast<const LooseMedia*>(item.get());
      return loose != nullptr ? TrackAt(library_, loose->place()) : nullptr;
    });
  }
}

bool StoredPlaylists::holds(const StoredPlaylist& playlist) const {
  const auto entry = byPath_.find(playlist.path());
  return entry != byPath_.end() && entry->second.get() == &playlist;
}

M3uText StoredPlaylists::open(StoredPlaylist& playlist) {
  if (const bool there = needFile(playlist.path()); !there || !holds(playlist))
    needFolder();  // it may have come back, or moved
  if (!holds(playlist)) files::FailOn(playlist.path(), ENOENT);
  files::FileText file = textAt(playlist.path());
  M3uText text(std::move(file.text));
  const bool foreign = file.stamp != playlist.stamp() || text.count() != playlist.items().size();
  if (foreign) {
    Changes changes;
    read(playlist.path(), file.stamp, text, changes);
    tell(changes);
  }
  return text;
}

std::size_t StoredPlaylists::itemsBeside(const std::string& path) const {
  std::size_t all = 0;
  for (const auto& [place, playlist] : byPath_) all += place == path ? 0 : playlist->items().size();
  return all;
}

void StoredPlaylists::checkRoom(const std::string& path, std::size_t items) const {
  if (itemsBeside(path) + items > mostItems_)
    throw base::Failure(base::number::kOverflow,
                        "There are more than " + std::to_string(mostItems_) + " items in all playlists");
}

void StoredPlaylists::save(StoredPlaylist& playlist, const M3uText& text) {
  checkRoom(playlist.path(), text.count());
  const std::string bytes = text.text();
  if (static_cast<std::int64_t>(bytes.size()) > kLargestPlaylist) {
    throw base::Failure(base::number::kInvalidArgument, "The playlist would be too large");
  }
  playlist.stored(playlist.path(), files::WriteFile(behind(playlist.path()), bytes, {.write = write_}));
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
  needFolder();
  M3uText text = open(playlist);
  if (taken(name, &playlist)) throw base::Failure(base::number::kNameInUse, "The name is in use");
  text.name(name);
  save(playlist, text);
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
  needFolder();
  if (taken(name, nullptr)) throw base::Failure(base::number::kNameInUse, "The name is in use");
  files::MakeFolder(folder_);
  std::string path;
  std::optional<files::FileStamp> stamp;
  while (!stamp) {  // until nobody else has taken the path meanwhile
    path = freePath(name, {});
    stamp = files::WriteNewFile(path, text.text(), {.write = write_});
  }
  onDisc_->seen();
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
  needFolder();  // its file may lie elsewhere by now, and another one at its path
  if (!holds(*stored)) files::FailOn(stored->path(), ENOENT);
  files::RemoveFile(stored->path());
  byPath_.erase(stored->path());
  stored->disown();
  events_.changedByCall();
}

}  // namespace engine
