#include "player/MediaStatus.hpp"

#include "base/Attempt.hpp"

namespace player {

using base::Attempt;

void MediaStatus::publish(const std::string& device, const std::string& text) {
  host_.SetDeviceStringByName(plugin::DeviceName(device), state_.AlbumIconTag + text, true);
}

void MediaStatus::clearCover() {
  Attempt step;
  step([&] { popup_.windowHeight(kHeightWithoutCover); });
  step([&] { popup_.clearImage(); });
  step([&] { popup_.LayoutControls(); });
}

void MediaStatus::ClearMediaStatus() {
  Attempt step;
  for (const char* device : {"Title", "Artist", "Album", "Genre", "Length"})
    step([&] { publish(device, ""); });
  // Emptied, not deleted: the host's pages name the files and then show no picture.
  step([&] { platform_.emptyFile(state_.CoverLargeFile); });
  step([&] { platform_.emptyFile(state_.CoverSmallFile); });
  clearCover();
  step([&] { calls_.SetLoopMode(form_.settings().getMode("Loop")); });
  step([&] { calls_.SetShuffleMode(form_.settings().getMode("Shuffle")); });
  step([&] { calls_.SetMute(form_.settings().mute()); });
}

}  // namespace player
