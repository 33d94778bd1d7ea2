#pragma once
#include <string>

namespace bus {

/// The path of the house's own bus socket, whether or not it exists.
std::string HouseSocket();
/// The address of the bus that the house's programs meet on: VANTORIX_BUS if it is set, else the house's own
/// socket if there is one, else empty for the session bus.
std::string HouseBusAddress();

/// The address of the bus at that socket; empty where there is none, and where it is somebody else's.
std::string OwnBusAt(const std::string& socket);

}  // namespace bus
