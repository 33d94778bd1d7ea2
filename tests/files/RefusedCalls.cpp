#include "files/RefusedCalls.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace files::testing {

RefusedCalls& Refused() {
  static RefusedCalls refused;
  return refused;
}

/// Linked in the place of the C library's, as the next.
extern "C" int fchmod(int file, mode_t mode) noexcept {
  if (Refused().modes) {
    errno = EPERM;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_fchmod, file, mode));
}

extern "C" int fstat(int file, struct stat* info) noexcept {
  if (Refused().looking) {
    errno = ESTALE;
    return -1;
  }
  return ::fstatat(file, "", info, AT_EMPTY_PATH);
}

}  // namespace files::testing
