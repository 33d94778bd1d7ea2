#include "engine/WriteFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace engine {
namespace {

[[noreturn]] void Fail(const std::string& path, int error) {
  std::int32_t number = base::number::kDeviceIo;
  if (error == EACCES || error == EPERM || error == EROFS) number = base::number::kPermissionDenied;
  if (error == ENOSPC || error == EDQUOT) number = base::number::kDiskFull;
  if (error == ENOENT || error == ENOTDIR) number = base::number::kPathNotFound;
  throw base::Failure(number, base::RepairUtf8(path) + " can't be written: " + std::strerror(error));
}

/// A temporary file beside its final place; removed again unless it has been put there.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& path) : path_(path), name_(path + ".XXXXXX") {
    file_ = ::mkostemp(name_.data(), O_CLOEXEC);
    if (file_ < 0) Fail(path_, errno);
  }
  ~TemporaryFile() {
    if (file_ >= 0) ::close(file_);
    if (!kept_) ::unlink(name_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  TemporaryFile(TemporaryFile&&) = delete;
  TemporaryFile& operator=(TemporaryFile&&) = delete;

  void write(std::string_view content) {
    while (!content.empty()) {
      const ssize_t written = ::write(file_, content.data(), content.size());
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) Fail(path_, errno);
      content.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void putInPlace() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    if (::fchmod(file_, 0666 & ~mask) != 0 || ::fsync(file_) != 0) Fail(path_, errno);
    if (::rename(name_.c_str(), path_.c_str()) != 0) Fail(path_, errno);
    kept_ = true;
  }

 private:
  std::string path_;
  std::string name_;
  int file_ = -1;
  bool kept_ = false;
};

}  // namespace

void WriteFile(const std::string& path, const std::string& content) {
  TemporaryFile file(path);
  file.write(content);
  file.putInPlace();
}

}  // namespace engine
