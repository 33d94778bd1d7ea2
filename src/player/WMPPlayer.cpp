#include "player/WMPPlayer.hpp"

#include "base/Failure.hpp"

namespace player {

MediaRef WMPPlayer::currentMedia() {
  MediaRef media = wmp9().currentMedia();
  if (!media) throw base::Failure(base::number::kObjectMissing);
  return media;
}

}  // namespace player
