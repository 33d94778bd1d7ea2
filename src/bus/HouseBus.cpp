#include "bus/HouseBus.hpp"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace bus {

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read while one thread runs
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

std::string HouseSocket() {
  std::string folder = Variable("XDG_RUNTIME_DIR");
  if (folder.empty()) folder = "/tmp/vantorix-" + std::to_string(::getuid());
  return folder + "/vantorix/bus";
}

std::string HouseBusAddress() {
  if (auto address = Variable("VANTORIX_BUS"); !address.empty()) return address;
  const std::string socket = HouseSocket();
  std::error_code ignored;
  if (std::filesystem::is_socket(socket, ignored)) return "unix:path=" + socket;
  return {};
}

}  // namespace bus
