#include "files/FolderSync.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <utility>

#include "base/Attempt.hpp"
#include "files/Descriptor.hpp"
#include "files/FileError.hpp"

namespace files {
namespace {

struct Watch {
  std::mutex mutex;
  std::function<void(const base::Failure&)> tell;
};

Watch& TheWatch() {
  static Watch watch;
  return watch;
}

void Tell(const base::Failure& failure) {
  Watch& watch = TheWatch();
  const std::lock_guard lock(watch.mutex);
  if (watch.tell) watch.tell(failure);
}

}  // namespace

int FlushFolder(const std::string& folder) {
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return descriptor.valid() && ::fsync(descriptor.get()) == 0 ? 0 : errno;
}

void NeedFolderSync(const std::string& folder) {
  const int error = FlushFolder(folder);
  // One can be let write into a folder without being let open it.
  if (error == 0 || error == EINVAL || error == ENOTSUP || error == EACCES) return;
  throw FileFailure(error, folder, "A change might not outlast a power cut, in ");
}

void SyncFolder(const std::string& folder) {
  base::Handled([&] { NeedFolderSync(folder); }, Tell);
}

UnsyncedFolders::UnsyncedFolders(std::function<void(const base::Failure&)> tell) {
  const std::lock_guard lock(TheWatch().mutex);
  TheWatch().tell = std::move(tell);
}

UnsyncedFolders::~UnsyncedFolders() {
  const std::lock_guard lock(TheWatch().mutex);
  TheWatch().tell = nullptr;
}

}  // namespace files
