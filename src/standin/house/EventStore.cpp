#include "standin/house/EventStore.hpp"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/EventRows.hpp"
#include "standin/house/Quotas.hpp"

namespace standin {
namespace {

constexpr const char* kTexts = "The texts of events";

std::size_t SizeOf(const Event& event) { return event.name.size() + event.vcmd.size() + event.group.size(); }

}  // namespace

EventStore::EventStore(database::Database& database) : database_(database) {
  for (auto& [id, event] : ReadEvents(database)) take(std::move(event));
}

void EventStore::patternChanged() {
  ++patternsRevision_;
  onPattern();
}

const Event& EventStore::take(Event event) {
  byName_[base::LowerCase(event.name)].insert(event.id);
  if (!event.vcmd.empty()) patternChanged();
  bytes_ += SizeOf(event);
  deviceCount_ += event.devices.size();
  const std::int32_t id = event.id;
  return events_.insert_or_assign(id, std::move(event)).first->second;
}

void EventStore::forget(std::int32_t id) {
  const auto event = events_.find(id);
  if (event == events_.end()) return;
  if (!event->second.vcmd.empty()) patternChanged();
  const auto named = byName_.find(base::LowerCase(event->second.name));
  named->second.erase(id);
  if (named->second.empty()) byName_.erase(named);
  bytes_ -= SizeOf(event->second);
  deviceCount_ -= event->second.devices.size();
  events_.erase(event);
}

void EventStore::take(std::int32_t id, std::optional<Event> event) {
  forget(id);
  if (event) take(std::move(*event));
}

const Event* EventStore::byId(std::int32_t id) const {
  const auto found = events_.find(id);
  return found == events_.end() ? nullptr : &found->second;
}

const Event* EventStore::byName(std::string_view name) const {
  const auto found = byName_.find(base::LowerCase(name));
  return found == byName_.end() ? nullptr : byId(*found->second.begin());
}

Event& EventStore::need(std::int32_t id) {
  const auto found = events_.find(id);
  if (found == events_.end()) {
    throw base::Failure(base::number::kObjectMissing, "The event has been deleted");
  }
  return found->second;
}

void EventStore::checkRoomFor(const Event& event) const {
  CheckRoom("events", events_.size(), kMost);
  BytesWith(kTexts, bytes_, 0, SizeOf(event), kMostBytes);
  if (!event.devices.empty())
    CheckRoom("devices in all events", deviceCount_ + event.devices.size() - 1, kMostDevicesInAll);
}

const Event& EventStore::create(const std::string& name) {
  CheckLength("The name of an event", name);
  Event event;
  event.name = name;
  checkRoomFor(event);
  event.id = InsertEvent(database_, event);
  return take(std::move(event));
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
  CheckLength("A text of an event", value, field == &Event::vcmd ? kLongestPattern : kLongestPlainText);
  const std::size_t bytes = BytesWith(kTexts, bytes_, (event.*field).size(), value.size(), kMostBytes);
  update(id, field == &Event::name ? "name" : field == &Event::vcmd ? "vcmd" : "grp", value);
  if (field == &Event::name) {
    Event renamed = event;
    renamed.name = value;
    forget(id);
    take(std::move(renamed));
  } else {
    bytes_ = bytes;
    event.*field = value;
  }
  if (field == &Event::vcmd) patternChanged();
  if (field != &Event::vcmd) onRename(id);
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
  CheckRoom("devices in the event", event.devices.size(), kMostDevices);
  CheckRoom("devices in all events", deviceCount_, kMostDevicesInAll);
  database::Statement(database_, "INSERT INTO event_device (event, devid, func) VALUES (?, ?, ?)")
      .with(id, devid, func)
      .run();
  event.devices.push_back({database_.lastId(), devid, func});
  ++deviceCount_;
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
  --deviceCount_;
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
