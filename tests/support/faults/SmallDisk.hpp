#pragma once
#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

namespace support {

/// Mounts a disk of that many bytes in memory over a folder, for this process and its children only; for a
/// process of its own (`InChild`), before it has started threads. False where mounting is not allowed.
inline bool MountSmallDisk(const std::string& folder, std::size_t bytes) {
  const uid_t user = ::geteuid();
  const gid_t group = ::getegid();
  if (user == 0) {
    if (::unshare(CLONE_NEWNS) != 0) return false;
  } else {
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
  }
  if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
  const std::string size = "size=" + std::to_string(bytes);
  return ::mount("tmpfs", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

/// Writes a file until the disk has no room for another byte.
inline void FillUp(const std::string& path) {
  const int file = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  const std::vector<char> piece(4096);
  for (std::size_t size = piece.size(); size > 0;) {
    if (::write(file, piece.data(), size) <= 0) size /= 2;
  }
  ::close(file);
}

/// Gives up the superuser's rights, to whom nothing is read-only; for a process of its own.
inline void BecomeNobody() {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() != 0) return;
  if (::setgroups(0, nullptr) != 0 || ::setresgid(kNobody, kNobody, kNobody) != 0 ||
      ::setresuid(kNobody, kNobody, kNobody) != 0)
    ::_exit(9);
}

}  // namespace support
