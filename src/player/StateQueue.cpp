#include "player/StateQueue.hpp"

#include "base/Attempt.hpp"

namespace player {

StateQueue::StateQueue(base::Loop& loop, const plugin::HostServices& host, plugin::Loggers& loggers,
                       std::function<void(std::int32_t)> worker)
    : host_(host),
      loggers_(loggers),
      worker_(std::move(worker)),
      PlayStateChangeTimer_(loop.makeTimer(kIdle, [this] { PlayStateChangeTimer_Timer(); })) {}

void StateQueue::PushStack(std::int32_t newState) {
  base::Attempt step;
  step([&] { StateStack_.push_back(newState); });
  if (PlayStateChangeTimer_->interval() == kIdle) PlayStateChangeTimer_->enabled(true);
}

void StateQueue::handleNow(std::int32_t state) {
  if (PlayStateChangeTimer_->interval() == kBusy) return PushStack(state);
  PlayStateChangeTimer_->interval(kBusy);
  base::Attempt step;
  step([&] { worker_(state); });  // it tells its failures itself
  PlayStateChangeTimer_->interval(kIdle);
  if (!StateStack_.empty()) PlayStateChangeTimer_->enabled(true);
}

std::optional<std::int32_t> StateQueue::PopStack() {
  if (StateStack_.empty()) return std::nullopt;
  const std::int32_t oldest = StateStack_.front();
  StateStack_.pop_front();
  return oldest;
}

void StateQueue::wmp9_PlayStateChange(std::int32_t newState) {
  PushStack(newState);
  if (PlayStateChangeTimer_->interval() == kIdle) PlayStateChangeTimer_->enabled(true);
}

void StateQueue::PlayStateChangeTimer_Timer() {
  PlayStateChangeTimer_->interval(kBusy);
  PlayStateChangeTimer_->enabled(false);
  if (!host_.Host) return;  // the plug-in is going down
  base::Handled(
      [&] {
        while (const auto state = PopStack()) worker_(*state);
        PlayStateChangeTimer_->interval(kIdle);
      },
      // The interval stays 0: no later state arms the timer, and state handling has ended until the plug-in
      // restarts. A drain that failed half-way would go on publishing from a state nobody knows.
      [&](const base::Failure& failure) {
        loggers_.LogFormError(failure.number(), failure.description(), "PlayStateChangeTimer_Timer");
      });
}

}  // namespace player
