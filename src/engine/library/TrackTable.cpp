#include "engine/library/TrackTable.hpp"

#include <tuple>

#include "engine/common/PathParts.hpp"

namespace engine {
namespace {

auto Content(const Track& row) {
  return std::tie(row.folder, row.file, row.title, row.artist, row.albumArtist, row.album, row.genre,
                  row.collectionId, row.discId, row.milliseconds, row.year, row.track, row.disc, row.kind,
                  row.present, row.loudness.track, row.loudness.album, row.loudness.trackPeak,
                  row.loudness.albumPeak);
}

}  // namespace

bool TrackTable::put(const std::string& path, const TrackTags& tags) {
  const PathParts parts = Cut(path);
  Track row;
  row.folder = pool_.intern(parts.folder);
  row.file = pool_.intern(parts.file);
  row.title = pool_.intern(tags.title);
  row.artist = pool_.intern(tags.artist);
  row.albumArtist = pool_.intern(tags.albumArtist);
  row.album = pool_.intern(tags.album);
  row.genre = pool_.intern(tags.genre);
  row.collectionId = pool_.intern(tags.collectionId);
  row.discId = pool_.intern(tags.discId);
  row.milliseconds = tags.milliseconds;
  row.year = tags.year;
  row.track = tags.track;
  row.disc = tags.disc;
  row.kind = tags.kind;
  row.present = true;
  row.loudness = tags.loudness;

  const TrackId place = at(row.folder, row.file);
  if (place == IdTable::kNone) {
    if (rows_.size() == rows_.capacity()) rows_.reserve(rows_.size() + rows_.size() / 4 + 64);
    rows_.push_back(row);
    byPath_.insert(static_cast<TrackId>(rows_.size() - 1),
                   [this](TrackId id) { return HashOfPair(rows_[id].folder, rows_[id].file); });
    ++count_;
    ++revision_;
    return true;
  }
  Track& known = rows_[place];
  if (Content(known) == Content(row)) return false;
  if (!known.present) ++count_;
  known = row;
  ++revision_;
  return true;
}

bool TrackTable::remove(const std::string& path) {
  const auto id = find(path);
  if (!id || !rows_[*id].present) return false;
  rows_[*id].present = false;
  --count_;
  ++revision_;
  return true;
}

std::optional<TrackId> TrackTable::find(const std::string& path) const {
  const PathParts parts = Cut(path);
  const TrackId found = at(pool_.find(parts.folder), pool_.find(parts.file));
  return found != IdTable::kNone ? std::optional(found) : std::nullopt;
}

TrackId TrackTable::at(StringPool::Id folder, StringPool::Id file) const {
  return byPath_.find(HashOfPair(folder, file),
                      [&](TrackId id) { return rows_[id].folder == folder && rows_[id].file == file; });
}

std::string TrackTable::path(TrackId id) const {
  const Track& row = rows_[id];
  std::string path(text(row.folder));
  path += text(row.file);
  return path;
}

}  // namespace engine
