#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "database/Database.hpp"

namespace standin {

struct LogLine {
  std::int64_t id = 0;
  std::int64_t time = 0;  ///< milliseconds since 1970
  std::string type;
  std::string text;
};

/// What is heard and said in the house's rooms, and typed to it, is for those alone who live there: lines of
/// such a type are not shown to guests.
bool IsForTheOwnerAlone(const std::string& type);

enum class LogReader { kOwner, kGuest };

/// The house's log, bounded: the oldest lines go when there are more than `limit`.
class HouseLog {
 public:
  explicit HouseLog(database::Database& database, std::int64_t limit = 20000);

  /// Never fails: a line that can't be stored goes to the standard error stream and has the number 0.
  void write(const std::string& type, const std::string& text);
  /// The newest lines of a type (of all types when it is empty) before a line (0: from the end), oldest
  /// first; without those that the reader is not shown.
  std::vector<LogLine> newest(std::size_t count, const std::string& type = {}, std::int64_t before = 0,
                              LogReader reader = LogReader::kOwner);
  /// The number of the newest line, 0 when there is none.
  [[nodiscard]] std::int64_t lastId();
  /// The newest line of a type behind that with the number `after`; nothing when there is none.
  std::optional<LogLine> newestSince(const std::string& type, std::int64_t after);
  /// The types that occur in what the reader is shown.
  std::vector<std::string> types(LogReader reader = LogReader::kOwner);

  std::function<void(const LogLine&)> onLine;

 private:
  database::Database& database_;
  database::Statement insert_;
  std::int64_t limit_;
};

}  // namespace standin
