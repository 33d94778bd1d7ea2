#pragma once
#include <cstdint>
#include <utility>
#include <vector>

namespace engine {

class UnreadTags;

/// What a look at a file's outermost boxes tells, as the decoder would go from one to the next.
struct BoxWalk {
  /// Goes over a file of that size, from behind the tags at its front.
  static BoxWalk Over(UnreadTags& file, std::uint64_t size);

  /// Whether there are boxes at all in which the decoder would look for others.
  bool boxes = false;
  /// Whether all of the file is boxes, one behind the other, and none of them is a fragment or points at any.
  bool plain = false;
  /// Where the content of the boxes of sound begins and ends, in order.
  std::vector<std::pair<std::uint64_t, std::uint64_t>> sound;
};

}  // namespace engine
