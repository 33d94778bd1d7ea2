#include "engine/playlists/PlaylistLink.hpp"

#include <algorithm>
#include <filesystem>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "files/FileError.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

bool LiesIn(const fs::path& target, const std::string& folder) {
  std::error_code failed;
  const fs::path home = fs::canonical(folder, failed);
  if (failed) return false;
  return std::mismatch(home.begin(), home.end(), target.begin(), target.end()).first == home.end();
}

}  // namespace

std::string FileBehind(const std::string& path, const std::string& folder,
                       const std::vector<std::string>& others) {
  std::error_code failed;
  if (!fs::is_symlink(path, failed)) return path;
  const fs::path target = fs::canonical(path, failed);
  if (failed) files::FailOn(path, failed.value());
  const bool inside =
      LiesIn(target, folder) || std::any_of(others.begin(), others.end(),
                                            [&](const std::string& other) { return LiesIn(target, other); });
  if (!inside) {
    throw base::Failure(
        base::number::kPermissionDenied,
        base::RepairUtf8(path) + " is a link that leads out of the folders of playlists and music");
  }
  return target.string();
}

}  // namespace engine
