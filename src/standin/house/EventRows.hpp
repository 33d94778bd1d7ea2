#pragma once
#include <map>
#include <optional>

#include "standin/house/EventStore.hpp"

namespace standin {

// An event as the database has it, for those who change events together with what belongs to them: they write
// rows in a transaction of theirs, and tell the store to `reload` when it is committed. All throw as
// databases do.

/// Nothing when there is none.
std::optional<Event> ReadEvent(database::Database& database, std::int32_t id);
std::map<std::int32_t, Event> ReadEvents(database::Database& database);
/// A new event with all that is in it; its number and those of its devices too unless they are 0. Answers the
/// event's number.
std::int32_t InsertEvent(database::Database& database, const Event& event);
void RenameEvent(database::Database& database, std::int32_t id, const std::string& name,
                 const std::string& group);
/// With its devices and its rule.
void EraseEvent(database::Database& database, std::int32_t id);

}  // namespace standin
