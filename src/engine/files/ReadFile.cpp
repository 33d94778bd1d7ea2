#include "engine/files/ReadFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/files/FileDescriptor.hpp"
#include "engine/files/FileError.hpp"
#include "engine/files/Stamp.hpp"

namespace engine {

FileText ReadFile(const std::string& path, std::int64_t most) {
  // Not to wait where a pipe or a device lies under the name.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (file.get() < 0) FailOn(path, errno);
  struct stat info {};
  if (::fstat(file.get(), &info) != 0) FailOn(path, errno);
  const auto refuse = [&](const std::string& why) {
    throw base::Failure(base::number::kDeviceIo, base::RepairUtf8(path) + why);
  };
  if (!S_ISREG(info.st_mode)) refuse(" is no file");
  const std::string tooLarge = " is larger than " + std::to_string(most >> 20) + " MiB";
  if (info.st_size > most) refuse(tooLarge);
  FileText content{{}, StampFrom(info)};
  content.text.resize(static_cast<std::size_t>(info.st_size) + 1);
  std::size_t size = 0;
  while (size < content.text.size()) {
    const ssize_t got = ::read(file.get(), content.text.data() + size, content.text.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailOn(path, errno);
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  if (static_cast<std::int64_t>(size) > most) refuse(tooLarge);  // it has grown
  content.text.resize(size);
  return content;
}

}  // namespace engine
