#include "engine/scan/TagReader.hpp"

#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "engine/tags/MediaFile.hpp"

namespace engine {

std::string TitleFromPath(const std::string& path) {
  const std::string name = path.substr(path.rfind('/') + 1);
  const auto dot = name.rfind('.');
  return base::RepairUtf8(dot != std::string::npos && dot > 0 ? name.substr(0, dot) : name);
}

std::string SafeName(const std::string& path) { return base::RepairUtf8(path); }

TagReading ReadTags(const std::string& path) {
  tags::MediaFile file = tags::ReadMediaFile(path);
  if (!file.music) throw base::Failure(base::number::kInvalidArgument, SafeName(path) + " holds no music");
  TagReading reading{std::move(file.tags), {}};
  if (reading.tags.title.empty()) reading.tags.title = TitleFromPath(path);
  if (file.cut) reading.remark = SafeName(path) + ": a name in it is too long and was cut";
  return reading;
}

}  // namespace engine
