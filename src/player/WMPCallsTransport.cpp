
#include <limits>

#include "base/Attempt.hpp"
#include "player/WMPCalls.hpp"

// The half of WMPCalls that moves the player; the setters are in WMPCallsSetters.cpp.
namespace player {

using base::Attempt;

std::int32_t WMPCalls::playState() {
  std::int32_t now = kUndefined;
  Attempt step;
  step([&] { now = form_.wmp9().playState(); });
  return now;
}

bool WMPCalls::available(const char* name) {
  bool answer = false;
  Attempt step;
  step([&] { answer = form_.controls().isAvailable(name); });
  return answer;
}

bool WMPCalls::IsPlaying() {
  const std::int32_t now = playState();
  return now == kPlaying || now == kScanForward || now == kScanReverse;
}

void WMPCalls::StopPlayback() {
  Attempt step;
  // Queued first, so that the stopped state is handled even if the player sends no event for it.
  queue_.PushStack(kStopped);
  if (available("Stop")) step([&] { form_.controls().stop(); });
}

void WMPCalls::ResumePlayback() {
  Attempt step;
  if (!available("Play")) return;
  const std::int32_t now = playState();
  if (now == kPaused || now == kReady || now == kStopped) step([&] { form_.controls().play(); });
}

void WMPCalls::PauseResume() {
  Attempt step;
  if (IsPlaying()) {
    if (available("Pause")) step([&] { form_.controls().pause(); });
  } else if (playState() == kPaused) {
    ResumePlayback();
  }
}

void WMPCalls::playIfStopped() {
  Attempt step;
  const std::int32_t now = playState();
  if ((now == kReady || now == kStopped) && available("Play")) step([&] { form_.controls().play(); });
}

void WMPCalls::PreviousTrack() {
  Attempt step;
  if (available("Previous")) step([&] { form_.controls().previous(); });
  playIfStopped();
}

void WMPCalls::NextTrack() {
  Attempt step;
  if (available("Next")) step([&] { form_.controls().next(); });
  playIfStopped();
}

void WMPCalls::FastReverse() {
  Attempt step;
  if (playState() != kScanReverse) {
    if (available("FastReverse")) step([&] { form_.controls().fastReverse(); });
  } else if (available("Play")) {
    step([&] { form_.controls().play(); });
  }
}

void WMPCalls::FastForward() {
  Attempt step;
  if (playState() != kScanForward) {
    if (available("FastForward")) step([&] { form_.controls().fastForward(); });
  } else if (available("Play")) {
    step([&] { form_.controls().play(); });
  }
}

void WMPCalls::RestartPlayback() {
  Attempt step;
  if (IsPlaying())
    step([&] { form_.controls().currentPosition(0); });
  else if (available("Play"))
    step([&] { form_.controls().play(); });
}

void WMPCalls::EjectDrive(std::int16_t drive) {
  Attempt step;
  step([&] {
    const auto cdrom = form_.wmp9().cdromCollection().item(drive);
    if (!cdrom) throw base::Failure(base::number::kObjectMissing);
    cdrom->eject();
  });
}

namespace {

constexpr std::int32_t kFullVolume = 100;

/// False where the sum leaves the 32-bit range; `volume` is then as before.
bool Add(std::int32_t& volume, std::int32_t percent) {
  const std::int64_t sum = std::int64_t{volume} + percent;
  if (sum < std::numeric_limits<std::int32_t>::min() || sum > std::numeric_limits<std::int32_t>::max())
    return false;
  volume = static_cast<std::int32_t>(sum);
  return true;
}

}  // namespace

void WMPCalls::VolumeUp(std::int16_t percent) {
  Attempt step;
  std::int32_t volume = 0;
  const bool known = step([&] { volume = form_.settings().volume(); });
  if (!Add(volume, percent)) return;
  if (known) step([&] { form_.settings().volume(volume > kFullVolume ? kFullVolume : volume); });
  SetMute(false);
}

void WMPCalls::VolumeDown(std::int16_t percent) {
  Attempt step;
  std::int32_t volume = 0;
  const bool known = step([&] { volume = form_.settings().volume(); });
  if (!Add(volume, -std::int32_t{percent})) return;
  if (known) step([&] { form_.settings().volume(volume <= 0 ? 0 : volume); });
  SetMute(known && volume <= 0);
}

void WMPCalls::SetVolume(std::int16_t value) {
  Attempt step;
  if (value < 0) return;
  step([&] { form_.settings().volume(value); });
  SetMute(value == 0);
}

}  // namespace player
