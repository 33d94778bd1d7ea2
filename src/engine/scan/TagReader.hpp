#pragma once
#include <string>
#include <string_view>

#include "engine/common/Track.hpp"

namespace engine {

/// What a file's name says it is. Files of no kind are never opened.
MediaKind KindByName(std::string_view path);

/// The file's name without folder and ending, as well-formed text.
std::string TitleFromPath(const std::string& path);

/// A path for messages: always well-formed text.
std::string SafeName(const std::string& path);

/// Reads the tags of a media file. Safe on any thread. Throws number 53 when the file has gone, 70 when it
/// can't be read, 5 when there is no media in it.
TrackTags ReadTags(const std::string& path);

}  // namespace engine
