#include "player/WMPPlayer.hpp"

#include "base/Failure.hpp"

namespace player {

void WMPPlayer::load() {
  if (control_) return;
  if (loading_) throw base::Failure(base::number::kCannotCreate, "The player is being made");
  struct Loading {
    bool& flag;
    explicit Loading(bool& value) : flag(value) { flag = true; }
    Loading(const Loading&) = delete;
    Loading& operator=(const Loading&) = delete;
    Loading(Loading&&) = delete;
    Loading& operator=(Loading&&) = delete;
    ~Loading() { flag = false; }
  } const loading(loading_);
  control_ = factory_(events_);
}

MediaRef WMPPlayer::currentMedia() {
  MediaRef media = wmp9().currentMedia();
  if (!media) throw base::Failure(base::number::kObjectMissing);
  return media;
}

}  // namespace player
