#include "files/ReadFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "files/Descriptor.hpp"
#include "files/FileError.hpp"

namespace files {
namespace {

// Not to wait where a pipe or a device lies under the name.
Descriptor Open(const std::string& path) {
  return Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

FileText ReadAll(const Descriptor& file, const std::string& path, std::int64_t most) {
  struct stat info {};
  if (::fstat(file.get(), &info) != 0) FailOn(path, errno);
  const auto refuse = [&](const std::string& why) {
    throw base::Failure(base::number::kDeviceIo, base::RepairUtf8(path) + why);
  };
  const std::string tooLarge = " is larger than " + std::to_string(most >> 20) + " MiB";
  if (!S_ISREG(info.st_mode)) refuse(" is no file");
  if (info.st_size > most) refuse(tooLarge);
  FileText content{{}, StampFrom(info)};
  content.text.resize(static_cast<std::size_t>(info.st_size) + 1);
  std::size_t size = 0;
  while (static_cast<std::int64_t>(size) <= most) {
    if (size == content.text.size()) content.text.resize(2 * size);  // it has grown
    const ssize_t got = ::read(file.get(), content.text.data() + size, content.text.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailOn(path, errno);
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  if (static_cast<std::int64_t>(size) > most) refuse(tooLarge);
  content.text.resize(size);
  return content;
}

}  // namespace

FileText ReadFile(const std::string& path, std::int64_t most) {
  const Descriptor file = Open(path);
  if (!file.valid()) FailOn(path, errno);
  return ReadAll(file, path, most);
}

std::optional<std::string> TextOf(const std::string& path, std::int64_t most) {
  const Descriptor file = Open(path);
  if (!file.valid() && errno == ENOENT) return std::nullopt;
  if (!file.valid()) throw FileFailure(errno, path, "Can't read ");
  return ReadAll(file, path, most).text;
}

}  // namespace files
