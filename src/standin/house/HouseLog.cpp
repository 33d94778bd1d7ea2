#include "standin/house/HouseLog.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <string_view>

#include "base/Failure.hpp"
#include "standin/house/Quotas.hpp"

namespace standin {
namespace {

constexpr std::size_t kLongestLine = 8192;
constexpr std::int64_t kTrimEvery = 256;

constexpr std::size_t kLongestType = 64;

constexpr std::array<std::string_view, 2> kForTheOwnerAlone{"Speech", "Voice"};

}  // namespace

bool IsForTheOwnerAlone(const std::string& type) {
  return std::find(kForTheOwnerAlone.begin(), kForTheOwnerAlone.end(), type) != kForTheOwnerAlone.end();
}

HouseLog::HouseLog(database::Database& database, std::int64_t limit)
    : database_(database),
      insert_(database, "INSERT INTO log (time, type, text) VALUES (?, ?, ?)"),
      limit_(limit) {}

void HouseLog::write(const std::string& type, const std::string& text) {
  LogLine line;
  line.time = std::chrono::duration_cast<std::chrono::milliseconds>(
                  std::chrono::system_clock::now().time_since_epoch())
                  .count();
  line.type = Bounded(type, kLongestType);
  line.text = Bounded(text, kLongestLine);
  try {
    insert_.with(line.time, line.type, line.text).run();
    line.id = database_.lastId();
    if (line.id % std::min(kTrimEvery, limit_) == 0) {
      database::Statement(database_, "DELETE FROM log WHERE id <= ?").with(line.id - limit_).run();
    }
  } catch (const base::Failure& failure) {
    // A house whose disk is full goes on; who can't log has lost its host.
    std::cerr << "A log line could not be stored: " << failure.what() << "\n"
              << line.type << ": " << line.text << "\n";
  }
  if (onLine) onLine(line);
}

std::vector<LogLine> HouseLog::newest(std::size_t count, const std::string& type, std::int64_t before,
                                      LogReader reader) {
  std::vector<LogLine> lines;
  database::Statement rows(
      database_,
      "SELECT id, time, type, text FROM log WHERE (?1 = '' OR type = ?1) AND (?2 = 0 OR id < ?2) "
      "AND (?4 = 0 OR type NOT IN (?5, ?6)) ORDER BY id DESC LIMIT ?3");
  rows.with(type, before, static_cast<std::int64_t>(count),
            static_cast<std::int64_t>(reader == LogReader::kGuest), std::string(kForTheOwnerAlone[0]),
            std::string(kForTheOwnerAlone[1]));
  while (rows.step()) lines.push_back({rows.integer(0), rows.integer(1), rows.text(2), rows.text(3)});
  std::reverse(lines.begin(), lines.end());
  return lines;
}

std::int64_t HouseLog::lastId() {
  database::Statement row(database_, "SELECT ifnull(max(id), 0) FROM log");
  return row.step() ? row.integer(0) : 0;
}

std::optional<LogLine> HouseLog::newestSince(const std::string& type, std::int64_t after) {
  database::Statement row(
      database_, "SELECT id, time, type, text FROM log WHERE id > ? AND type = ? ORDER BY id DESC LIMIT 1");
  if (!row.with(after, type).step()) return std::nullopt;
  return LogLine{row.integer(0), row.integer(1), row.text(2), row.text(3)};
}

std::vector<std::string> HouseLog::types(LogReader reader) {
  std::vector<std::string> types;
  database::Statement rows(database_, "SELECT DISTINCT type FROM log ORDER BY type");
  while (rows.step()) types.push_back(rows.text(0));
  if (reader == LogReader::kGuest) std::erase_if(types, IsForTheOwnerAlone);
  return types;
}

}  // namespace standin
