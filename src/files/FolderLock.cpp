#include "files/FolderLock.hpp"

#include <fcntl.h>

#include <cerrno>

#include "files/FileError.hpp"

namespace files {
namespace {

Descriptor OpenLock(const std::string& folder, int how) {
  return Descriptor(::open((folder + "/lock").c_str(), how | O_CLOEXEC, 0600));
}

/// The whole file, for one only.
struct flock Whole() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

}  // namespace

FolderLock::FolderLock(const std::string& folder) : file_(OpenLock(folder, O_RDWR | O_CREAT)) {
  if (!file_.valid()) throw FileFailure(errno, folder, "Can't write in ");
  struct flock lock = Whole();
  // The lock belongs to the open file and not to the process, unlike that of F_SETLK.
  if (::fcntl(file_.get(), F_OFD_SETLK, &lock) != 0) {
    throw base::Failure(base::number::kPermissionDenied,
                        "The data folder " + folder + " is in use by another server");
  }
}

bool FolderLock::held(const std::string& folder) {
  const Descriptor file = OpenLock(folder, O_RDONLY);
  struct flock lock = Whole();
  return file.valid() && ::fcntl(file.get(), F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace files
