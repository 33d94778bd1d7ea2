#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/Failure.hpp"

namespace standin {

/// A POSIX file descriptor that is closed with its owner.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;

  [[nodiscard]] int get() const { return number_; }
  [[nodiscard]] bool valid() const { return number_ >= 0; }
  void close();

 private:
  int number_ = -1;
};

/// The failure of a system call as the number that belongs to it: 61 for a full disk, 70 for missing
/// rights, 53 for a missing file, 57 otherwise.
base::Failure FileFailure(int error, const std::string& what);

/// The whole file, or nothing when there is none. Throws when it exists and can't be read.
std::optional<std::string> ReadFile(const std::filesystem::path& path);

/// Replaces the file as a whole, or leaves the old one as it is and throws: written beside it, brought to
/// the disk, renamed over it.
void ReplaceFile(const std::filesystem::path& path, std::string_view content);

/// Writes everything or throws.
void WriteAll(int descriptor, std::string_view content, const std::string& what);

/// Makes the folder and those above it.
void MakeFolder(const std::filesystem::path& path);

/// One process at a time in a folder. Throws number 70 when another one is in there.
class FolderLock {
 public:
  explicit FolderLock(const std::filesystem::path& folder);

 private:
  Descriptor file_;
};

}  // namespace standin
