#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>

namespace base {

/// The failure numbers that the logic tells apart, and the runtime's own.
namespace number {
inline constexpr std::int32_t kInvalidArgument = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kIndex = 9;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kOutOfStackSpace = 28;
inline constexpr std::int32_t kInternal = 51;
inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kDeviceIo = 57;
inline constexpr std::int32_t kDiskFull = 61;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathNotFound = 76;
inline constexpr std::int32_t kObjectMissing = 91;
inline constexpr std::int32_t kWindowNotShown = 401;   // a window can't be shown now: a modal one is open
inline constexpr std::int32_t kWindowNotShown2 = 402;  // the same, when the modal one must be closed first
inline constexpr std::int32_t kCannotCreate = 429;
inline constexpr std::int32_t kNoSuchMember = 438;
inline constexpr std::int32_t kWrongArguments = 450;
inline constexpr std::int32_t kKeyInUse = 457;           // in a plain collection
inline constexpr std::int32_t kHostGone = 462;           // the peer process or the bus has gone
inline constexpr std::int32_t kChangedMeanwhile = 3197;  // by somebody else, since it was last looked at
inline constexpr std::int32_t kElementNotFound = 35601;  // keyed lookup in a tree or list
inline constexpr std::int32_t kKeyNotUnique = 35602;     // keyed add in a tree or list
/// The player: a name is already in use (0xC00D0036 as a signed number).
inline constexpr std::int32_t kNameInUse = static_cast<std::int32_t>(0xC00D0036U);
}  // namespace number

/// A failed statement: the one kind of exception that the system throws on purpose.
class Failure : public std::runtime_error {
 public:
  /// With the number's own description.
  explicit Failure(std::int32_t failureNumber);
  /// With a description of its own; an empty one is replaced by the number's, as texts of failures are also
  /// used where an empty text means success.
  Failure(std::int32_t failureNumber, const std::string& description);

  [[nodiscard]] std::int32_t number() const { return number_; }
  [[nodiscard]] std::string description() const { return what(); }

 private:
  std::int32_t number_;
};

/// The description that belongs to a number of `base::number`, or "Application-defined error".
std::string DescriptionOf(std::int32_t failureNumber);

/// The exception now being handled as a failure: itself if it is one, otherwise number 51 with its text.
/// Only to be called inside a catch block.
Failure CurrentFailure();

}  // namespace base
