#include "standin/house/EventRows.hpp"

#include <utility>

namespace standin {
namespace {

constexpr const char* kEvents = "SELECT id, name, vcmd, misc, misc2, abs_time, grp FROM event";
constexpr const char* kDevices = "SELECT event, id, devid, func FROM event_device";

Event EventOf(const database::Statement& row) {
  Event event;
  event.id = static_cast<std::int32_t>(row.integer(0));
  event.name = row.text(1);
  event.vcmd = row.text(2);
  event.misc = static_cast<std::int32_t>(row.integer(3));
  event.misc2 = static_cast<std::int32_t>(row.integer(4));
  event.absTime = static_cast<std::int16_t>(row.integer(5));
  event.group = row.text(6);
  return event;
}

EventDevice DeviceOf(const database::Statement& row) {
  return {row.integer(1), static_cast<std::int32_t>(row.integer(2)),
          static_cast<std::int16_t>(row.integer(3))};
}

}  // namespace

std::optional<Event> ReadEvent(database::Database& database, std::int32_t id) {
  database::Statement row(database, std::string(kEvents) + " WHERE id = ?");
  if (!row.with(id).step()) return std::nullopt;
  Event event = EventOf(row);
  database::Statement devices(database, std::string(kDevices) + " WHERE event = ? ORDER BY id");
  devices.with(id);
  while (devices.step()) event.devices.push_back(DeviceOf(devices));
  return event;
}

std::map<std::int32_t, Event> ReadEvents(database::Database& database) {
  std::map<std::int32_t, Event> events;
  database::Statement rows(database, std::string(kEvents) + " ORDER BY id");
  while (rows.step()) {
    Event event = EventOf(rows);
    events.emplace_hint(events.end(), event.id, std::move(event));
  }
  database::Statement devices(database, std::string(kDevices) + " ORDER BY id");
  while (devices.step()) {
    const auto found = events.find(static_cast<std::int32_t>(devices.integer(0)));
    if (found != events.end()) found->second.devices.push_back(DeviceOf(devices));
  }
  return events;
}

std::int32_t InsertEvent(database::Database& database, const Event& event) {
  database::Statement(database,
                      "INSERT INTO event (id, name, vcmd, misc, misc2, abs_time, grp) "
                      "VALUES (NULLIF(?, 0), ?, ?, ?, ?, ?, ?)")
      .with(event.id, event.name, event.vcmd, event.misc, event.misc2, event.absTime, event.group)
      .run();
  const auto id = static_cast<std::int32_t>(database.lastId());
  database::Statement add(database,
                          "INSERT INTO event_device (id, event, devid, func) VALUES (NULLIF(?, 0), ?, ?, ?)");
  for (const EventDevice& device : event.devices) add.with(device.id, id, device.devid, device.func).run();
  return id;
}

void RenameEvent(database::Database& database, std::int32_t id, const std::string& name,
                 const std::string& group) {
  database::Statement(database, "UPDATE event SET name = ?, grp = ? WHERE id = ?")
      .with(name, group, id)
      .run();
}

void EraseEvent(database::Database& database, std::int32_t id) {
  database::Statement(database, "DELETE FROM event WHERE id = ?").with(id).run();
}

}  // namespace standin
