#include "bus/Errors.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <optional>
#include <system_error>

namespace bus {

namespace {

constexpr std::string_view kPrefix = "org.vantorix.Failure.N";
constexpr std::string_view kBusPrefix = "org.freedesktop.DBus.Error.";

struct Known {
  std::string_view name;
  std::int32_t number;
};

constexpr std::array kBusErrors{
    Known{"ServiceUnknown", base::number::kHostGone},
    Known{"NameHasNoOwner", base::number::kHostGone},
    Known{"NoReply", base::number::kHostGone},
    Known{"NoServer", base::number::kHostGone},
    Known{"Disconnected", base::number::kHostGone},
    Known{"Timeout", base::number::kHostGone},
    Known{"TimedOut", base::number::kHostGone},
    Known{"UnknownMethod", base::number::kNoSuchMember},
    Known{"UnknownObject", base::number::kNoSuchMember},
    Known{"UnknownInterface", base::number::kNoSuchMember},
    Known{"UnknownProperty", base::number::kNoSuchMember},
    Known{"PropertyReadOnly", base::number::kNoSuchMember},
    Known{"InvalidArgs", base::number::kWrongArguments},
    Known{"InvalidSignature", base::number::kWrongArguments},
    Known{"AccessDenied", base::number::kPermissionDenied},
    Known{"FileNotFound", base::number::kFileNotFound},
};

constexpr std::array<std::string_view, 4> kGoneSystemErrors{
    "System.Error.ECONNRESET", "System.Error.ENOTCONN", "System.Error.ETIMEDOUT", "System.Error.EPIPE"};

std::optional<std::int32_t> NumberIn(std::string_view errorName) {
  if (!errorName.starts_with(kPrefix)) return std::nullopt;
  errorName.remove_prefix(kPrefix.size());
  const bool negative = errorName.starts_with('M');
  if (negative) errorName.remove_prefix(1);
  std::int64_t magnitude = 0;
  const char* const end = errorName.data() + errorName.size();
  const auto [stop, error] = std::from_chars(errorName.data(), end, magnitude);
  if (error != std::errc() || stop != end || magnitude < 0) return std::nullopt;
  const std::int64_t number = negative ? -magnitude : magnitude;
  if (number < std::numeric_limits<std::int32_t>::min() || number > std::numeric_limits<std::int32_t>::max())
    return std::nullopt;
  return static_cast<std::int32_t>(number);
}

}  // namespace

std::string ErrorNameOf(std::int32_t failureNumber) {
  const std::int64_t number = failureNumber;
  return std::string(kPrefix) + (number < 0 ? "M" : "") + std::to_string(std::abs(number));
}

base::Failure FailureOf(std::string_view errorName, const std::string& description) {
  if (const auto number = NumberIn(errorName)) return {*number, description};
  if (std::find(kGoneSystemErrors.begin(), kGoneSystemErrors.end(), errorName) != kGoneSystemErrors.end())
    return {base::number::kHostGone, description};
  if (errorName.starts_with(kBusPrefix)) {
    const auto name = errorName.substr(kBusPrefix.size());
    const auto known = std::find_if(kBusErrors.begin(), kBusErrors.end(),
                                    [&](const Known& candidate) { return candidate.name == name; });
    if (known != kBusErrors.end()) return {known->number, description};
  }
  return {base::number::kInternal, std::string(errorName) + ": " + description};
}

void Check(int result) {
  if (result >= 0) return;
  const std::string description = std::system_category().message(-result);
  switch (-result) {
    case ENOTCONN:
    case ECONNRESET:
    case ECONNREFUSED:
    case EPIPE:
    case ESHUTDOWN:
    case ETIMEDOUT: throw base::Failure(base::number::kHostGone, description);
    case EINVAL: throw base::Failure(base::number::kInvalidArgument, description);
    default: throw base::Failure(base::number::kInternal, "The message bus: " + description);
  }
}

}  // namespace bus
