#pragma once
#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

#include "engine/common/Track.hpp"

namespace engine {

/// How bytes go to an open file: as write(2) does.
using WriteCall = std::function<ssize_t(int, const void*, std::size_t)>;
/// write(2) itself.
ssize_t WriteBytes(int file, const void* bytes, std::size_t size);

/// Writes a whole file or nothing: a temporary file beside it, flushed to the disk, then renamed. A file that
/// is replaced keeps its mode, and its group where it can; a link goes on leading to what it leads to.
/// Answers the new file's stamp. Throws 70 where writing is not allowed, 61 when the disk is full, 76 without
/// the folder, 57 otherwise.
FileStamp WriteFile(const std::string& path, const std::string& content, const WriteCall& write = WriteBytes);

/// The same for a file that is not there yet; nothing is written, and none answered, if the name is taken.
std::optional<FileStamp> WriteNewFile(const std::string& path, const std::string& content,
                                      const WriteCall& write = WriteBytes);

/// Renames a file unless the new name is taken. True when it was done; then it is on the disk.
bool MoveFile(const std::string& from, const std::string& to);

/// Makes a folder, and those it lies in, unless they are there; then they are on the disk. Throws as
/// `FailOn`.
void MakeFolder(const std::string& folder);

/// Removes a file, which may have gone already. Throws as `FailOn`.
void RemoveFile(const std::string& path);

/// Removes the temporary files that a killed process has left in a folder. One that is being written, by
/// whatever process, is let be.
void ClearLeftovers(const std::string& folder);

}  // namespace engine
