#pragma once
#include <vector>

#include "standin/playlists/PlaylistStep.hpp"

namespace standin {

/// What somebody has done to a list between two looks at it, told by the sources of its titles: nothing, one
/// step, or a removal and an addition where it is not as simple as one. Taken one after the other they make
/// `after` of `before`.
std::vector<PlaylistStep> StepsBetween(const std::vector<ListedItem>& before,
                                       const std::vector<ListedItem>& after);

}  // namespace standin
