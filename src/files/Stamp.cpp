#include "files/Stamp.hpp"

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace files {

FileStamp StampFrom(const struct stat& info) {
  FileStamp stamp;
  // A date beyond the year 2262 comes round again; it still tells a changed file.
  constexpr std::uint64_t kNanoseconds = 1'000'000'000;
  stamp.modified = static_cast<std::int64_t>(static_cast<std::uint64_t>(info.st_mtim.tv_sec) * kNanoseconds +
                                             static_cast<std::uint64_t>(info.st_mtim.tv_nsec));
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
