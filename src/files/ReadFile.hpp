#pragma once
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "files/Stamp.hpp"

namespace files {

struct FileText {
  std::string text;
  FileStamp stamp;  ///< of what was read
};

constexpr std::int64_t kAnySize = std::numeric_limits<std::int64_t>::max();

/// Reads a whole file of at most `most` bytes. Throws as `FailOn`, and 57 for what is larger or is no file.
FileText ReadFile(const std::string& path, std::int64_t most = kAnySize);

/// The same text, or nothing when there is no such file.
std::optional<std::string> TextOf(const std::string& path, std::int64_t most = kAnySize);

}  // namespace files
