#include "files/SyncSpy.hpp"

#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <mutex>
#include <utility>

namespace files::testing {
namespace {

struct Notes {
  std::mutex mutex;
  bool looking = false;
  std::vector<std::string> paths;
};

Notes& TheNotes() {
  static Notes notes;
  return notes;
}

}  // namespace

SyncSpy::SyncSpy() {
  const std::lock_guard lock(TheNotes().mutex);
  TheNotes().looking = true;
  TheNotes().paths.clear();
}

SyncSpy::~SyncSpy() {
  const std::lock_guard lock(TheNotes().mutex);
  TheNotes().looking = false;
}

std::vector<std::string> SyncSpy::take() {
  const std::lock_guard lock(TheNotes().mutex);
  return std::exchange(TheNotes().paths, {});
}

/// Does what the C library's does, in whose place it is linked.
extern "C" int fsync(int file) {
  {
    const std::lock_guard lock(TheNotes().mutex);
    std::error_code ignored;
    if (TheNotes().looking) {
      TheNotes().paths.push_back(
          std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), ignored).string());
    }
  }
  return static_cast<int>(::syscall(SYS_fsync, file));
}

}  // namespace files::testing
