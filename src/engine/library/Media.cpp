#include "engine/library/Media.hpp"

#include <algorithm>
#include <filesystem>

#include "base/Text.hpp"
#include "engine/tags/TextForms.hpp"

namespace engine {
namespace {

constexpr std::size_t kLongestStreamTitle = 1024;

bool AsksForPicture(const std::string& attribute, std::int32_t index) {
  return index == 0 && base::SameText(attribute, "WM/Picture");
}

/// The file that the media lies in or belongs to: of a disc's image its table of contents. Empty for what has
/// no folder.
std::string FileOf(const std::string& location) {
  constexpr std::string_view kDisc = "cdda://";
  if (location.rfind(kDisc, 0) == 0) return location.substr(kDisc.size(), location.rfind('#') - kDisc.size());
  return IsAddress(location) ? std::string() : location;
}

}  // namespace

Pictures::Sought EngineMedia::sought() const {
  return {FileOf(location()), getItemInfo("WM/AlbumArtist"), getItemInfo("Album")};
}

player::Picture EngineMedia::getItemInfoByType(const std::string& attribute, const std::string& /*language*/,
                                               std::int32_t index) const {
  if (pictures() == nullptr || !AsksForPicture(attribute, index)) return {};
  return {pictures()->urlOf(sought())};
}

std::string EngineMedia::pictureMark() const {
  return pictures() == nullptr ? std::string() : pictures()->markOf(sought());
}

std::string EngineMedia::pictureBytes() const {
  return pictures() == nullptr ? std::string() : pictures()->bytesOf(sought());
}

std::string TrackMedia::name() const { return std::string(shelf_->table.text(shelf_->table.row(id_).title)); }

std::int32_t TrackMedia::imageSourceHeight() const {
  const auto known = shelf_->pictureHeights.find(id_);
  return known != shelf_->pictureHeights.end() ? known->second : 0;
}

void TrackMedia::pictureHeight(std::int32_t lines) {
  if (lines > 0)
    shelf_->pictureHeights[id_] = lines;
  else
    shelf_->pictureHeights.erase(id_);
}

std::string TrackMedia::getItemInfo(const std::string& attribute) const {
  return AttributeText(shelf_->table, id_, AttributeNamed(attribute));
}

bool LooseMedia::streamTitle(std::string_view title) {
  std::string plain = base::RepairUtf8(tags::Shortened(title, kLongestStreamTitle));
  std::replace_if(
      plain.begin(), plain.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; },
      ' ');
  plain = base::TrimBlanks(plain);
  if (plain == streamTitle_) return false;
  streamTitle_ = std::move(plain);
  return true;
}

std::string LooseMedia::getItemInfo(const std::string& attribute) const {
  if (base::SameText(attribute, "StreamTitle")) return streamTitle_;
  return AttributeText(tags_, sourceURL(), AttributeNamed(attribute));
}

std::string PlainLocation(const std::string& location) {
  if (location.find("/.") == std::string::npos || IsAddress(location)) return location;
  return std::filesystem::path(location).lexically_normal().string();
}

std::string SourceOf(const player::Media& media) { return PlainLocation(LocationOf(media)); }

std::string LocationOf(const player::Media& media) {
  const auto* own = dynamic_cast<const EngineMedia*>(&media);
  return own != nullptr ? own->location() : PathOf(media.sourceURL());
}

}  // namespace engine
