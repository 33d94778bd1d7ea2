#include "engine/library/Pictures.hpp"

#include <exception>
#include <filesystem>
#include <utility>

#include "base/Failure.hpp"
#include "engine/library/Attributes.hpp"
#include "engine/tags/MediaFile.hpp"
#include "files/ReadFile.hpp"
#include "files/Stamp.hpp"

namespace engine {
namespace {

constexpr std::int64_t kMostBytes = std::int64_t{16} << 20U;
constexpr std::size_t kMostKnown = 10000;

}  // namespace

Pictures::Pictures(std::string folder, std::string chosen)
    : chosen_(std::move(chosen)), taken_(std::move(folder)) {}

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
  if (known_.size() >= kMostKnown) known_.clear();
  if (const auto known = known_.find(key); known != known_.end()) {
    if (known->second.empty()) return {};
    if (TakenPictures::isThere(known->second)) return "file://" + known->second;
  }
  try {
    const std::string picture = tags::ReadPicture(path);
    std::string& taken = known_[key];
    taken.clear();
    if (!picture.empty()) taken = taken_.keep(picture);
    return taken.empty() ? taken : "file://" + taken;
  } catch (const std::exception&) {
    known_.erase(key);
    return {};  // what can't be read, or has no place to be kept, may be and have one next time
  }
}

}  // namespace engine
