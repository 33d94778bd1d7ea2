#pragma once
#include "base/Members.hpp"
#include "standin/hostobjects/HostWaits.hpp"
#include "standin/hostobjects/HouseObjects.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// The object that knows what the host last heard.
class SystemObject : public base::TableObject {
 public:
  explicit SystemObject(House& house);
};

/// The host's operations, by name.
class HostObject : public base::TableObject {
 public:
  HostObject(House& house, HouseObjects& objects, HostWaits& waits, const base::ObjectRef& system);
};

/// What the plug-in is given at its start.
class CallbackObject : public base::TableObject {
 public:
  CallbackObject(House& house, const base::ObjectRef& host);
};

}  // namespace standin
