#include "support/faults/FailingFiles.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <optional>
#include <string_view>

namespace support {
namespace {

enum class Does { kReads, kWrites, kFrees };

/// What fails, for all of the process's threads.
struct Disk {
  std::mutex mutex;
  bool failing = false;
  std::string folder;
  FileFault fault;
  int left = 0;        ///< operations until the first that fails
  bool again = false;  ///< the write that was cut short ends in the error when it goes on
  std::string failed{};
};

Disk& TheDisk() {
  static Disk disk;
  return disk;
}

std::string PathOf(int file) {
  std::array<char, 64> link{};
  std::array<char, 4096> path{};
  std::snprintf(link.data(), link.size(), "/proc/self/fd/%d", file);
  const long size = ::syscall(SYS_readlink, link.data(), path.data(), path.size());
  return size > 0 ? std::string(path.data(), static_cast<std::size_t>(size)) : std::string();
}

/// Whether this operation fails; `errno` says how then.
bool Fails(Does does, const char* operation, std::string_view path, bool* cut = nullptr) {
  Disk& disk = TheDisk();
  if (!path.starts_with(disk.folder)) return false;
  const bool counts =
      does == Does::kReads ? disk.fault.reading : does == Does::kWrites || disk.fault.error == EIO;
  if (!counts) return false;
  if (disk.left > 0) --disk.left;
  if (disk.left > 0) return false;
  const bool first = disk.failed.empty();
  if (!first && !disk.fault.lasting && !disk.again) return false;
  if (first) disk.failed = std::string(operation) + " " + std::string(path);
  disk.again = false;
  if (first && cut != nullptr && *cut) {
    disk.again = true;
    return true;
  }
  if (cut != nullptr) *cut = false;
  errno = disk.fault.error;
  return true;
}

bool FailsAt(Does does, const char* operation, const char* path) {
  Disk& disk = TheDisk();
  const std::lock_guard lock(disk.mutex);
  return disk.failing && Fails(does, operation, path);
}

bool FailsIn(Does does, const char* operation, int file) {
  Disk& disk = TheDisk();
  const std::lock_guard lock(disk.mutex);
  return disk.failing && Fails(does, operation, PathOf(file));
}

/// How many of the bytes are written; none, and `errno`, for a failure.
std::optional<std::size_t> Room(int file, std::size_t size) {
  Disk& disk = TheDisk();
  const std::lock_guard lock(disk.mutex);
  bool cut = size > 1;
  if (!disk.failing || !Fails(Does::kWrites, "write", PathOf(file), &cut)) return size;
  return cut ? std::optional(size / 2) : std::nullopt;
}

Does DoesOpening(int flags) {
  return (flags & O_ACCMODE) == O_RDONLY && (flags & O_CREAT) == 0 ? Does::kReads : Does::kWrites;
}

mode_t ModeOf(int flags, va_list& more) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
}

/// Whether this sync fails; `errno` says how then. A file that is still on its way to its place loses what it
/// has not got onto the disk, so that it is missed by whoever goes on all the same.
bool FailsToSync(int file) {
  if (!FailsIn(Does::kWrites, "sync", file)) return false;
  const int error = errno;
  if (PathOf(file).ends_with(".part")) ::syscall(SYS_ftruncate, file, 0);
  errno = error;
  return true;
}

int Open(int folder, const char* path, int flags, mode_t mode) {
  if (FailsAt(DoesOpening(flags), "open", path)) return -1;
  return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

}  // namespace

FailingFiles::FailingFiles(const std::string& folder, const FileFault& fault, int nth) {
  Disk& disk = TheDisk();
  const std::lock_guard lock(disk.mutex);
  disk.folder = folder;
  disk.fault = fault;
  disk.left = nth;
  disk.again = false;
  disk.failed.clear();
  disk.failing = true;
}

FailingFiles::~FailingFiles() {
  const std::lock_guard lock(TheDisk().mutex);
  TheDisk().failing = false;
}

std::string FailingFiles::failed() {
  const std::lock_guard lock(TheDisk().mutex);
  return TheDisk().failed;
}

}  // namespace support

// In the place of the C library's, whose names and kinds they have.
// NOLINTBEGIN(cert-dcl50-cpp,readability-inconsistent-declaration-parameter-name)
extern "C" {

using support::Does;

int open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = support::ModeOf(flags, more);
  va_end(more);
  return support::Open(AT_FDCWD, path, flags, mode);
}
int open64(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = support::ModeOf(flags, more);
  va_end(more);
  return support::Open(AT_FDCWD, path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = support::ModeOf(flags, more);
  va_end(more);
  return support::Open(folder, path, flags, mode);
}
int openat64(int folder, const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = support::ModeOf(flags, more);
  va_end(more);
  return support::Open(folder, path, flags, mode);
}
ssize_t write(int file, const void* bytes, size_t size) {
  const auto room = support::Room(file, size);
  return room ? ::syscall(SYS_write, file, bytes, *room) : -1;
}
ssize_t pwrite(int file, const void* bytes, size_t size, off_t place) {
  const auto room = support::Room(file, size);
  return room ? ::syscall(SYS_pwrite64, file, bytes, *room, place) : -1;
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t place) {
  return pwrite(file, bytes, size, place);
}
ssize_t read(int file, void* bytes, size_t size) {
  if (support::FailsIn(Does::kReads, "read", file)) return -1;
  return ::syscall(SYS_read, file, bytes, size);
}
ssize_t pread(int file, void* bytes, size_t size, off_t place) {
  if (support::FailsIn(Does::kReads, "read", file)) return -1;
  return ::syscall(SYS_pread64, file, bytes, size, place);
}
ssize_t pread64(int file, void* bytes, size_t size, off64_t place) { return pread(file, bytes, size, place); }
int fsync(int file) {
  if (support::FailsToSync(file)) return -1;
  return static_cast<int>(::syscall(SYS_fsync, file));
}
int fdatasync(int file) {
  if (support::FailsToSync(file)) return -1;
  return static_cast<int>(::syscall(SYS_fdatasync, file));
}
int ftruncate(int file, off_t size) noexcept {
  if (support::FailsIn(Does::kFrees, "cut", file)) return -1;
  return static_cast<int>(::syscall(SYS_ftruncate, file, size));
}
int ftruncate64(int file, off64_t size) noexcept { return ftruncate(file, size); }
int rename(const char* from, const char* to) noexcept {
  if (support::FailsAt(Does::kWrites, "rename", to)) return -1;
  return static_cast<int>(::syscall(SYS_rename, from, to));
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
  if (support::FailsAt(Does::kWrites, "rename", to)) return -1;
  return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}
int unlink(const char* path) noexcept {
  if (support::FailsAt(Does::kFrees, "remove", path)) return -1;
  return static_cast<int>(::syscall(SYS_unlink, path));
}
int mkdir(const char* path, mode_t mode) noexcept {
  if (support::FailsAt(Does::kWrites, "make", path)) return -1;
  return static_cast<int>(::syscall(SYS_mkdir, path, mode));
}

}  // extern "C"
// NOLINTEND(cert-dcl50-cpp,readability-inconsistent-declaration-parameter-name)
