#include "standin/player/Pulse.hpp"

#include <chrono>
#include <utility>

namespace standin {
namespace {

constexpr base::Milliseconds kAskEvery = std::chrono::seconds(1);
constexpr base::Milliseconds kPatience = std::chrono::seconds(2);

}  // namespace

Pulse::Pulse(base::Loop& loop, Parts parts)
    : parts_(std::move(parts)),
      ask_(loop.makeTimer(kAskEvery,
                          [this] {
                            if (!waiting_ && parts_.wanted()) parts_.ask();
                          })),
      patience_(loop.makeTimer(kPatience, [this] {
        patience_->enabled(false);
        silence(true);
      })) {}

void Pulse::start() { ask_->enabled(true); }

void Pulse::stop() {
  ask_->enabled(false);
  ends();
}

void Pulse::begins() {
  waiting_ = true;
  patience_->enabled(true);
}

void Pulse::ends() {
  waiting_ = false;
  patience_->enabled(false);
  silence(false);
}

void Pulse::silence(bool silent) {
  if (std::exchange(silent_, silent) != silent) parts_.changed();
}

}  // namespace standin
