#include "engine/scan/FolderListing.hpp"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "engine/scan/TagReader.hpp"
#include "engine/tags/MediaFile.hpp"
#include "files/FileError.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

struct DirectoryCloser {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

/// What is missing is a folder.
[[noreturn]] void Fail(const std::string& path, int error) { files::FailOn(path + '/', error); }

}  // namespace

FolderIdentity IdentityOf(const std::string& folder) {
  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0) Fail(folder, errno);
  if (!S_ISDIR(info.st_mode)) Fail(folder, ENOTDIR);
  return {info.st_dev, info.st_ino};
}

FolderListing ListFolder(const std::string& path) {
  const std::unique_ptr<DIR, DirectoryCloser> directory(::opendir(path.c_str()));
  if (!directory) Fail(path, errno);
  const int descriptor = ::dirfd(directory.get());
  FolderListing listing;
  struct stat info {};
  if (::fstat(descriptor, &info) != 0) Fail(path, errno);
  listing.identity = {info.st_dev, info.st_ino};

  while (true) {
    errno = 0;
    const dirent* entry = ::readdir(directory.get());
    if (entry == nullptr) {
      if (errno != 0) Fail(path, errno);
      break;
    }
    if (entry->d_name[0] == '.') continue;
    const bool mayBeFolder = entry->d_type != DT_REG;
    const bool media = tags::KindByName(entry->d_name) != MediaKind::kNone;
    if (!media && !mayBeFolder) continue;
    std::string full = path + '/' + entry->d_name;
    if (::fstatat(descriptor, entry->d_name, &info, 0) != 0) {
      const bool nowhere = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;  // gone, or a dead link
      if (!nowhere) listing.unreachable.push_back(std::move(full));
      continue;
    }
    if (S_ISDIR(info.st_mode)) {
      listing.folders.push_back({std::move(full), {info.st_dev, info.st_ino}});
    } else if (media && S_ISREG(info.st_mode)) {
      listing.files.push_back({std::move(full), files::StampFrom(info)});
    }
  }
  const auto byPath = [](const auto& left, const auto& right) { return left.path < right.path; };
  std::sort(listing.files.begin(), listing.files.end(), byPath);
  std::sort(listing.folders.begin(), listing.folders.end(), byPath);
  return listing;
}

}  // namespace engine
