#pragma once
#include <string>

namespace engine {

/// Writes a whole file or nothing: a temporary file beside it, flushed to the disk, then renamed. Throws 70
/// where writing is not allowed, 61 when the disk is full, 76 without the folder, 57 otherwise.
void WriteFile(const std::string& path, const std::string& content);

}  // namespace engine
