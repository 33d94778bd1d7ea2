#include "engine/library/Media.hpp"

#include <filesystem>

#include "base/Text.hpp"

namespace engine {
namespace {

bool AsksForPicture(const std::string& attribute, std::int32_t index) {
  return index == 0 && base::SameText(attribute, "WM/Picture");
}

}  // namespace

std::string TrackMedia::name() const { return std::string(shelf_->table.text(shelf_->table.row(id_).title)); }

std::string TrackMedia::getItemInfo(const std::string& attribute) const {
  return AttributeText(shelf_->table, id_, AttributeNamed(attribute));
}

player::Picture TrackMedia::getItemInfoByType(const std::string& attribute, const std::string& /*language*/,
                                              std::int32_t index) const {
  if (!AsksForPicture(attribute, index)) return {};
  return {shelf_->pictures.urlOf(location())};
}

std::string LooseMedia::getItemInfo(const std::string& attribute) const {
  return AttributeText(tags_, sourceURL(), AttributeNamed(attribute));
}

player::Picture LooseMedia::getItemInfoByType(const std::string& /*attribute*/,
                                              const std::string& /*language*/, std::int32_t /*index*/) const {
  return {};
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
