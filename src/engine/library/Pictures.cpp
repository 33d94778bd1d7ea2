#include "engine/library/Pictures.hpp"

#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <utility>

#include "base/Failure.hpp"
#include "engine/tags/MediaFile.hpp"
#include "files/Stamp.hpp"
#include "files/WriteFile.hpp"

namespace engine {
namespace {

/// The ending that fits the picture's first bytes.
std::string Ending(const std::string& picture) {
  if (picture.rfind("\x89PNG", 0) == 0) return ".png";
  if (picture.rfind("GIF8", 0) == 0) return ".gif";
  if (picture.rfind("BM", 0) == 0) return ".bmp";
  if (picture.rfind("RIFF", 0) == 0) return ".webp";
  return ".jpg";
}

}  // namespace

Pictures::Pictures(std::string folder) : folder_(std::move(folder)) { files::ClearLeftovers(folder_); }

std::string Pictures::urlOf(const std::string& path) {
  const std::string beside = besides_.in(std::filesystem::path(path).parent_path().string());
  return beside.empty() ? insideOf(path) : "file://" + beside;
}

std::string Pictures::insideOf(const std::string& path) {
  std::string key;
  try {
    const files::FileStamp stamp = files::StampOf(path);
    key = path + '\n' + std::to_string(stamp.modified) + ' ' + std::to_string(stamp.size);
  } catch (const base::Failure&) {
    return {};
  }
  const auto [place, fresh] = known_.try_emplace(key);
  std::error_code ignored;
  if (!fresh && (place->second.empty() || std::filesystem::exists(place->second.substr(7), ignored))) {
    return place->second;
  }
  place->second.clear();
  std::string picture;
  try {
    picture = tags::ReadPicture(path);
  } catch (const base::Failure&) {
    return {};
  }
  if (picture.empty()) return {};
  std::array<char, 24> name{};
  std::snprintf(name.data(), name.size(), "%016zx", std::hash<std::string>{}(picture));
  const std::string file = folder_ + '/' + name.data() + Ending(picture);
  try {
    if (!std::filesystem::exists(file, ignored)) {
      std::filesystem::create_directories(folder_);
      files::WriteFile(file, picture);
    }
  } catch (const std::exception&) {
    return {};  // without a place for it there is no picture
  }
  place->second = "file://" + file;
  return place->second;
}

}  // namespace engine
