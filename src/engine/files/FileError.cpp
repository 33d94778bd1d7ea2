#include "engine/files/FileError.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace engine {
namespace {

bool FolderExists(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(std::filesystem::path(path).parent_path(), ignored);
}

std::int32_t NumberOf(const std::string& path, int error) {
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

void FailOn(const std::string& path, int error) {
  throw base::Failure(NumberOf(path, error), base::RepairUtf8(path) + ": " + std::strerror(error));
}

}  // namespace engine
