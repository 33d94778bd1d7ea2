#pragma once
#include <string>

#include "engine/common/Track.hpp"

namespace engine {

/// The file's name without folder and ending, as well-formed text.
std::string TitleFromPath(const std::string& path);

/// A path for messages: always well-formed text.
std::string SafeName(const std::string& path);

struct TagReading {
  TrackTags tags;
  std::string remark;  ///< one line for people, empty when all was as usual
};

/// Reads the tags of a media file. Safe on any thread. Throws as `files::FailOn` when the file
/// can't be opened, 5 when there is no media in it.
TagReading ReadTags(const std::string& path);

}  // namespace engine
