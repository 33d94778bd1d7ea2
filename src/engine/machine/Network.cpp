#include "engine/machine/Network.hpp"

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

#include <memory>

namespace engine {

bool IsOnline() {
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return false;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> list(first, &::freeifaddrs);
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    const bool up = (entry->ifa_flags & IFF_UP) != 0 && (entry->ifa_flags & IFF_RUNNING) != 0;
    const bool own = (entry->ifa_flags & IFF_LOOPBACK) != 0;
    const bool addressed = entry->ifa_addr != nullptr &&
                           (entry->ifa_addr->sa_family == AF_INET || entry->ifa_addr->sa_family == AF_INET6);
    if (up && !own && addressed) return true;
  }
  return false;
}

}  // namespace engine
