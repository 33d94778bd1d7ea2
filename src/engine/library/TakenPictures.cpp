#include "engine/library/TakenPictures.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

#include "files/WriteFile.hpp"

namespace engine {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kDigits = 16;

/// The ending that fits the picture's first bytes.
std::string Ending(const std::string& picture) {
  if (picture.rfind("\x89PNG", 0) == 0) return ".png";
  if (picture.rfind("GIF8", 0) == 0) return ".gif";
  if (picture.rfind("BM", 0) == 0) return ".bmp";
  if (picture.rfind("RIFF", 0) == 0) return ".webp";
  return ".jpg";
}

struct Entry {
  fs::file_time_type used;
  std::int64_t bytes = 0;
  fs::path path;
};

/// The pictures in the folder and nothing else.
std::vector<Entry> PicturesIn(const std::string& folder) {
  std::vector<Entry> all;
  std::error_code failed;
  for (fs::directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed)) {
    const std::string name = entry->path().stem().string();
    std::error_code gone;
    const auto used = entry->last_write_time(gone);
    const std::uintmax_t bytes = gone ? 0 : entry->file_size(gone);
    if (!gone && name.size() == kDigits && name.find_first_not_of("0123456789abcdef") == std::string::npos)
      all.push_back({used, static_cast<std::int64_t>(bytes), entry->path()});
  }
  return all;
}

}  // namespace

TakenPictures::TakenPictures(std::string folder, std::int64_t mostBytes)
    : folder_(std::move(folder)), mostBytes_(mostBytes) {
  files::ClearLeftovers(folder_);
}

bool TakenPictures::isThere(const std::string& path) {
  return ::utimensat(AT_FDCWD, path.c_str(), nullptr, 0) == 0;
}

std::string TakenPictures::keep(const std::string& picture) {
  std::array<char, 24> name{};
  std::snprintf(name.data(), name.size(), "%016zx", std::hash<std::string>{}(picture));
  std::string path = folder_ + '/' + name.data() + Ending(picture);
  if (isThere(path)) return path;
  files::MakeFolder(folder_, files::kFolderForOwner);
  files::WriteFile(path, picture, {.mode = files::kForOwner});
  if (bytes_ >= 0) bytes_ += static_cast<std::int64_t>(picture.size());
  if (bytes_ < 0 || bytes_ > mostBytes_) makeRoom(path);
  return path;
}

void TakenPictures::makeRoom(const std::string& kept) {
  std::vector<Entry> all = PicturesIn(folder_);
  bytes_ = 0;
  for (const Entry& entry : all) bytes_ += entry.bytes;
  if (bytes_ <= mostBytes_) return;
  std::sort(all.begin(), all.end(), [](const Entry& a, const Entry& b) { return a.used < b.used; });
  for (const Entry& entry : all) {
    if (bytes_ <= mostBytes_ / 4 * 3) return;  // room for some more, so that the folder is seldom read
    std::error_code failed;
    if (entry.path != kept && fs::remove(entry.path, failed)) bytes_ -= entry.bytes;
  }
}

}  // namespace engine
