#include "engine/scan/LibraryStore.hpp"

#include <exception>
#include <filesystem>

#include "files/WriteFile.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr int kVersion = 3;
constexpr int kWithoutLoudness = 2;
constexpr int kWithoutFilms = 1;

/// The version before knew films and some more by their names alone, and names of any length. Such files are
/// read anew.
constexpr const char* kReadAnew =
    "UPDATE tracks SET modified = -1, title = substr(title, 1, 1024), artist = substr(artist, 1, 1024),"
    " albumartist = substr(albumartist, 1, 1024), album = substr(album, 1, 1024), genre = substr(genre, 1, "
    "1024),"
    " collection = substr(collection, 1, 1024), disc_id = substr(disc_id, 1, 1024)"
    " WHERE added = 0 AND (kind = 2 OR path LIKE '%.mka' OR path LIKE '%.aac' OR path LIKE '%.mp2' OR"
    " max(length(title), length(artist), length(albumartist), length(album), length(genre), "
    "length(collection),"
    " length(disc_id)) > 4096)";

/// The version before did not know how loud a track is; every file is read anew.
constexpr const char* kWithLoudness =
    "ALTER TABLE tracks ADD COLUMN loudness INTEGER NOT NULL DEFAULT 0;"
    "UPDATE tracks SET modified = -1 WHERE added = 0 AND kind <> 0";

/// All of it in one number; 0 when nothing is known.
std::int64_t Packed(const Loudness& loudness) {
  if (loudness == Loudness()) return 0;
  const auto bits = [](auto value, unsigned place) {
    return static_cast<std::uint64_t>(static_cast<std::uint16_t>(value)) << place;
  };
  return static_cast<std::int64_t>(bits(loudness.track, 0) | bits(loudness.album, 16) |
                                   bits(loudness.trackPeak, 32) | bits(loudness.albumPeak, 48));
}

Loudness UnpackedLoudness(std::int64_t packed) {
  if (packed == 0) return {};
  const auto part = [&](unsigned place) {
    return static_cast<std::uint16_t>(static_cast<std::uint64_t>(packed) >> place);
  };
  return {static_cast<std::int16_t>(part(0)), static_cast<std::int16_t>(part(16)), part(32), part(48)};
}

constexpr const char* kColumns =
    "CREATE TABLE IF NOT EXISTS tracks (path TEXT PRIMARY KEY, modified INTEGER, size INTEGER, inode INTEGER,"
    " kind INTEGER, title TEXT, artist TEXT, albumartist TEXT, album TEXT, genre TEXT, collection TEXT,"
    " disc_id TEXT, year INTEGER, track INTEGER, disc INTEGER, milliseconds INTEGER, added INTEGER,"
    " loudness INTEGER NOT NULL DEFAULT 0)"
    " WITHOUT ROWID";

/// What the index holds is known to a later version only.
struct WrittenByNewer : std::exception {};

/// Moves an index that is of no use away, under a name with that ending. Answers where it lies now.
std::string MoveAside(const std::string& path, const std::string& ending) {
  std::string aside = path + ending;
  for (int number = 2; fs::exists(aside); ++number) aside = path + ending + std::to_string(number);
  fs::rename(path, aside);
  std::error_code ignored;
  fs::remove(path + "-wal", ignored);
  fs::remove(path + "-shm", ignored);
  return aside;
}

}  // namespace

LibraryStore::LibraryStore(const std::string& folder, const LogLine& log) {
  const std::string path = folder + "/library.db";
  try {
    files::MakeFolder(folder, files::kFolderForOwner);
    const auto anew = [&](const std::string& why, const std::string& ending) {
      close();
      const std::string aside = MoveAside(path, ending);
      open(path);
      log("The library's index " + why + "; it was moved to " + aside + " and is built anew");
    };
    try {
      openOrAgain(path);
    } catch (const database::Damaged&) {
      anew("was damaged", ".damaged");
    } catch (const WrittenByNewer&) {
      anew("was written by a newer player", ".newer");
    }
  } catch (const std::exception& failure) {
    close();
    log("The library's index can't be kept in " + folder + ": " + failure.what());
    open(":memory:");
  }
}

void LibraryStore::openOrAgain(const std::string& path) {
  try {
    open(path);
  } catch (const database::Damaged&) {  // so a disk that couldn't read just once is told too
    close();
    open(path);
  }
}

void LibraryStore::close() {
  records_.clear();
  put_.reset();
  remove_.reset();
  database_.reset();
}

void LibraryStore::open(const std::string& path) {
  database_ = std::make_unique<database::Database>(path, "The library's index");
  {
    database::Statement version(*database_, "PRAGMA user_version");
    const bool found = version.step();
    const std::int64_t known = found ? version.integer(0) : 0;
    while (version.step()) {
    }
    if (known == kWithoutFilms) {
      database_->run(kReadAnew);
      database_->run(kWithLoudness);
    } else if (known == kWithoutLoudness) {
      database_->run(kWithLoudness);
    } else if (known > kVersion) {
      throw WrittenByNewer();
    } else if (known != 0 && known != kVersion) {
      database_->run("DROP TABLE IF EXISTS tracks");
    }
  }
  database_->run(kColumns);
  database_->run("PRAGMA user_version=" + std::to_string(kVersion));
  put_.emplace(*database_, "INSERT OR REPLACE INTO tracks VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
  remove_.emplace(*database_, "DELETE FROM tracks WHERE path = ?");
  records_ = readAll();
}

std::vector<FileRecord> LibraryStore::readAll() {
  std::vector<FileRecord> records;
  database::Statement rows(*database_, "SELECT * FROM tracks ORDER BY path");
  while (rows.step()) {
    FileRecord& record = records.emplace_back();
    record.path = rows.text(0);
    record.stamp.modified = rows.integer(1);
    record.stamp.size = rows.integer(2);
    record.stamp.inode = static_cast<std::uint64_t>(rows.integer(3));
    TrackTags& tags = record.tags;
    tags.kind = static_cast<MediaKind>(rows.integer(4));
    tags.title = rows.text(5);
    tags.artist = rows.text(6);
    tags.albumArtist = rows.text(7);
    tags.album = rows.text(8);
    tags.genre = rows.text(9);
    tags.collectionId = rows.text(10);
    tags.discId = rows.text(11);
    tags.year = static_cast<std::uint16_t>(rows.integer(12));
    tags.track = static_cast<std::uint16_t>(rows.integer(13));
    tags.disc = static_cast<std::uint16_t>(rows.integer(14));
    tags.milliseconds = static_cast<std::uint32_t>(rows.integer(15));
    record.added = rows.integer(16) != 0;
    tags.loudness = UnpackedLoudness(rows.integer(17));
  }
  return records;
}

void LibraryStore::apply(const std::vector<FileRecord>& changed, const std::vector<std::string>& removed) {
  database::Transaction transaction(*database_);
  for (const FileRecord& record : changed) {
    const TrackTags& tags = record.tags;
    const files::FileStamp& stamp = record.stamp;
    put_->with(record.path, stamp.modified, stamp.size, stamp.inode, static_cast<std::int32_t>(tags.kind),
               tags.title, tags.artist, tags.albumArtist, tags.album, tags.genre, tags.collectionId,
               tags.discId, tags.year, tags.track, tags.disc, tags.milliseconds, record.added,
               Packed(tags.loudness))
        .run();
  }
  for (const std::string& path : removed) remove_->with(path).run();
  transaction.commit();
}

}  // namespace engine
