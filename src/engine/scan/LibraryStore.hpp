#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "database/Database.hpp"
#include "engine/common/Track.hpp"

namespace engine {

using LogLine = std::function<void(const std::string&)>;

/// The library's index on disk. Files that were looked at and hold no media are remembered too, so that they
/// are not opened again. May be used by one thread at a time.
class LibraryStore {
 public:
  /// Opens or makes the index in `folder`. A file that is no index is moved aside and a new one begun; where
  /// nothing can be written, the index lives in memory. Either is told in one line through `log`.
  LibraryStore(const std::string& folder, const LogLine& log);

  /// What the index held when it was opened, by path. To be asked once.
  [[nodiscard]] std::vector<FileRecord> load() { return std::move(records_); }
  /// Writes all of it in one transaction. Throws number 57.
  void apply(const std::vector<FileRecord>& changed, const std::vector<std::string>& removed);

 private:
  void open(const std::string& path);
  void openOrAgain(const std::string& path);
  void close();
  std::vector<FileRecord> readAll();

  std::vector<FileRecord> records_;
  std::unique_ptr<database::Database> database_;
  std::optional<database::Statement> put_;
  std::optional<database::Statement> remove_;
};

}  // namespace engine
