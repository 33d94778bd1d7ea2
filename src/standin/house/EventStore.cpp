#include "standin/house/EventStore.hpp"

#include <algorithm>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {

EventStore::EventStore(database::Database& database) : database_(database) {
  database::Statement rows(database, "SELECT id, name, vcmd, misc, misc2, abs_time, grp FROM event");
  while (rows.step()) {
    Event event;
    event.id = static_cast<std::int32_t>(rows.integer(0));
    event.name = rows.text(1);
    event.vcmd = rows.text(2);
    event.misc = static_cast<std::int32_t>(rows.integer(3));
    event.misc2 = static_cast<std::int32_t>(rows.integer(4));
    event.absTime = static_cast<std::int16_t>(rows.integer(5));
    event.group = rows.text(6);
    events_.emplace(event.id, std::move(event));
  }
  database::Statement devices(database, "SELECT event, id, devid, func FROM event_device ORDER BY id");
  while (devices.step()) {
    const auto found = events_.find(static_cast<std::int32_t>(devices.integer(0)));
    if (found == events_.end()) continue;
    found->second.devices.push_back({devices.integer(1), static_cast<std::int32_t>(devices.integer(2)),
                                     static_cast<std::int16_t>(devices.integer(3))});
  }
}

const Event* EventStore::byId(std::int32_t id) const {
  const auto found = events_.find(id);
  return found == events_.end() ? nullptr : &found->second;
}

const Event* EventStore::byName(std::string_view name) const {
  const auto found = std::find_if(events_.begin(), events_.end(),
                                  [&](const auto& entry) { return base::SameText(entry.second.name, name); });
  return found == events_.end() ? nullptr : &found->second;
}

Event& EventStore::need(std::int32_t id) {
  const auto found = events_.find(id);
  if (found == events_.end()) {
    throw base::Failure(base::number::kObjectMissing, "The event has been deleted");
  }
  return found->second;
}

const Event& EventStore::create(const std::string& name) {
  database::Statement(
      database_, "INSERT INTO event (name, vcmd, misc, misc2, abs_time, grp) VALUES (?, '', 0, 0, 0, '')")
      .with(name)
      .run();
  Event event;
  event.id = static_cast<std::int32_t>(database_.lastId());
  event.name = name;
  return events_.emplace(event.id, std::move(event)).first->second;
}

void EventStore::update(std::int32_t id, const char* column, const std::string& value) {
  database::Statement(database_, std::string("UPDATE event SET ") + column + " = ? WHERE id = ?")
      .with(value, id)
      .run();
}

void EventStore::update(std::int32_t id, const char* column, std::int64_t value) {
  database::Statement(database_, std::string("UPDATE event SET ") + column + " = ? WHERE id = ?")
      .with(value, id)
      .run();
}

void EventStore::put(std::int32_t id, std::string Event::*field, const std::string& value) {
  Event& event = need(id);
  if (event.*field == value) return;
  update(id, field == &Event::name ? "name" : field == &Event::vcmd ? "vcmd" : "grp", value);
  event.*field = value;
}

void EventStore::put(std::int32_t id, std::int32_t Event::*field, std::int32_t value) {
  Event& event = need(id);
  if (event.*field == value) return;
  update(id, field == &Event::misc ? "misc" : "misc2", std::int64_t{value});
  event.*field = value;
}

void EventStore::putAbsTime(std::int32_t id, std::int16_t value) {
  Event& event = need(id);
  if (event.absTime == value) return;
  update(id, "abs_time", std::int64_t{value});
  event.absTime = value;
}

std::int64_t EventStore::addDevice(std::int32_t id, std::int32_t devid, std::int16_t func) {
  Event& event = need(id);
  database::Statement(database_, "INSERT INTO event_device (event, devid, func) VALUES (?, ?, ?)")
      .with(id, devid, func)
      .run();
  event.devices.push_back({database_.lastId(), devid, func});
  return event.devices.back().id;
}

const EventDevice& EventStore::device(std::int32_t id, std::int32_t position) {
  const Event& event = need(id);
  if (position < 1 || static_cast<std::size_t>(position) > event.devices.size()) {
    throw base::Failure(base::number::kIndex);
  }
  return event.devices[static_cast<std::size_t>(position) - 1];
}

void EventStore::removeDevice(std::int32_t id, std::int32_t position) {
  const std::int64_t row = device(id, position).id;
  database::Statement(database_, "DELETE FROM event_device WHERE id = ?").with(row).run();
  auto& devices = need(id).devices;
  devices.erase(devices.begin() + (position - 1));
}

void EventStore::putDevice(std::int32_t id, const EventDevice& device) {
  auto& devices = need(id).devices;
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [&](const EventDevice& entry) { return entry.id == device.id; });
  if (found == devices.end()) throw base::Failure(base::number::kObjectMissing);
  database::Statement(database_, "UPDATE event_device SET devid = ?, func = ? WHERE id = ?")
      .with(device.devid, device.func, device.id)
      .run();
  *found = device;
}

}  // namespace standin
