#pragma once
#include <filesystem>

namespace files {

/// Whether a path without links is the folder's, or of one below it, wherever links lead to that folder.
/// False where there is no such folder.
bool LiesIn(const std::filesystem::path& real, const std::filesystem::path& folder);

}  // namespace files
