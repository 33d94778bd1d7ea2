#include "files/FolderLock.hpp"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

#include "files/FileError.hpp"

namespace files {

FolderLock::FolderLock(const std::string& folder)
    : file_(::open((folder + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
  if (!file_.valid()) throw FileFailure(errno, folder, "Can't write in ");
  if (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
    throw base::Failure(base::number::kPermissionDenied,
                        "The data folder " + folder + " is in use by another server");
  }
}

}  // namespace files
