#pragma once
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Failure.hpp"

namespace standin {

/// Number 57: a server has answered, but with no success.
class RefusedByServer : public base::Failure {
 public:
  explicit RefusedByServer(long status)
      : base::Failure(base::number::kDeviceIo, "It was answered " + std::to_string(status)),
        status_(status) {}
  [[nodiscard]] long status() const { return status_; }

 private:
  long status_;
};

/// A part of the network: all addresses that begin with the same bits.
struct NetPrefix {
  int family = 0;
  std::array<std::uint8_t, 16> begin{};  ///< the first 4 for addresses of the older kind
  int bits = 0;

  [[nodiscard]] bool holds(const sockaddr& address) const;
};
/// Such as "2001:db8::/64"; nothing for what is none.
std::optional<NetPrefix> ReadPrefix(const std::string& text);
/// The parts of the network that this machine is in, as far as its interfaces tell.
std::vector<NetPrefix> PrefixesHere();

struct FetchRules {
  std::string userAgent;
  std::size_t mostBytes = std::size_t{16} << 20U;
  std::chrono::milliseconds limit = std::chrono::seconds(8);  ///< for all of it
  const std::atomic<bool>* stop = nullptr;                    ///< ends it early once it is true
  /// PEM file of the one server that may answer by https, whatever it is called; empty: those that the
  /// machine trusts, by their names.
  std::string certificate{};
  std::vector<NetPrefix> (*neighbours)() = &PrefixesHere;  ///< what is not led on to besides
};

/// The body of what lies at an address, through redirections. What the address itself names is trusted, as
/// its owner has set it up; wherever it leads on to has to lie in the public network, or on the same server
/// as before, so that no service can have this house ask its neighbours: in a usual house all machines have
/// public addresses too, so what shares the network of one of this machine's is as little led on to. Nor does
/// anything lead from "https" back to "http". Throws number 57 when there is no good answer within the
/// limits.
std::string FetchPublic(const std::string& url, const FetchRules& rules);

/// Why it isn't led on from one address to the other, whoever has them; empty where it may be.
std::string WhyNotOn(const std::string& from, const std::string& to);

/// Whether that address is anybody's in the public network.
bool IsPublicAddress(const sockaddr& address);

}  // namespace standin
