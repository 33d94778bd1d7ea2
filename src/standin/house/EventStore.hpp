#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "database/Database.hpp"

namespace standin {

/// The device function that stands for a voice command.
inline constexpr std::int16_t kFuncVoice = 13;

/// A device in an event's list, with what is to be done with it.
struct EventDevice {
  std::int64_t id = 0;
  std::int32_t devid = 0;
  std::int16_t func = 0;
};

struct Event {
  std::int32_t id = 0;
  std::string name;
  std::string vcmd;  ///< voice command pattern
  std::int32_t misc = 0;
  std::int32_t misc2 = 0;
  std::int16_t absTime = 0;
  std::string group;
  std::vector<EventDevice> devices;
};

/// The events of the house, in memory and in the database. Every change is stored when its call returns.
/// An event's index is its number, which it keeps for its life.
class EventStore {
 public:
  explicit EventStore(database::Database& database);

  [[nodiscard]] const std::map<std::int32_t, Event>& all() const { return events_; }
  [[nodiscard]] const Event* byId(std::int32_t id) const;
  /// Without regard to case; the oldest of several.
  [[nodiscard]] const Event* byName(std::string_view name) const;
  /// Grows with every change of a voice command pattern, and when an event that has one comes or goes.
  [[nodiscard]] std::uint64_t patternsRevision() const { return patternsRevision_; }

  static constexpr std::size_t kMost =
      100'000;  ///< events, those that the plug-in makes of the library included
  static constexpr std::size_t kMostDevices = 10'000;                     ///< of an event
  static constexpr std::size_t kMostDevicesInAll = 1'000'000;             ///< of all events together
  static constexpr std::size_t kLongestPattern = std::size_t{16} << 20U;  ///< bytes of a voice command
  static constexpr std::size_t kMostBytes = std::size_t{128} << 20U;      ///< of all texts together

  /// Throws 6 beyond `kMost` and for a text that is too long, or makes them all too long, as do the others;
  /// nothing is changed then.
  const Event& create(const std::string& name);
  /// Throws 6 where there is none for one more like it, whoever writes its rows.
  void checkRoomFor(const Event& event) const;
  void put(std::int32_t id, std::string Event::*field, const std::string& value);
  void put(std::int32_t id, std::int32_t Event::*field, std::int32_t value);
  void putAbsTime(std::int32_t id, std::int16_t value);

  std::int64_t addDevice(std::int32_t id, std::int32_t devid, std::int16_t func);
  /// By position from 1; throws number 9 outside the list.
  [[nodiscard]] const EventDevice& device(std::int32_t id, std::int32_t position);
  void removeDevice(std::int32_t id, std::int32_t position);
  void putDevice(std::int32_t id, const EventDevice& device);

  /// Takes what has been read after somebody else has written or erased the event's rows; nothing for one
  /// that is gone.
  void take(std::int32_t id, std::optional<Event> event);
  /// Called when the name or group of an event has been changed here. Not by `take`.
  std::function<void(std::int32_t id)> onRename = [](std::int32_t) {};
  /// Called whenever `patternsRevision` has grown.
  std::function<void()> onPattern = [] {};

 private:
  void patternChanged();
  const Event& take(Event event);
  void forget(std::int32_t id);
  Event& need(std::int32_t id);
  void update(std::int32_t id, const char* column, const std::string& value);
  void update(std::int32_t id, const char* column, std::int64_t value);

  database::Database& database_;
  std::uint64_t patternsRevision_ = 1;
  std::map<std::int32_t, Event> events_;
  std::size_t bytes_ = 0;                                              ///< of their texts
  std::size_t deviceCount_ = 0;                                        ///< in all their lists
  std::map<std::string, std::set<std::int32_t>, std::less<>> byName_;  ///< in lower case
};

}  // namespace standin
