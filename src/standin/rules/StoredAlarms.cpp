#include "standin/rules/StoredAlarms.hpp"

#include <algorithm>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr std::int32_t kAll = 0;  // no event has that number

}  // namespace

StoredAlarms::StoredAlarms(House& house, const EvaluationStore& history) : house_(house), history_(history) {
  house_.database.run("DELETE FROM alarm_seen WHERE event <> 0 AND event NOT IN (SELECT id FROM event)");
}

std::optional<std::int64_t> StoredAlarms::read(std::int32_t event) const {
  database::Statement row(house_.database, "SELECT moment FROM alarm_seen WHERE event = ?");
  if (!row.with(event).step()) return std::nullopt;
  return row.integer(0);
}

std::optional<std::int64_t> StoredAlarms::seen() const { return read(kAll); }

std::optional<std::int64_t> StoredAlarms::seen(std::int32_t event) const {
  std::optional<std::int64_t> seen = std::max(read(kAll), read(event));
  if (const Evaluation* last = history_.last(event)) seen = std::max(seen, std::optional(last->time));
  return seen;
}

void StoredAlarms::keep(std::int64_t moment) { keep(kAll, moment); }

void StoredAlarms::keep(std::int32_t event, std::int64_t moment) {
  try {
    database::Statement(house_.database, "INSERT OR REPLACE INTO alarm_seen (event, moment) VALUES (?, ?)")
        .with(event, moment)
        .run();
  } catch (const base::Failure&) {  // a full disk
  }
}

}  // namespace standin
