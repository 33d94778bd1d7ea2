#include "standin/storage/FileTools.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace standin {

namespace number = base::number;

Descriptor::~Descriptor() { close(); }

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    close();
    number_ = std::exchange(other.number_, -1);
  }
  return *this;
}

void Descriptor::close() {
  if (number_ >= 0) ::close(std::exchange(number_, -1));
}

base::Failure FileFailure(int error, const std::string& what) {
  const std::string text = what + ": " + std::generic_category().message(error);
  switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return {number::kDiskFull, text};
    case EACCES:
    case EPERM:
    case EROFS: return {number::kPermissionDenied, text};
    case ENOENT: return {number::kFileNotFound, text};
    case ENOTDIR: return {number::kPathNotFound, text};
    default: return {number::kDeviceIo, text};
  }
}

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.valid()) {
    if (errno == ENOENT) return std::nullopt;
    throw FileFailure(errno, "Can't read " + path.string());
  }
  std::string content;
  std::array<char, 65536> part{};
  for (;;) {
    const ssize_t got = ::read(file.get(), part.data(), part.size());
    if (got < 0) {
      if (errno == EINTR) continue;
      throw FileFailure(errno, "Can't read " + path.string());
    }
    if (got == 0) return content;
    content.append(part.data(), static_cast<std::size_t>(got));
  }
}

void WriteAll(int descriptor, std::string_view content, const std::string& what) {
  while (!content.empty()) {
    const ssize_t put = ::write(descriptor, content.data(), content.size());
    if (put < 0) {
      if (errno == EINTR) continue;
      throw FileFailure(errno, "Can't write " + what);
    }
    content.remove_prefix(static_cast<std::size_t>(put));
  }
}

void ReplaceFile(const std::filesystem::path& path, std::string_view content) {
  const std::filesystem::path beside = path.string() + ".new";
  try {
    Descriptor file(::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file.valid()) throw FileFailure(errno, "Can't write " + beside.string());
    WriteAll(file.get(), content, beside.string());
    if (::fsync(file.get()) != 0) throw FileFailure(errno, "Can't write " + beside.string());
    file.close();
    if (::rename(beside.c_str(), path.c_str()) != 0) {
      throw FileFailure(errno, "Can't replace " + path.string());
    }
  } catch (...) {
    ::unlink(beside.c_str());
    throw;
  }
  const Descriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.valid()) ::fsync(folder.get());
}

void MakeFolder(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw FileFailure(error.value(), "Can't make the folder " + path.string());
}

FolderLock::FolderLock(const std::filesystem::path& folder)
    : file_(::open((folder / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
  if (!file_.valid()) throw FileFailure(errno, "Can't write in " + folder.string());
  if (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
    throw base::Failure(number::kPermissionDenied,
                        "The data folder " + folder.string() + " is in use by another server");
  }
}

}  // namespace standin
