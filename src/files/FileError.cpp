#include "files/FileError.hpp"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "base/Text.hpp"

namespace files {
namespace {

bool FolderExists(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  std::error_code ignored;
  return folder.empty() || std::filesystem::is_directory(folder, ignored);
}

std::int32_t NumberOf(int error, const std::string& path) {
  switch (error) {
    case EACCES:
    case EPERM:
    case EROFS: return base::number::kPermissionDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return base::number::kDiskFull;
    case ENOTDIR: return base::number::kPathNotFound;
    case ENOENT: return FolderExists(path) ? base::number::kFileNotFound : base::number::kPathNotFound;
    default: return base::number::kDeviceIo;
  }
}

}  // namespace

base::Failure FileFailure(int error, const std::string& path, const std::string& tried) {
  return {NumberOf(error, path),
          tried + base::RepairUtf8(path) + ": " + std::generic_category().message(error)};
}

void FailOn(const std::string& path, int error) { throw FileFailure(error, path); }

}  // namespace files
