#pragma once
#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace files {

/// What tells a changed file from an unchanged one.
struct FileStamp {
  std::int64_t modified = 0;  ///< nanoseconds
  std::int64_t size = 0;
  std::uint64_t inode = 0;

  bool operator==(const FileStamp&) const = default;
};

/// The stamp of a file that has been asked about already.
FileStamp StampFrom(const struct stat& info);

/// The file's stamp. Throws number 53 when there is no such file.
FileStamp StampOf(const std::string& path);

}  // namespace files
