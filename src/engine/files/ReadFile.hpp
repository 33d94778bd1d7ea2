#pragma once
#include <cstdint>
#include <string>

#include "engine/common/Track.hpp"

namespace engine {

struct FileText {
  std::string text;
  FileStamp stamp;  ///< of what was read
};

/// Reads a whole file of at most `most` bytes. Throws as `FailOn`, and 57 for what is larger or is no file.
FileText ReadFile(const std::string& path, std::int64_t most);

}  // namespace engine
