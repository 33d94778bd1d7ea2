#pragma once
#include <string>

#include "standin/playlists/PlaylistStep.hpp"

namespace support {

/// A step that adds one title.
inline standin::PlaylistStep Adding(const std::string& title) {
  standin::PlaylistStep step;
  step.kind = standin::StepKind::kAdd;
  step.to = {2, "before", "after"};
  step.items = {{title, "/music/" + title}};
  step.count = 7;
  return step;
}

}  // namespace support
