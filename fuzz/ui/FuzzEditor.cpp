// Gestures on the playlist editor, three bytes each: behind every one of them the view shows what the models
// hold, and the stored playlists have changed by what one gesture may change.
#include <cstdint>

#include "fuzz/Input.hpp"
#include "ui/editor/Gestures.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  support::Gestures gestures;
  for (std::size_t i = 0; i + 2 < size; i += 3)
    support::Require(gestures.play({data[i], data[i + 1], data[i + 2]}).empty());
  return 0;
}
