#include "bus/HouseBus.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace bus {

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read while one thread runs
  return value == nullptr ? std::string() : std::string(value);
}

/// A path as bus addresses spell it.
std::string Escaped(const std::string& path) {
  constexpr std::string_view kPlain = "-_/.\\*";
  constexpr std::string_view kHex = "0123456789abcdef";
  std::string escaped;
  for (const char c : path) {
    const auto code = static_cast<unsigned char>(c);
    const bool letter = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (letter || kPlain.find(c) != std::string_view::npos) {
      escaped += c;
    } else {
      escaped += {'%', kHex[code >> 4U], kHex[code & 15U]};
    }
  }
  return escaped;
}

}  // namespace

std::string HouseSocket() {
  std::string folder = Variable("XDG_RUNTIME_DIR");
  if (folder.empty()) folder = "/tmp/vantorix-" + std::to_string(::getuid());
  return folder + "/vantorix/bus";
}

std::string OwnBusAt(const std::string& socket) {
  struct stat found {};
  if (::stat(socket.c_str(), &found) == 0 && S_ISSOCK(found.st_mode) && found.st_uid == ::getuid())
    return "unix:path=" + Escaped(socket);
  return {};
}

std::string HouseBusAddress() {
  if (auto address = Variable("VANTORIX_BUS"); !address.empty()) return address;
  return OwnBusAt(HouseSocket());
}

}  // namespace bus
