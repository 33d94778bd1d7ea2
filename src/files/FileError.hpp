#pragma once
#include <string>

#include "base/Failure.hpp"

namespace files {

/// What the C library's error number means for a file that was to be read, written or removed: 70 where it is
/// not allowed, 61 when the disk is full, 53 when there is no such file and 76 when there is no such folder,
/// 57 otherwise. The text names the file behind what was tried ("Can't write ", or nothing).
base::Failure FileFailure(int error, const std::string& path, const std::string& tried = "");

/// Throws it.
[[noreturn]] void FailOn(const std::string& path, int error);

}  // namespace files
