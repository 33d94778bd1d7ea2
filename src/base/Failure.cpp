#include "base/Failure.hpp"

#include <exception>

namespace base {

Failure::Failure(std::int32_t failureNumber) : Failure(failureNumber, DescriptionOf(failureNumber)) {}

Failure::Failure(std::int32_t failureNumber, const std::string& description)
    : std::runtime_error(description.empty() ? DescriptionOf(failureNumber) : description),
      number_(failureNumber) {}

std::string DescriptionOf(std::int32_t failureNumber) {
  switch (failureNumber) {
    case number::kInvalidArgument: return "Invalid argument";
    case number::kOverflow: return "Overflow";
    case number::kIndex: return "Index out of range";
    case number::kTypeMismatch: return "Type mismatch";
    case number::kOutOfStackSpace: return "Out of stack space";
    case number::kInternal: return "Internal error";
    case number::kFileNotFound: return "File not found";
    case number::kDeviceIo: return "Input or output failed";
    case number::kDiskFull: return "Disk full";
    case number::kPermissionDenied: return "Permission denied";
    case number::kPathNotFound: return "Path not found";
    case number::kObjectMissing: return "Object missing";
    case number::kWindowNotShown: return "Can't show a window while a modal window is open";
    case number::kWindowNotShown2: return "The topmost modal window must be closed first";
    case number::kCannotCreate: return "The object can't be created";
    case number::kNoSuchMember: return "The object has no such member";
    case number::kWrongArguments: return "Wrong number of arguments";
    case number::kKeyInUse: return "The key is already in use";
    case number::kHostGone: return "The remote side does not exist or is unavailable";
    case number::kChangedMeanwhile: return "Somebody else has changed it meanwhile";
    case number::kElementNotFound: return "Element not found";
    case number::kKeyNotUnique: return "Key is not unique";
    case number::kNameInUse: return "The name is already in use";
    default: return "Application-defined error";
  }
}

Failure CurrentFailure() {
  try {
    throw;
  } catch (const Failure& failure) {
    return failure;
  } catch (const std::exception& other) {
    return {number::kInternal, other.what()};
  } catch (...) {
    return Failure(number::kInternal);
  }
}

}  // namespace base
