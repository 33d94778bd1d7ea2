#include "engine/decoder/MediaDoor.hpp"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "base/Failure.hpp"
#include "files/FileError.hpp"

namespace engine {
namespace {

constexpr const char* kMachines = "a file of the machine's own is not played";

[[noreturn]] void Refuse(const std::string& reason) {
  throw base::Failure(base::number::kInvalidArgument, reason);
}

[[noreturn]] void FailToOpen(const std::string& path, int error) {
  throw base::Failure(files::FileFailure(error, path).number(), std::generic_category().message(error));
}

const char* KindOf(mode_t mode) {
  if (S_ISDIR(mode)) return "it is a folder";
  if (S_ISFIFO(mode)) return "it is a pipe and no file";
  if (S_ISSOCK(mode)) return "it is a socket and no file";
  return "it is a device and no file";
}

bool ShowsTheMachine(int descriptor) {
  struct statfs system {};
  if (::fstatfs(descriptor, &system) != 0) return false;
  return system.f_type == PROC_SUPER_MAGIC || system.f_type == SYSFS_MAGIC;
}

}  // namespace

bool IsOfTheMachine(const std::string& path) {
  const std::string plain = std::filesystem::path(path).lexically_normal().string();
  const auto name = plain.find_first_not_of('/');
  if (name == std::string::npos) return false;
  const std::string top = plain.substr(name, plain.find('/', name) - name);
  return top == "proc" || top == "dev" || top == "sys";
}

files::Descriptor OpenMedia(const std::string& path) {
  // A handle on what is there, which reads nothing and wakes no device. It stays what it is, whatever the
  // path leads to a moment later.
  const files::Descriptor found(::open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!found.valid()) FailToOpen(path, errno);
  const std::string handle = "/proc/self/fd/" + std::to_string(found.get());
  std::error_code unknown;
  const std::string place = std::filesystem::read_symlink(handle, unknown).string();
  if (unknown || IsOfTheMachine(place) || ShowsTheMachine(found.get())) Refuse(kMachines);
  struct stat info {};
  if (::fstat(found.get(), &info) != 0) FailToOpen(path, errno);
  if (!S_ISREG(info.st_mode)) Refuse(KindOf(info.st_mode));
  files::Descriptor file(::open(handle.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.valid()) FailToOpen(path, errno);
  return file;
}

}  // namespace engine
