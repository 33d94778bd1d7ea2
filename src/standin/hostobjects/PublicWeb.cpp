#include "standin/hostobjects/PublicWeb.hpp"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

using SteadyClock = std::chrono::steady_clock;
constexpr int kMostSteps = 6;
constexpr int kFewestBits = 8;  ///< a larger part of the network is nobody's house
constexpr const char* kInTheHouse = "It leads on into a house's own network";

struct Block {
  std::uint32_t address;
  int bits;
};
/// Machines, houses and purposes of their own.
constexpr std::array<Block, 12> kOwn{{{0x00000000, 8},
                                      {0x0A000000, 8},
                                      {0x64400000, 10},
                                      {0x7F000000, 8},
                                      {0xA9FE0000, 16},
                                      {0xAC100000, 12},
                                      {0xC0000000, 24},
                                      {0xC0000200, 24},
                                      {0xC0A80000, 16},
                                      {0xC6120000, 15},
                                      {0xE0000000, 4},
                                      {0xF0000000, 4}}};

bool IsPublic(std::uint32_t address) {
  return std::none_of(kOwn.begin(), kOwn.end(), [&](const Block& block) {
    return ((address ^ block.address) >> static_cast<unsigned>(32 - block.bits)) == 0;
  });
}

bool IsPublic(const in6_addr& address) {
  std::array<std::uint8_t, 16> bytes{};
  std::memcpy(bytes.data(), &address, bytes.size());
  // Only this part has been given to the public; within it some lead on to addresses of the older kind.
  if ((bytes[0] & 0xE0U) != 0x20) return false;
  if (bytes[0] == 0x20 && bytes[1] == 0x02) return false;
  return !(bytes[0] == 0x20 && bytes[1] == 0x01 && bytes[2] == 0 && bytes[3] == 0);
}

/// The bytes of an address that tell where it lies; none for one of another kind.
std::vector<std::uint8_t> BytesOf(const sockaddr& address) {
  std::vector<std::uint8_t> bytes;
  if (address.sa_family == AF_INET) {
    sockaddr_in four{};
    std::memcpy(&four, &address, sizeof four);
    bytes.resize(sizeof four.sin_addr);
    std::memcpy(bytes.data(), &four.sin_addr, bytes.size());
  } else if (address.sa_family == AF_INET6) {
    // Taken as it stands: the caller's place is as long as the family says.
    const in6_addr& six = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
    bytes.resize(sizeof six);
    std::memcpy(bytes.data(), &six, bytes.size());
  }
  return bytes;
}

std::string SchemeOf(const std::string& url) { return base::LowerCase(url.substr(0, url.find("://"))); }

std::string ServerOf(const std::string& url) {
  const std::size_t begin = url.find("://");
  if (begin == std::string::npos) return {};
  return base::LowerCase(url.substr(0, url.find_first_of("/?#", begin + 3)));
}

/// One answer on the way.
struct Step {
  std::string body{};
  std::size_t most = 0;
  bool anywhere = false;  ///< may be asked of a server in the house
  std::vector<NetPrefix> neighbours{};
  bool kept = false;  ///< from an address that may not be asked
};

std::size_t Collect(char* data, std::size_t size, std::size_t count, void* into) {
  auto& step = *static_cast<Step*>(into);
  if (step.body.size() + size * count > step.most) return 0;
  step.body.append(data, size * count);
  return size * count;
}

curl_socket_t Open(void* rules, curlsocktype, curl_sockaddr* address) {
  Step& step = *static_cast<Step*>(rules);
  const bool near = std::any_of(step.neighbours.begin(), step.neighbours.end(),
                                [&](const NetPrefix& each) { return each.holds(address->addr); });
  if (!step.anywhere && (near || !IsPublicAddress(address->addr))) {
    step.kept = true;
    return CURL_SOCKET_BAD;
  }
  return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

int LookForStop(void* stop, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return static_cast<const std::atomic<bool>*>(stop)->load() ? 1 : 0;
}

/// Answers where it leads on to; an empty text when the body is there.
std::string Ask(const std::string& url, Step& step, const FetchRules& rules, long milliseconds) {
  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(), &curl_easy_cleanup);
  if (!handle) throw base::Failure(base::number::kInternal, "No memory for a web request");
  CURL* const curl = handle.get();
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 0L);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_PROXY, "");  // behind another one's back no address could be looked at
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, milliseconds);
  if (!rules.certificate.empty()) {
    curl_easy_setopt(curl, CURLOPT_CAINFO, rules.certificate.c_str());
    curl_easy_setopt(curl, CURLOPT_CAPATH, nullptr);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 0L);
  }
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Collect);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &step);
  curl_easy_setopt(curl, CURLOPT_OPENSOCKETFUNCTION, &Open);
  curl_easy_setopt(curl, CURLOPT_OPENSOCKETDATA, &step);
  curl_easy_setopt(curl, CURLOPT_USERAGENT, rules.userAgent.c_str());
  if (rules.stop != nullptr) {
    // A name that is being looked up isn't waited for.
    curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, &LookForStop);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, rules.stop);
  }
  const CURLcode code = curl_easy_perform(curl);
  if (code != CURLE_OK)
    throw base::Failure(base::number::kDeviceIo, step.kept ? kInTheHouse : curl_easy_strerror(code));
  long status = 0;
  curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
  const char* next = nullptr;
  curl_easy_getinfo(curl, CURLINFO_REDIRECT_URL, &next);
  if (next != nullptr) return next;
  if (status < 200 || status >= 300) throw RefusedByServer(status);
  return {};
}

}  // namespace

bool NetPrefix::holds(const sockaddr& address) const {
  if (address.sa_family != family) return false;
  const std::vector<std::uint8_t> bytes = BytesOf(address);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const int counted = std::clamp(bits - static_cast<int>(i) * 8, 0, 8);
    if (((bytes[i] ^ begin[i]) >> static_cast<unsigned>(8 - counted)) != 0) return false;
  }
  return true;
}

std::optional<NetPrefix> ReadPrefix(const std::string& text) {
  const std::size_t slash = text.find('/');
  if (slash == std::string::npos) return std::nullopt;
  const std::string address = text.substr(0, slash);
  NetPrefix prefix;
  prefix.family = address.find(':') == std::string::npos ? AF_INET : AF_INET6;
  if (::inet_pton(prefix.family, address.c_str(), prefix.begin.data()) != 1) return std::nullopt;
  const char* const end = text.data() + text.size();
  const auto [after, problem] = std::from_chars(text.data() + slash + 1, end, prefix.bits);
  const int most = prefix.family == AF_INET ? 32 : 128;
  if (problem != std::errc() || after != end || prefix.bits < 0 || prefix.bits > most) return std::nullopt;
  return prefix;
}

std::vector<NetPrefix> PrefixesHere() {
  std::vector<NetPrefix> prefixes;
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return prefixes;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> all(first, &::freeifaddrs);
  for (const ifaddrs* each = first; each != nullptr; each = each->ifa_next) {
    if (each->ifa_addr == nullptr || each->ifa_netmask == nullptr) continue;
    const std::vector<std::uint8_t> bytes = BytesOf(*each->ifa_addr);
    NetPrefix prefix{.family = each->ifa_addr->sa_family};
    std::copy(bytes.begin(), bytes.end(), prefix.begin.begin());
    if (each->ifa_netmask->sa_family == each->ifa_addr->sa_family)
      for (const std::uint8_t byte : BytesOf(*each->ifa_netmask)) prefix.bits += std::popcount(byte);
    if (!bytes.empty() && prefix.bits >= kFewestBits) prefixes.push_back(prefix);
  }
  return prefixes;
}

std::string WhyNotOn(const std::string& from, const std::string& to) {
  const std::string scheme = SchemeOf(to);
  if (scheme != "http" && scheme != "https") return "It leads on to what is no page of the web";
  if (SchemeOf(from) == "https" && scheme == "http")
    return "It leads on from a safe connection to an open one";
  return {};
}

bool IsPublicAddress(const sockaddr& address) {
  if (address.sa_family == AF_INET) {
    sockaddr_in four{};
    std::memcpy(&four, &address, sizeof four);
    return IsPublic(ntohl(four.sin_addr.s_addr));
  }
  if (address.sa_family != AF_INET6) return false;
  // Taken as it stands: the caller's place is as long as the family says.
  return IsPublic(reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
}

std::string FetchPublic(const std::string& url, const FetchRules& rules) {
  const SteadyClock::time_point end = SteadyClock::now() + rules.limit;
  std::string at = url;
  for (int steps = 0; steps < kMostSteps; ++steps) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - SteadyClock::now());
    if (left.count() <= 0) break;
    Step step{.most = rules.mostBytes, .anywhere = ServerOf(at) == ServerOf(url)};
    if (!step.anywhere) step.neighbours = rules.neighbours();
    std::string next = Ask(at, step, rules, static_cast<long>(left.count()));
    if (next.empty()) return std::move(step.body);
    if (const std::string why = WhyNotOn(at, next); !why.empty())
      throw base::Failure(base::number::kDeviceIo, why);
    at = std::move(next);
  }
  throw base::Failure(base::number::kDeviceIo, "It leads on and on");
}

}  // namespace standin
