#pragma once
#include <cstdlib>

#include "support/BusDaemon.hpp"

namespace support {

/// A session bus of the test's own. The windows find it when it stands before them among a fixture's bases.
class OwnSession {
 protected:
  OwnSession() { ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1); }
  ~OwnSession() { ::unsetenv("DBUS_SESSION_BUS_ADDRESS"); }
  OwnSession(const OwnSession&) = delete;
  OwnSession& operator=(const OwnSession&) = delete;
  OwnSession(OwnSession&&) = delete;
  OwnSession& operator=(OwnSession&&) = delete;

  BusDaemon bus;
};

}  // namespace support
