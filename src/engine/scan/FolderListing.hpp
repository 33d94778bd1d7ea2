#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "engine/common/Track.hpp"

namespace engine {

/// What tells one folder from another, whatever path leads to it: device and inode.
using FolderIdentity = std::pair<std::uint64_t, std::uint64_t>;

struct ListedFile {
  std::string path;
  files::FileStamp stamp;
};

struct ListedFolder {
  std::string path;
  FolderIdentity identity;
};

/// A folder's files and folders by path. Hidden entries are left out, links are followed.
struct FolderListing {
  FolderIdentity identity;
  std::vector<ListedFile> files;  ///< those that are media by their names
  std::vector<ListedFolder> folders;
  std::vector<std::string> unreachable;  ///< entries that are there, but what they are can't be told
};

/// Throws number 76 when the folder does not exist, 70 when it can't be reached.
FolderIdentity IdentityOf(const std::string& folder);

/// Throws as `IdentityOf`.
FolderListing ListFolder(const std::string& path);

}  // namespace engine
