#pragma once
#include <string>

#include "engine/common/Track.hpp"

namespace engine::demo {

/// Writes tags, and a PNG picture as the front cover unless it is empty. Throws number 57 when it can't.
void WriteTags(const std::string& path, const TrackTags& tags, const std::string& png = {});

}  // namespace engine::demo
