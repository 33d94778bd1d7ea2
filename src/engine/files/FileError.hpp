#pragma once
#include <string>

namespace engine {

/// Throws what the C library's error number means for a file that was to be read, written or removed: 70
/// where it is not allowed, 61 when the disk is full, 53 when there is no such file and 76 when there is no
/// such folder, 57 otherwise.
[[noreturn]] void FailOn(const std::string& path, int error);

}  // namespace engine
