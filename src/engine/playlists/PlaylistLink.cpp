#include "engine/playlists/PlaylistLink.hpp"

#include <algorithm>
#include <filesystem>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "files/FileError.hpp"
#include "files/LiesIn.hpp"

namespace engine {

namespace fs = std::filesystem;

std::string FileBehind(const std::string& path, const std::string& folder,
                       const std::vector<std::string>& others) {
  std::error_code failed;
  if (!fs::is_symlink(path, failed)) return path;
  const fs::path target = fs::canonical(path, failed);
  if (failed) files::FailOn(path, failed.value());
  const bool inside = files::LiesIn(target, folder) ||
                      std::any_of(others.begin(), others.end(),
                                  [&](const std::string& other) { return files::LiesIn(target, other); });
  if (!inside) {
    throw base::Failure(
        base::number::kPermissionDenied,
        base::RepairUtf8(path) + " is a link that leads out of the folders of playlists and music");
  }
  return target.string();
}

}  // namespace engine
