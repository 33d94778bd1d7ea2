#include "files/WriteFile.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string_view>
#include <vector>

#include "base/Failure.hpp"
#include "files/Descriptor.hpp"
#include "files/FileError.hpp"
#include "files/FolderSync.hpp"
#include "files/Stamp.hpp"

namespace files {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBegin = ".vantorix-";
constexpr std::string_view kEnd = ".part";
constexpr std::size_t kDigits = 16;

std::string TemporaryName() {
  std::random_device random;
  std::array<char, kDigits + 1> digits{};
  std::snprintf(digits.data(), digits.size(), "%08x%08x", random(), random());
  return std::string(kBegin) + digits.data() + std::string(kEnd);
}

bool IsTemporaryName(std::string_view name) {
  return name.size() == kBegin.size() + kDigits + kEnd.size() && name.starts_with(kBegin) &&
         name.ends_with(kEnd) &&
         name.substr(kBegin.size(), kDigits).find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::string FolderOf(const std::string& path) {
  const std::string folder = fs::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

/// rename(2) that replaces nothing.
bool RenameToFree(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  struct stat info {};  // a file system that can't do both at once
  if (::lstat(to.c_str(), &info) == 0) {
    errno = EEXIST;
    return false;
  }
  return ::rename(from.c_str(), to.c_str()) == 0;
}

/// A temporary file in the folder of its final place; removed again unless it has been put there. It is
/// locked while it lives, which tells it from one that a killed process has left.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& path, mode_t mode) : path_(path) {
    replaces_ = ::stat(path.c_str(), &old_) == 0;
    constexpr int kMostTries = 100;
    for (int tries = 1; !made(replaces_ ? kForOwner : mode); ++tries) {
      if (tries == kMostTries) fail(EIO);
    }
  }
  ~TemporaryFile() {
    if (!kept_) ::unlink(name_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  TemporaryFile(TemporaryFile&&) = delete;
  TemporaryFile& operator=(TemporaryFile&&) = delete;

  FileStamp write(std::string_view content, const WriteCall& write) {
    WriteAll(file_.get(), content, path_, write);
    if (replaces_) keepOwnerAndMode();
    struct stat info {};
    if (::fsync(file_.get()) != 0 || ::fstat(file_.get(), &info) != 0) fail(errno);
    return StampFrom(info);
  }

  void replace(bool lasting) {
    if (::rename(name_.c_str(), path_.c_str()) != 0) fail(errno);
    kept_ = true;
    lasting ? NeedFolderSync(FolderOf(path_)) : SyncFolder(FolderOf(path_));
  }
  /// False if the name is taken.
  bool take() {
    kept_ = RenameToFree(name_, path_);
    if (!kept_ && errno != EEXIST) fail(errno);
    if (kept_) SyncFolder(FolderOf(path_));
    return kept_;
  }

 private:
  [[noreturn]] void fail(int error) const { throw FileFailure(error, path_, "Can't write "); }
  /// False if its name is another's, or if it was taken for a leftover before it was locked.
  bool made(mode_t mode) {
    name_ = FolderOf(path_) + '/' + TemporaryName();
    file_ = Descriptor(::open(name_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode));
    if (!file_.valid() && errno != EEXIST) fail(errno);
    if (!file_.valid()) return false;
    ::flock(file_.get(), LOCK_EX);
    struct stat info {};
    if (::fstat(file_.get(), &info) == 0) return info.st_nlink != 0;
    const int error = errno;
    ::unlink(name_.c_str());
    fail(error);
  }
  void keepOwnerAndMode() const {
    // Only the superuser can give a file away; if it can't be, it is the writer's from now on. Its group
    // stays if the writer is one of it; if not, what it was allowed is not allowed the writer's own group.
    constexpr auto kSameOwner = static_cast<uid_t>(-1);
    mode_t mode = old_.st_mode & 0777U;
    struct stat now {};
    const bool given = ::fchown(file_.get(), old_.st_uid, old_.st_gid) == 0 ||
                       ::fchown(file_.get(), kSameOwner, old_.st_gid) == 0;
    if (::fstat(file_.get(), &now) != 0) fail(errno);
    if (!given && now.st_gid != old_.st_gid) mode &= ~static_cast<mode_t>(S_IRWXG);
    // A mount that gives all of its files one mode lets only their owner set it, and there it need not be
    // set.
    if ((now.st_mode & 0777U) != mode && ::fchmod(file_.get(), mode) != 0) fail(errno);
  }

  std::string path_;
  std::string name_;
  Descriptor file_;
  struct stat old_ {};
  bool replaces_ = false;
  bool kept_ = false;
};

}  // namespace

ssize_t WriteBytes(int file, const void* bytes, std::size_t size) { return ::write(file, bytes, size); }

void WriteAll(int file, std::string_view text, const std::string& path, const WriteCall& write) {
  while (!text.empty()) {
    const ssize_t written = write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw FileFailure(errno, path, "Can't write ");
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

FileStamp WriteFile(const std::string& path, std::string_view content, const WriteHow& how) {
  std::error_code failed;
  const bool link = fs::is_symlink(path, failed);
  const std::string target = link ? fs::canonical(path, failed).string() : path;
  if (failed && link) FailOn(path, failed.value());
  TemporaryFile file(target, how.mode);
  const FileStamp stamp = file.write(content, how.write);
  file.replace(how.lasting);
  return stamp;
}

std::optional<FileStamp> WriteNewFile(const std::string& path, std::string_view content,
                                      const WriteHow& how) {
  struct stat info {};
  if (::lstat(path.c_str(), &info) == 0) return std::nullopt;
  TemporaryFile file(path, how.mode);
  const FileStamp stamp = file.write(content, how.write);
  return file.take() ? std::optional<FileStamp>(stamp) : std::nullopt;
}

bool MoveFile(const std::string& from, const std::string& to) {
  if (!RenameToFree(from, to)) return false;
  SyncFolder(FolderOf(to));
  return true;
}

void MakeFolder(const std::string& folder, mode_t mode) {
  std::error_code failed;
  std::vector<std::string> missing;
  for (fs::path made = folder; !made.empty() && !fs::exists(made, failed); made = made.parent_path()) {
    missing.push_back(made.string());
    if (made == made.parent_path()) break;
  }
  std::reverse(missing.begin(), missing.end());  // the outermost first
  for (const std::string& made : missing) {
    if (::mkdir(made.c_str(), mode) != 0 && errno != EEXIST)
      throw FileFailure(errno, folder, "Can't make the folder ");
  }
  if (!fs::is_directory(folder, failed)) throw FileFailure(ENOTDIR, folder, "Can't make the folder ");
  for (const std::string& made : missing) SyncFolder(FolderOf(made));
}

void RemoveFile(const std::string& path) {
  if (::unlink(path.c_str()) == 0) return SyncFolder(FolderOf(path));
  if (errno != ENOENT) FailOn(path, errno);
}

void ClearLeftovers(const std::string& folder) {
  std::error_code ignored;
  for (fs::directory_iterator entry(folder, ignored), end; entry != end; entry.increment(ignored)) {
    if (!IsTemporaryName(entry->path().filename().string())) continue;
    const Descriptor file(::open(entry->path().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat info {};
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) continue;
    if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) ::unlink(entry->path().c_str());
  }
}

}  // namespace files
