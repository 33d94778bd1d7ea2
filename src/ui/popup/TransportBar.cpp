#include "ui/popup/TransportBar.hpp"

#include <algorithm>
#include <cmath>

#include "base/Attempt.hpp"

namespace ui {

using base::Attempt;

namespace {
constexpr base::Milliseconds kLook{1000};
constexpr std::int16_t kFullVolume = 100;
}  // namespace

TransportBar::TransportBar(PopupWindow& window, player::WMPPlayer& form, player::WMPCalls& calls,
                           base::Loop& loop)
    : window_(window), form_(form), calls_(calls), look_(loop.makeTimer(kLook, [this] { refresh(); })) {}

void TransportBar::playOrPause() {
  if (calls_.IsPlaying())
    calls_.PauseResume();
  else if (underWay())
    turnRound();
  else
    calls_.ResumePlayback();
  refresh();
}

// Of what is still being opened, or waits for more of itself, the commands know nothing.
void TransportBar::turnRound() {
  Attempt step;
  step([&] {
    player::Controls& controls = form_.controls();
    if (controls.isAvailable("Pause"))
      controls.pause();
    else if (controls.isAvailable("Play"))
      controls.play();
  });
}

bool TransportBar::underWay() {
  bool is = false;
  Attempt step;
  step([&] {
    switch (form_.wmp9().playState()) {
      case player::kBuffering:
      case player::kWaiting:
      case player::kTransitioning:
      case player::kReconnecting: is = true; break;
      default: break;
    }
  });
  return is;
}

void TransportBar::stop() {
  calls_.StopPlayback();
  refresh();
}

void TransportBar::previous() {
  calls_.PreviousTrack();
  refresh();
}

void TransportBar::next() {
  calls_.NextTrack();
  refresh();
}

void TransportBar::seek(double seconds) {
  Attempt step;
  if (!std::isfinite(seconds)) return;
  step([&] {
    const double end = form_.currentMedia()->duration();
    if (end > 0) form_.controls().currentPosition(std::clamp(seconds, 0.0, end));
  });
  refresh();
}

void TransportBar::volume(std::int16_t percent) {
  calls_.SetVolume(std::clamp<std::int16_t>(percent, 0, kFullVolume));
  refresh();
}

void TransportBar::mute() {
  calls_.SetMute("toggle");
  refresh();
}

TransportShown TransportBar::read() {
  TransportShown shown;
  // A player that nobody has needed so far isn't made for being looked at.
  if (!form_.loaded()) return shown;
  Attempt step;
  const auto available = [&](const char* name) {
    bool answer = false;
    step([&] { answer = form_.controls().isAvailable(name); });
    return answer;
  };
  shown.playing = calls_.IsPlaying() || (underWay() && available("Pause"));
  shown.canPlay = available(shown.playing ? "Pause" : "Play");
  shown.canStop = available("Stop");
  shown.canPrevious = available("Previous");
  shown.canNext = available("Next");
  step([&] { shown.volume = form_.settings().volume(); });
  step([&] { shown.mute = form_.settings().mute(); });
  player::MediaRef media;
  step([&] { media = form_.wmp9().currentMedia(); });
  if (!media) return shown;
  step([&] { shown.title = media->getItemInfo("StreamTitle"); });
  if (shown.title.empty()) step([&] { shown.title = media->name(); });
  step([&] { shown.duration = media->duration(); });
  step([&] { shown.position = form_.controls().currentPosition(); });
  return shown;
}

void TransportBar::refresh() {
  Attempt step;
  bool seen = false;
  step([&] { seen = window_.visible() && !window_.minimised() && window_.handle() != 0; });
  if (!seen) return look_->enabled(false);
  const TransportShown shown = read();
  look_->enabled(shown.playing || (form_.loaded() && underWay()));
  step([&] { window_.transport(shown); });
}

}  // namespace ui
