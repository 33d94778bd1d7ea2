#include "standin/eventrun/EventRun.hpp"

#include <algorithm>
#include <utility>

#include "base/Failure.hpp"

namespace standin {

EventRun::EventRun(const EngineParts& parts, Evaluation evaluation, std::shared_ptr<const Rule> rule,
                   CausePtr cause, Ways ways)
    : parts_(parts),
      evaluation_(std::move(evaluation)),
      rule_(std::move(rule)),
      cause_(std::move(cause)),
      ways_(std::move(ways)) {
  evaluation_.actions.clear();
  for (const Action& action : rule_->actions)
    evaluation_.actions.push_back({.words = parts_.words.of(action)});
}

void EventRun::begin() { stepSoon(); }

void EventRun::stepSoon() {
  parts_.loop.post([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->step();
  });
}

void EventRun::step() {
  if (over_ || under_) return;
  deed_.reset();
  timer_.reset();
  if (at_ == rule_->actions.size()) return end(whole(), {});
  DoneAction& now = evaluation_.actions[at_];
  now.begun = true;
  now.time = parts_.clock.now();
  since_ = parts_.loop.now();
  under_ = true;
  const auto self = shared_from_this();  // what is done may stop this very run
  const std::size_t action = at_;
  try {
    carryOut(rule_->actions[at_]);
  } catch (...) {
    done(action, base::CurrentFailure().description());
  }
}

void EventRun::carryOut(const Action& action) {
  if (const auto* pause = std::get_if<WaitAction>(&action)) return wait(*pause);
  if (const auto* event = std::get_if<EventAction>(&action)) return fire(*event);
  ways_.acted(cause_, action, false);
  const std::size_t at = at_;
  auto deed = parts_.world.carryOut(action, [weak = weak_from_this(), at](const std::string& failure) {
    if (const auto self = weak.lock()) self->done(at, failure);
  });
  // The next one may have begun already, if the world has let the loop go on.
  if (!over_ && under_ && at_ == at) deed_ = std::move(deed);
}

void EventRun::done(std::size_t action, const std::string& failure) {
  if (over_ || !under_ || action != at_) return;
  under_ = false;
  DoneAction& told = evaluation_.actions[at_];
  told.spent = (parts_.loop.now() - since_).count();
  told.failure = failure;
  if (const Action& what = rule_->actions[at_];
      !std::holds_alternative<WaitAction>(what) && !std::holds_alternative<EventAction>(what))
    ways_.acted(cause_, what, true);  // the house's answer to it may still be on its way
  ++at_;
  stepSoon();  // and not here: what has called may be the very action that ends with the step
}

void EventRun::wait(const WaitAction& action) {
  timer_ = parts_.loop.makeTimer(std::chrono::seconds(std::max(action.seconds, 1)), [this, at = at_] {
    timer_->enabled(false);
    done(at, {});
  });
  timer_->enabled(true);
}

void EventRun::fire(const EventAction& action) { done(at_, ways_.fire(action.event, cause_)); }

void EventRun::stop(Outcome outcome, const std::string& why) {
  if (over_) return;
  const auto self = shared_from_this();
  if (under_) {
    evaluation_.actions[at_].spent = (parts_.loop.now() - since_).count();
    evaluation_.actions[at_].failure = "Broken off";
  }
  deed_.reset();
  timer_.reset();
  end(outcome, why);
}

Outcome EventRun::whole() const {
  const bool failed = std::any_of(evaluation_.actions.begin(), evaluation_.actions.end(),
                                  [](const DoneAction& each) { return !each.failure.empty(); });
  return failed ? Outcome::kFailed : Outcome::kDone;
}

void EventRun::end(Outcome outcome, const std::string& why) {
  over_ = true;
  evaluation_.outcome = outcome;
  evaluation_.why = why;
  ways_.ended(*this);
}

}  // namespace standin
