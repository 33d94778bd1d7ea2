#pragma once
#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "files/Stamp.hpp"

namespace files {

/// How bytes go to an open file: as write(2) does.
using WriteCall = std::function<ssize_t(int, const void*, std::size_t)>;
/// write(2) itself.
ssize_t WriteBytes(int file, const void* bytes, std::size_t size);

/// What a new file may be: the process's mask applies to the first.
constexpr mode_t kForAll = 0666;
constexpr mode_t kForOwner = 0600;
constexpr mode_t kFolderForAll = 0777;
constexpr mode_t kFolderForOwner = 0700;

struct WriteHow {
  mode_t mode = kForAll;  ///< of a file that is not there yet
  WriteCall write = WriteBytes;
  /// Fails where the folder can't be flushed: then the file stands, but might not outlast a power cut.
  bool lasting = false;
};

/// Writes all of the text to an open file, or throws as `FailOn`.
void WriteAll(int file, std::string_view text, const std::string& path, const WriteCall& write = WriteBytes);

/// Writes a whole file or nothing: a temporary file beside it, flushed to the disk, then renamed. A file that
/// is replaced keeps its mode, and its group where it can; a link goes on leading to what it leads to.
/// Answers the new file's stamp. Throws 70 where writing is not allowed, 61 when the disk is full, 76 without
/// the folder, 57 otherwise.
FileStamp WriteFile(const std::string& path, std::string_view content, const WriteHow& how = {});

/// The same for a file that is not there yet; nothing is written, and none answered, if the name is taken.
std::optional<FileStamp> WriteNewFile(const std::string& path, std::string_view content,
                                      const WriteHow& how = {});

/// Renames a file unless the new name is taken. True when it was done; then it is on the disk.
bool MoveFile(const std::string& from, const std::string& to);

/// Makes a folder, and those it lies in, unless they are there; then they are on the disk. Throws as
/// `FailOn`.
void MakeFolder(const std::string& folder, mode_t mode = kFolderForAll);

/// Removes a file, which may have gone already. Throws as `FailOn`.
void RemoveFile(const std::string& path);

/// Removes the temporary files that a killed process has left in a folder. One that is being written, by
/// whatever process, is let be.
void ClearLeftovers(const std::string& folder);

}  // namespace files
