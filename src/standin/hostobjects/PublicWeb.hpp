#pragma once
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>

namespace standin {

struct FetchRules {
  std::string userAgent;
  std::size_t mostBytes = std::size_t{16} << 20U;
  std::chrono::milliseconds limit = std::chrono::seconds(8);  ///< for all of it
  const std::atomic<bool>* stop = nullptr;                    ///< ends it early once it is true
};

/// The body of what lies at an address, through redirections. What the address itself names is trusted, as
/// its owner has set it up; wherever it leads on to has to lie in the public network, or on the same server
/// as before, so that no service can have this house ask its neighbours. Throws number 57 when there is no
/// good answer within the limits.
std::string FetchPublic(const std::string& url, const FetchRules& rules);

/// Whether that address is anybody's in the public network.
bool IsPublicAddress(const sockaddr& address);

}  // namespace standin
