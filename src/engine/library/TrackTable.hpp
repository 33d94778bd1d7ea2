#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/common/IdTable.hpp"
#include "engine/common/StringPool.hpp"
#include "engine/common/Track.hpp"

namespace engine {

/// One row: numbers only, the texts lie in the table's pool.
struct Track {
  StringPool::Id folder = 0;
  StringPool::Id file = 0;
  StringPool::Id title = 0;
  StringPool::Id artist = 0;
  StringPool::Id albumArtist = 0;
  StringPool::Id album = 0;
  StringPool::Id genre = 0;
  StringPool::Id collectionId = 0;
  StringPool::Id discId = 0;
  std::uint32_t milliseconds = 0;
  std::uint16_t year = 0;
  std::uint16_t track = 0;
  std::uint16_t disc = 0;
  MediaKind kind = MediaKind::kAudio;
  bool present = false;  ///< still in the library
  Loudness loudness;
};

/// All tracks of the library in memory. Used on the loop's thread only.
class TrackTable {
 public:
  /// Adds the track or replaces what is known of it. True when something changed.
  bool put(const std::string& path, const TrackTags& tags);
  /// Takes the track out of the library. True when it was there.
  bool remove(const std::string& path);

  [[nodiscard]] std::optional<TrackId> find(const std::string& path) const;
  [[nodiscard]] const Track& row(TrackId id) const { return rows_[id]; }
  /// Number of rows, those of removed tracks among them.
  [[nodiscard]] std::size_t rows() const { return rows_.size(); }
  /// Number of tracks in the library.
  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] std::string_view text(StringPool::Id id) const { return pool_.view(id); }
  [[nodiscard]] std::size_t texts() const { return pool_.size(); }
  [[nodiscard]] std::string path(TrackId id) const;
  /// Grows with every change.
  [[nodiscard]] std::uint64_t revision() const { return revision_; }

 private:
  /// The row of that path, or `IdTable::kNone`.
  [[nodiscard]] TrackId at(StringPool::Id folder, StringPool::Id file) const;

  StringPool pool_;
  std::vector<Track> rows_;
  IdTable byPath_;
  std::size_t count_ = 0;
  std::uint64_t revision_ = 1;
};

}  // namespace engine
