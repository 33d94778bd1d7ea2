#include "engine/library/Pictures.hpp"

#include <array>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <utility>

#include "base/Failure.hpp"
#include "engine/library/Attributes.hpp"
#include "engine/tags/MediaFile.hpp"
#include "files/ReadFile.hpp"
#include "files/Stamp.hpp"
#include "files/WriteFile.hpp"

namespace engine {
namespace {

constexpr std::int64_t kMostBytes = std::int64_t{16} << 20U;

/// The ending that fits the picture's first bytes.
std::string Ending(const std::string& picture) {
  if (picture.rfind("\x89PNG", 0) == 0) return ".png";
  if (picture.rfind("GIF8", 0) == 0) return ".gif";
  if (picture.rfind("BM", 0) == 0) return ".bmp";
  if (picture.rfind("RIFF", 0) == 0) return ".webp";
  return ".jpg";
}

}  // namespace

Pictures::Pictures(std::string folder, std::string chosen)
    : chosen_(std::move(chosen)), folder_(std::move(folder)) {
  files::ClearLeftovers(folder_);
}

Pictures::Place Pictures::placeOf(const Sought& sought) {
  if (std::string chosen = chosen_.of(sought.artist, sought.album); !chosen.empty())
    return {std::move(chosen)};
  if (sought.path.empty()) return {};
  std::string beside = besides_.in(std::filesystem::path(sought.path).parent_path().string());
  if (!beside.empty()) return {std::move(beside)};
  return {sought.path, true};
}

std::string Pictures::urlOf(const Sought& sought) {
  const Place place = placeOf(sought);
  if (place.path.empty()) return {};
  return place.inside ? insideOf(place.path) : "file://" + place.path;
}

std::string Pictures::markOf(const Sought& sought) {
  const Place place = placeOf(sought);
  if (place.path.empty() || (place.inside && tags::KindByName(place.path) == MediaKind::kNone)) return {};
  try {
    const files::FileStamp stamp = files::StampOf(place.path);
    return (place.inside ? "i" : "f") +
           HashText(place.path + '\n' + std::to_string(stamp.modified) + ' ' + std::to_string(stamp.size) +
                    ' ' + std::to_string(stamp.inode));
  } catch (const base::Failure&) {
    return {};
  }
}

std::string Pictures::bytesOf(const Sought& sought) {
  const Place place = placeOf(sought);
  if (place.path.empty()) return {};
  if (!place.inside) return files::ReadFile(place.path, kMostBytes).text;
  if (tags::KindByName(place.path) == MediaKind::kNone) return {};
  return tags::ReadPicture(place.path);
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
