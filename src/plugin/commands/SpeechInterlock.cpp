#include "plugin/commands/SpeechInterlock.hpp"

#include <limits>

#include "base/Attempt.hpp"

namespace plugin {

using base::Attempt;

namespace {
constexpr std::int32_t kAudioEvent = 8;
}

void SpeechInterlock::VXEvent(const base::Array& parms) {
  Attempt step;
  std::int32_t mask = 0;
  bool started = false;
  step([&] { mask = base::ToInt32(parms.at(0)); });
  if ((mask & kAudioEvent) != kAudioEvent) return;
  step([&] { started = base::ToBoolean(parms.at(1)); });
  if (started) {
    // One that has ended while its start was told interrupts nothing any more.
    if (countStart() && AudioCount_ > 0 && calls_.IsPlaying()) interrupt();
    return;
  }
  countStop();
  if (SpeechInterrupted_ && AudioCount_ == 0) restore();
}

// Both count before any call out, as events run in those.

bool SpeechInterlock::countStart() {
  Attempt step;
  const std::int32_t before = AudioCount_;
  if (before < std::numeric_limits<std::int16_t>::max()) ++AudioCount_;
  if (AudioDebug_)
    step([&] { host_.WriteLog("Debug", "Media Player Audio Started: " + std::to_string(before)); });
  return before == 0;
}

void SpeechInterlock::countStop() {
  Attempt step;
  const std::int32_t before = AudioCount_;
  if (before >= 1) --AudioCount_;
  if (AudioDebug_)
    step([&] { host_.WriteLog("Debug", "Media Player Audio Stopped:  " + std::to_string(before - 1)); });
  if (before < 1 && state_.DebugMessages) {
    step([&] {
      host_.WriteLog("Warning", "Media Player detected a problem with the Vantorix VXEvent function");
    });
    step([&] { host_.WriteLog("Warning", "VXEvent 'Audio stopped' was called too many times"); });
    AudioDebug_ = true;
  }
}

void SpeechInterlock::interrupt() {
  Attempt step;
  bool canPause = false;
  step([&] { canPause = form_.controls().isAvailable("Pause"); });
  const bool pause = state_.WhileSpeaking == "Pause";
  // A stream that can't be paused is muted instead.
  if (state_.WhileSpeaking == "Mute" || (pause && !canPause)) {
    mute();
  } else if (pause) {
    std::int32_t playState = player::kUndefined;
    step([&] { playState = form_.wmp9().playState(); });
    if (playState == player::kPaused) return;
    SpeechInterrupted_ = true;
    SpeechAction_ = "Pause";
    calls_.PauseResume();
  }
}

void SpeechInterlock::mute() {
  Attempt step;
  bool muted = false;
  step([&] { muted = form_.settings().mute(); });
  if (muted) return;
  SpeechInterrupted_ = true;
  SpeechAction_ = "Mute";
  calls_.SetMute(true);
}

void SpeechInterlock::restore() {
  if (SpeechAction_ == "Mute") calls_.SetMute(false);
  if (SpeechAction_ == "Pause") calls_.ResumePlayback();
  SpeechAction_.clear();
  SpeechInterrupted_ = false;
}

}  // namespace plugin
