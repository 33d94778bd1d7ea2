#pragma once
#include <functional>

#include "base/Members.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// A device with what is to be done with it: fresh from `NewDevFunc`, or an entry of an event's list, whose
/// changes are then stored.
class DevFuncObject : public base::TableObject {
 public:
  DevFuncObject();
  DevFuncObject(House& house, std::int32_t event, std::int64_t entry);
};

/// The devices of an event: Count, item, Remove, Add, positions from 1.
class EventDevicesObject : public base::TableObject {
 public:
  /// `entry` gives the object of an entry by its number in the store, and hears of removed ones.
  using EntryObject = std::function<base::ObjectRef(std::int64_t entry)>;
  using EntryGone = std::function<void(std::int64_t entry)>;
  EventDevicesObject(House& house, std::int32_t event, const EntryObject& entry, const EntryGone& gone);
};

/// An event as the plug-in and scripts see it.
class EventObject : public base::TableObject {
 public:
  EventObject(House& house, std::int32_t event, const base::ObjectRef& devices);
};

}  // namespace standin
