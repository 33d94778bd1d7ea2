#pragma once
#include <functional>
#include <string>

#include "base/Failure.hpp"

namespace files {

/// Flushes a folder to the disk: a name's coming or going lasts only then. Answers 0, or the system's error.
[[nodiscard]] int FlushFolder(const std::string& folder);

/// The same for whoever has done his work whether it lasts or not. Never fails, as by then it can't
/// be taken back; who watches is told.
void SyncFolder(const std::string& folder);

/// The same, but whoever calls is told, by a failure as files have it. One that doesn't know this is flushed.
void NeedFolderSync(const std::string& folder);

/// While it lives, it is told of each folder of this process that could not be flushed; not of one whose file
/// system doesn't know this. One at a time. It is told in whatever thread writes, which waits meanwhile, and
/// must write no file by this library itself.
class UnsyncedFolders {
 public:
  explicit UnsyncedFolders(std::function<void(const base::Failure&)> tell);
  ~UnsyncedFolders();
  UnsyncedFolders(const UnsyncedFolders&) = delete;
  UnsyncedFolders& operator=(const UnsyncedFolders&) = delete;
  UnsyncedFolders(UnsyncedFolders&&) = delete;
  UnsyncedFolders& operator=(UnsyncedFolders&&) = delete;
};

}  // namespace files
