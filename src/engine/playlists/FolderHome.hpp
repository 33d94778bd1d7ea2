#pragma once
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <utility>

namespace engine {

/// Where a folder was when it was seen last, which tells one that was removed from one that is away with the
/// disc that it lies on.
class FolderHome {
 public:
  explicit FolderHome(std::string folder) : folder_(std::move(folder)) {}

  /// The folder has been seen. Does nothing when it can't be told where it lies.
  void seen();
  /// The folder was seen, and since then its disc was unmounted, or the folder that it lies in has gone. What
  /// lies at its path meanwhile is not the folder that was seen.
  [[nodiscard]] bool away() const;

 private:
  std::string folder_;
  std::filesystem::path real_;   ///< without links; empty until it is seen
  std::filesystem::path mount_;  ///< where its disc is mounted; empty for the root's
  dev_t aboveDisc_ = 0;          ///< of the folder that it lies in, as the next
  ino_t aboveInode_ = 0;
};

}  // namespace engine
