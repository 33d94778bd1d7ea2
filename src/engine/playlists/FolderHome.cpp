#include "engine/playlists/FolderHome.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <system_error>

namespace engine {
namespace {

namespace fs = std::filesystem;

std::optional<struct stat> Status(const fs::path& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return std::nullopt;
  return info;
}

bool IsMissing(const fs::path& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

/// True for a path at which a disc of its own begins.
bool IsMounted(const fs::path& path) {
  const auto here = Status(path);
  const auto above = Status(path.parent_path());
  return here && above && here->st_dev != above->st_dev;
}

fs::path MountOf(fs::path path) {
  while (path != path.root_path() && !IsMounted(path)) path = path.parent_path();
  return path == path.root_path() ? fs::path() : path;
}

}  // namespace

void FolderHome::seen() {
  std::error_code failed;
  fs::path real = fs::canonical(folder_, failed);
  if (failed) return;
  const auto above = Status(real.parent_path());
  if (!above) return;
  mount_ = MountOf(real);
  real_ = std::move(real);
  aboveDisc_ = above->st_dev;
  aboveInode_ = above->st_ino;
}

bool FolderHome::away() const {
  if (real_.empty()) return false;
  std::error_code failed;
  if (const fs::path now = fs::canonical(folder_, failed); !failed && now != real_) return false;
  const fs::path above = real_.parent_path();
  if (IsMissing(above)) return true;
  if (!mount_.empty() && !IsMounted(mount_)) return true;
  // A folder may also be mounted from the disc that it is mounted on; then an empty one is left in its place.
  const auto info = Status(above);
  const bool another = info && (info->st_dev != aboveDisc_ || info->st_ino != aboveInode_);
  return another && IsMissing(real_) && fs::is_empty(above, failed);
}

}  // namespace engine
