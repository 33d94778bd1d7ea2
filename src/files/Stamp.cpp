#include "files/Stamp.hpp"

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace files {

FileStamp StampFrom(const struct stat& info) {
  FileStamp stamp;
  stamp.modified = static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
  stamp.size = info.st_size;
  stamp.inode = info.st_ino;
  return stamp;
}

FileStamp StampOf(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    throw base::Failure(base::number::kFileNotFound, base::RepairUtf8(path) + " does not exist");
  }
  return StampFrom(info);
}

}  // namespace files
