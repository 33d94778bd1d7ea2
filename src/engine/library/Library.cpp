#include "engine/library/Library.hpp"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "engine/common/GiveBack.hpp"
#include "engine/library/Lists.hpp"
#include "engine/scan/TagReader.hpp"
#include "engine/tags/TagFields.hpp"
#include "engine/tags/TextForms.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

constexpr base::Milliseconds kChangeDelay{400};

bool IsBelowAny(const std::string& path, const std::vector<std::string>& folders) {
  return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
    return path.size() > folder.size() && path[folder.size()] == '/' &&
           path.compare(0, folder.size(), folder) == 0;
  });
}

/// The path that is meant, with backslashes allowed where no such file exists.
std::string ExistingPath(const std::string& url) {
  std::string path = PathOf(url);
  // Asking the file system can take as long as a network folder likes, so only where there is a doubt.
  if (IsAddress(path) || path.find('\\') == std::string::npos) return path;
  std::error_code ignored;
  if (std::filesystem::exists(path, ignored)) return path;
  std::string slashed = path;
  std::replace(slashed.begin(), slashed.end(), '\\', '/');
  return std::filesystem::exists(slashed, ignored) ? slashed : path;
}

TrackTags TagsOfAddress(const std::string& address) {
  TrackTags tags;
  tags.title = TitleFromPath(address);
  if (tags.title.empty()) tags.title = address;
  tags.title = tags::Shortened(tags.title, tags::TagFields::kLongest);
  return tags;
}

}  // namespace

Library::Library(base::Loop& loop, const Config& config, Events events)
    : shelf_(std::make_shared<Shelf>(config.dataFolder + "/pictures", config.chosenCovers)),
      folders_(config.musicFolders),
      events_(std::move(events)),
      changeTimer_(loop.makeTimer(kChangeDelay, [this] { tellChange(); })),
      post_(loop) {
  auto store = std::make_unique<LibraryStore>(
      config.dataFolder, [this](const std::string& line) { post_([this, line] { events_.message(line); }); });
  std::vector<FileRecord> records = store->load();
  std::vector<std::string> foreign;  // of folders that are no longer ours
  std::erase_if(records, [&](const FileRecord& record) {
    const bool ours = record.added || IsBelowAny(record.path, config.musicFolders);
    if (!ours) foreign.push_back(record.path);
    return !ours;
  });
  base::Attempt step;  // on a full disk they go at a later start
  if (!foreign.empty()) step([&] { store->apply({}, foreign); });
  for (const FileRecord& record : records) {
    if (record.tags.kind != MediaKind::kNone) shelf_->table.put(record.path, record.tags);
  }
  Scanner::Settings settings;
  settings.roots = config.musicFolders;
  settings.reading.workers = config.tagWorkers;
  scanner_ = std::make_unique<Scanner>(
      std::move(settings), std::move(store), std::move(records), [this](LibraryChange change) {
        post_([this, change = std::make_shared<LibraryChange>(std::move(change))] { take(*change); });
      });
  GiveBackMemory();
}

void Library::take(const LibraryChange& change) {
  bool changed = false;
  for (const FileRecord& record : change.changed) {
    const bool media = record.tags.kind != MediaKind::kNone;
    changed =
        (media ? shelf_->table.put(record.path, record.tags) : shelf_->table.remove(record.path)) || changed;
  }
  for (const std::string& path : change.removed) changed = shelf_->table.remove(path) || changed;
  if (changed) noteChange();
  for (const std::string& message : change.messages) events_.message(message);
  if (!change.scanComplete) return;
  if (changeTimer_->enabled()) tellChange();  // what the scan has found is told before its end is
  events_.scanned();
}

void Library::tellChange() {
  changeTimer_->enabled(false);
  base::Attempt step;
  step([&] { events_.changed(); });
}

void Library::noteChange() {
  events_.known();
  if (!changeTimer_->enabled()) changeTimer_->enabled(true);
}

player::MediaRef Library::known(const std::string& path) const {
  const auto id = shelf_->table.find(path);
  if (!id || !shelf_->table.row(*id).present) return nullptr;
  return std::make_shared<TrackMedia>(shelf_, *id);
}

player::MediaRef Library::trackAt(const std::string& path) const {
  if (auto media = known(path)) return media;
  if (path.find('\\') == std::string::npos || IsAddress(path)) return nullptr;
  std::string slashed = path;
  std::replace(slashed.begin(), slashed.end(), '\\', '/');
  auto media = known(slashed);
  std::error_code ignored;
  return media && !std::filesystem::exists(path, ignored) ? media : nullptr;
}

player::MediaRef Library::mediaAt(const std::string& url) const {
  const std::string path = ExistingPath(url);
  if (auto media = known(path)) return media;
  return std::make_shared<LooseMedia>(path, TagsOfAddress(path), shelf_);
}

bool Library::followsOnAlbum(const std::string& first, const std::string& second) const {
  const auto one = shelf_->table.find(PathOf(first));
  const auto two = shelf_->table.find(PathOf(second));
  if (!one || !two) return false;
  const Track& before = shelf_->table.row(*one);
  const Track& after = shelf_->table.row(*two);
  if (shelf_->table.text(before.album).empty() || before.album != after.album ||
      before.albumArtist != after.albumArtist)
    return false;
  const bool nextDisc = after.disc == before.disc + 1 && after.track == 1;
  return nextDisc || (after.disc == before.disc && after.track == before.track + 1);
}

Loudness Library::loudnessAt(const std::string& location) const {
  const std::string path = PathOf(location);
  if (const auto id = shelf_->table.find(path)) return shelf_->table.row(*id).loudness;
  if (IsAddress(path)) return {};
  return base::Handled([&] { return ReadTags(path).tags.loudness; },
                       [](const base::Failure&) { return Loudness(); });
}

player::MediaRef Library::add(const std::string& url) {
  if (url.empty()) throw base::Failure(base::number::kInvalidArgument, "There is no address to add");
  FileRecord record;
  record.path = ExistingPath(url);
  if (auto media = known(record.path)) return media;
  record.added = true;
  if (IsAddress(record.path)) {
    record.tags = TagsOfAddress(record.path);
  } else {
    record.path = std::filesystem::absolute(record.path).lexically_normal().string();
    record.stamp = files::StampOf(record.path);
    record.tags = ReadTags(record.path).tags;
    if (record.tags.kind == MediaKind::kNone) {
      throw base::Failure(base::number::kInvalidArgument, SafeName(record.path) + " holds no music");
    }
  }
  shelf_->table.put(record.path, record.tags);
  const std::string path = record.path;
  scanner_->remember(std::move(record));
  noteChange();
  return known(path);
}

player::PlaylistRef Library::getAll() {
  return std::make_shared<ListPlaylist>("All Media", shelf_, shelf_->index.all());
}

player::PlaylistRef Library::getByName(const std::string& name) {
  return std::make_shared<ListPlaylist>(name, shelf_, shelf_->index.byName(name));
}

player::PlaylistRef Library::getByAttribute(const std::string& attribute, const std::string& value) {
  return std::make_shared<ListPlaylist>(value, shelf_,
                                        shelf_->index.byAttribute(AttributeNamed(attribute), value));
}

player::StringCollectionRef Library::getAttributeStringCollection(const std::string& attribute,
                                                                  const std::string& mediaType) {
  return std::make_shared<ListStringCollection>(shelf_->index.values(AttributeNamed(attribute), mediaType));
}

}  // namespace engine
