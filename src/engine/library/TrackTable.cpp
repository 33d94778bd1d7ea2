#include "engine/library/TrackTable.hpp"

#include <tuple>

namespace engine {
namespace {

struct Parts {
  std::string_view folder;  ///< with the slash at its end
  std::string_view file;
};

Parts Cut(std::string_view path) {
  const auto slash = path.rfind('/');
  if (slash == std::string_view::npos) return {{}, path};
  return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

std::uint64_t Key(StringPool::Id folder, StringPool::Id file) {
  return (static_cast<std::uint64_t>(folder) << 32U) | file;
}

auto Content(const Track& row) {
  return std::tie(row.folder, row.file, row.title, row.artist, row.albumArtist, row.album, row.genre,
                  row.collectionId, row.discId, row.milliseconds, row.year, row.track, row.disc, row.kind,
                  row.present);
}

}  // namespace

bool TrackTable::put(const std::string& path, const TrackTags& tags) {
  const Parts parts = Cut(path);
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

  const auto [place, fresh] =
      byPath_.try_emplace(Key(row.folder, row.file), static_cast<TrackId>(rows_.size()));
  if (fresh) {
    rows_.push_back(row);
    ++count_;
    ++revision_;
    return true;
  }
  Track& known = rows_[place->second];
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
  const Parts parts = Cut(path);
  const auto found = byPath_.find(Key(pool_.find(parts.folder), pool_.find(parts.file)));
  if (found == byPath_.end()) return std::nullopt;
  return found->second;
}

std::string TrackTable::path(TrackId id) const {
  const Track& row = rows_[id];
  std::string path(text(row.folder));
  path += text(row.file);
  return path;
}

}  // namespace engine
