#include "mpris/session/SessionAddress.hpp"

#include <cstdlib>

#include "base/Text.hpp"
#include "bus/HouseBus.hpp"

namespace mpris {

namespace {

const char* Variable(const char* name) {
  return std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read on the thread that alone writes them
}

/// Which run of the bus it was is left out: at the same place it may be another one by now, of the same user.
std::string WithoutRun(const std::string& address) {
  std::string kept;
  for (const std::string& part : base::Split(address, ','))
    if (!part.starts_with("guid=")) kept += (kept.empty() ? "" : ",") + part;
  return kept;
}

std::string Sockets(const std::string& addresses) {
  std::string sockets;
  for (const std::string& each : base::Split(addresses, ';'))
    if (each.starts_with("unix:path=") || each.starts_with("unix:abstract="))
      sockets += (sockets.empty() ? "" : ";") + WithoutRun(each);
  return sockets;
}

}  // namespace

std::string SessionAddress() {
  const char* told = Variable("VANTORIX_SESSION_BUS");
  if (told == nullptr) told = Variable("DBUS_SESSION_BUS_ADDRESS");
  if (told != nullptr && *told != '\0') return Sockets(told);
  const char* folder = Variable("XDG_RUNTIME_DIR");
  if (folder == nullptr || *folder == '\0') return {};
  return bus::OwnBusAt(std::string(folder) + "/bus");
}

}  // namespace mpris
