#pragma once
#include <string>
#include <vector>

namespace engine {

/// The file that a playlist's path stands for: itself, or what the link there leads to. Throws 70 for a link
/// that leads out of the folder and these others, and as `files::FailOn` for one that leads nowhere.
std::string FileBehind(const std::string& path, const std::string& folder,
                       const std::vector<std::string>& others);

}  // namespace engine
