#include "pictures/CoverDesk.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/Attempt.hpp"
#include "files/Descriptor.hpp"
#include "files/FileError.hpp"
#include "files/ReadFile.hpp"
#include "files/WriteFile.hpp"
#include "pictures/Picture.hpp"
#include "platform/PosixPlatform.hpp"

namespace pictures {

using base::Failure;
using platform::NativePath;

namespace {

constexpr std::int32_t kInvalidPicture = 481;
constexpr std::int32_t kPathAccess = 75;

std::string BytesOf(const std::string& path) {
  return files::ReadFile(path, static_cast<std::int64_t>(kMostBytes)).text;
}

}  // namespace

void CoverDesk::remove(const std::string& path) {
  const std::string native = NativePath(path);
  if (::unlink(native.c_str()) != 0) files::FailOn(native, errno);
}

void CoverDesk::makeFolder(const std::string& path) {
  const std::string native = NativePath(path);
  struct stat info {};
  if (::stat(native.c_str(), &info) == 0) throw Failure(kPathAccess);
  files::MakeFolder(native, files::kFolderForOwner);
}

void CoverDesk::copy(const std::string& from, const std::string& to) {
  files::WriteFile(NativePath(to), BytesOf(NativePath(from)), {files::kForOwner});
}

void CoverDesk::overwrite(const std::string& path, const std::string& bytes) {
  const std::string native = NativePath(path);
  const files::Descriptor file(::open(native.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, files::kForOwner));
  if (!file.valid()) files::FailOn(native, errno);
  files::WriteAll(file.get(), bytes, native);
}

void CoverDesk::download(const std::string& url, const std::string& path) {
  constexpr std::string_view kFile = "file://";
  if (url.rfind(kFile, 0) != 0) return;
  base::Attempt step;
  step([&] { files::WriteFile(NativePath(path), BytesOf(url.substr(kFile.size())), {files::kForOwner}); });
}

cover::Picture CoverDesk::load(const std::string& path) {
  cover::Picture picture{BytesOf(NativePath(path))};
  if (picture.bytes == good_) return picture;  // one picture often serves as both sizes
  if (!canBeShown_(picture.bytes)) throw Failure(kInvalidPicture, "Invalid picture");
  good_ = picture.bytes;
  return picture;
}

}  // namespace pictures
