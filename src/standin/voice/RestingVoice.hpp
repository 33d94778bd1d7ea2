#pragma once
#include <chrono>
#include <functional>
#include <optional>

#include "base/Failure.hpp"
#include "standin/voice/VoiceOutput.hpp"

namespace standin {

/// A voice that is left alone for a minute after each failure: to ask a machine for sound that has none takes
/// long. Meanwhile it fails as it has failed before.
class RestingVoice : public VoiceOutput {
 public:
  using Clock = std::chrono::steady_clock;

  explicit RestingVoice(VoiceOutput& voice, std::function<Clock::time_point()> now = Clock::now)
      : voice_(voice), now_(std::move(now)) {}

  void say(const std::string& text) override {
    unlessItRests([&] { voice_.say(text); });
  }
  void tone() override {
    unlessItRests([&] { voice_.tone(); });
  }
  void hush() override { voice_.hush(); }

 private:
  template <class Act>
  void unlessItRests(const Act& act) {
    if (failure_ && now_() < restsUntil_) throw base::Failure(*failure_);
    failure_.reset();
    try {
      act();
    } catch (...) {
      failure_ = base::CurrentFailure();
      restsUntil_ = now_() + std::chrono::minutes(1);
      throw;
    }
  }

  VoiceOutput& voice_;
  std::function<Clock::time_point()> now_;
  std::optional<base::Failure> failure_;
  Clock::time_point restsUntil_{};
};

}  // namespace standin
