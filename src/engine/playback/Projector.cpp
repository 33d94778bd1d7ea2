#include "engine/playback/Projector.hpp"

#include "engine/library/Media.hpp"

namespace engine {

Projector::Projector(Parts parts) : in_(std::move(parts)) {
  in_.screen.onSeen([this] { follow(); });
}

Projector::~Projector() {
  in_.screen.onSeen({});
  in_.screen.full(false);
  in_.screen.clear();
}

void Projector::full(bool value) {
  full_ = value;
  follow();
}

void Projector::dark() {
  in_.screen.full(false);
  in_.output.look({});
  in_.sound.end();
  in_.screen.clear();
}

void Projector::follow() {
  const player::MediaRef media = in_.playback.queue().current();
  switch (in_.playback.state()) {
    case player::kTransitioning:
    case player::kMediaEnded:
    case player::kBuffering:
      // Between two titles, or in the midst of one: what is shown stays until the next one can be heard.
      if (in_.screen.size().empty()) dark();
      return;
    case player::kPlaying:
    case player::kPaused:
    case player::kScanForward:
    case player::kScanReverse: break;
    default: return dark();
  }
  const base::PictureSize size = in_.screen.size();
  const bool video = media && media->imageSourceHeight() > 0;
  in_.screen.full(full_ && video);
  in_.output.look(video ? size : base::PictureSize());
  if (video || size.empty() || !media) {
    in_.sound.end();
    return;
  }
  const bool paused = in_.playback.state() != player::kPlaying;
  in_.sound.show(LocationOf(*media), in_.playback.position(), paused, size);
}

}  // namespace engine
