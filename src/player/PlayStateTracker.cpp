#include "player/PlayStateTracker.hpp"

#include "base/Attempt.hpp"

namespace player {

using base::Attempt;

namespace {
constexpr base::Milliseconds kCoverSearchDelay{100};
}

PlayStateTracker::PlayStateTracker(base::Loop& loop, WMPPlayer& form, MediaStatus& media,
                                   TriggerSink& triggers, plugin::HostServices& host,
                                   plugin::Loggers& loggers, const plugin::PluginState& state)
    : form_(form),
      media_(media),
      triggers_(triggers),
      host_(host),
      loggers_(loggers),
      state_(state),
      FindCoverArt_(loop.makeTimer(kCoverSearchDelay, [this] {
        FindCoverArt_->enabled(false);
        if (GetCoverImage) GetCoverImage();
      })) {}

void PlayStateTracker::MyPlayStateChange(std::int32_t newState) {
  base::Handled(
      [&] {
        follow(newState);
        LastPlayState_ = newState;
      },
      [&](const base::Failure& failure) {
        loggers_.LogFormError(failure.number(), failure.description(), "MyPlayStateChange");
      });
}

void PlayStateTracker::follow(std::int32_t newState) {
  PlayerStatusText_ = form_.wmp9().status();
  host_.SetDeviceValueByName(plugin::DeviceName("Status"), newState);
  const std::string status = form_.wmp9().status();
  media_.publish("Status", status.empty() ? "Stopped" : status);

  switch (newState) {
    case kStopped:
    case kReady:
      media_.ClearMediaStatus();
      if (PlaybackActive_) {
        PlaybackActive_ = false;
        if (state_.Initialized) triggers_.ActionTrigger(kPlaybackEnded);
      }
      break;
    case kPlaying:
    case kScanForward:
    case kScanReverse:
      // A return from pause or from scanning is no new track: a new one arrives through state 9.
      if (!PlaybackActive_ || LastPlayState_ == kTransitioning) playing();
      break;
    case kTransitioning:
      if (PlaybackActive_) triggers_.ActionTrigger(kTransitioningTrigger);
      break;
    default: break;
  }
}

std::string PlayStateTracker::currentTitle() {
  std::string told = form_.currentMedia()->getItemInfo("StreamTitle");
  return told.empty() ? form_.currentMedia()->name() : told;
}

void PlayStateTracker::StreamTitleChange() {
  Attempt step;
  // Before the first playing state it goes out with the titles.
  if (PlaybackActive_) step([&] { media_.publish("Title", currentTitle()); });
}

std::string PlayStateTracker::currentAlbum() { return form_.currentMedia()->getItemInfo("Album"); }

void PlayStateTracker::publishTitles() {
  Attempt step;
  step([&] { media_.publish("Title", currentTitle()); });
  step([&] { media_.publish("Artist", form_.currentMedia()->getItemInfo("Artist")); });
  step([&] { media_.publish("Genre", form_.currentMedia()->getItemInfo("Genre")); });
  step([&] { media_.publish("Length", form_.currentMedia()->durationString()); });
  std::string album;
  step([&] { album = currentAlbum(); });
  if (!PlaybackActive_ || album != LastAlbum_ || !state_.ShowCoverArt) {
    step([&] { media_.publish("Album", album); });
    media_.clearCover();
  }
}

void PlayStateTracker::playing() {
  publishTitles();
  // Fired on each new track, also before start-up is over.
  triggers_.ActionTrigger(kPlaybackStarted);
  const std::string album = currentAlbum();
  if (state_.ShowCoverArt && (!PlaybackActive_ || album != LastAlbum_)) {
    LastAlbum_ = album;
    FindCoverArt_->enabled(true);
  }
  PlaybackActive_ = true;
}

}  // namespace player
