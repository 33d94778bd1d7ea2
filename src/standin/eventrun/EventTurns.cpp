#include "standin/eventrun/EventTurns.hpp"

#include <utility>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr const char* kAnew = "It was begun anew";

}  // namespace

EventTurns::EventTurns(const EngineParts& parts, Ways ways, TurnLimits limits)
    : parts_(parts), ways_(std::move(ways)), limits_(limits) {}

EventTurns::~EventTurns() {
  if (asking_) asking_->cancel();
}

void EventTurns::add(Order order) {
  if (orders_.size() >= limits_.asked)
    return refuse(std::move(order), Outcome::kLeft, "It has been triggered too often at once");
  orders_.push_back(std::move(order));
  nextSoon();
}

void EventTurns::refuse(Order order, Outcome outcome, const std::string& why) {
  order.evaluation.outcome = outcome;
  order.evaluation.why = why;
  keep(order.evaluation);
  if (order.told) order.told(order.evaluation);
}

void EventTurns::nextSoon() {
  if (std::exchange(posted_, true)) return;
  parts_.loop.post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.lock()) return;
    posted_ = false;
    next();
  });
}

void EventTurns::next() {
  if (asking_ || orders_.empty()) return;
  Order& first = orders_.front();
  if (!first.asks) return asked(true, {});
  if (first.rule->again == Again::kLeave && !runs_.empty()) {
    Order order = std::move(first);
    orders_.pop_front();
    nextSoon();
    return refuse(std::move(order), Outcome::kLeft, "It was still running");
  }
  asking_ = std::make_shared<Asking>(
      parts_, first.evaluation.event, first.rule,
      [this](bool holds, const std::vector<SeenCondition>& seen) { asked(holds, seen); });
  const auto asking = asking_;
  asking->begin();
}

void EventTurns::asked(bool holds, const std::vector<SeenCondition>& seen) {
  Order order = std::move(orders_.front());
  orders_.pop_front();
  order.evaluation.conditions = seen;
  const auto over = std::exchange(asking_, nullptr);
  nextSoon();
  if (holds) return decide(std::move(order));
  const std::string why = Objection(seen, order.rule->any);
  refuse(std::move(order), Outcome::kRefused, why);
}

void EventTurns::decide(Order order) {
  if (runs_.empty()) return run(std::move(order));
  switch (order.rule->again) {
    case Again::kLeave: return refuse(std::move(order), Outcome::kLeft, "It was still running");
    case Again::kRestart:
      // Some may wait, from when the rule said so: the end of the one that runs mustn't begin them.
      for (Order& each : std::exchange(queue_, {})) refuse(std::move(each), Outcome::kStopped, kAnew);
      for (const auto& each : std::vector(runs_)) each->stop(Outcome::kStopped, kAnew);
      return run(std::move(order));
    case Again::kQueue:
      if (queue_.size() >= limits_.queued)
        return refuse(std::move(order), Outcome::kLeft, "Too many were waiting already");
      if (const EventControl::Told told = std::exchange(order.told, nullptr)) {
        Evaluation waiting = order.evaluation;
        waiting.why = "It waits for its turn";
        told(waiting);
      }
      queue_.push_back(std::move(order));
      return;
    case Again::kTogether:
      if (runs_.size() >= limits_.together)
        return refuse(std::move(order), Outcome::kLeft, "Too many were running already");
      return run(std::move(order));
  }
}

void EventTurns::run(Order order) {
  order.evaluation.outcome = Outcome::kRunning;
  try {
    order.evaluation.id = parts_.sink.begin(order.evaluation);
  } catch (...) {
    // A full disk is no reason to let people oversleep.
    parts_.world.note("Error", "History can't be written: " + base::CurrentFailure().description());
  }
  const auto run = std::make_shared<EventRun>(
      parts_, order.evaluation, order.rule, order.cause,
      EventRun::Ways{ways_.fire, ways_.acted, [this](EventRun& ended) { this->ended(ended); }});
  runs_.push_back(run);
  run->begin();
  if (order.told) order.told(run->evaluation());
  ways_.changed();
}

void EventTurns::ended(EventRun& run) {
  keep(run.evaluation());
  const bool free =
      std::erase_if(runs_, [&](const auto& each) { return each.get() == &run; }) > 0 && runs_.empty();
  if (!free || queue_.empty()) return;
  Order order = std::move(queue_.front());
  queue_.pop_front();
  this->run(std::move(order));
}

void EventTurns::houseEnds() {
  for (auto* list : {&orders_, &queue_})
    for (Order& each : *list) each.told = nullptr;  // whoever asked has gone
  dropWaiting(Outcome::kCut, "The house ended before the first action");
}

void EventTurns::dropWaiting(Outcome outcome, const std::string& why) {
  const auto waiting = std::exchange(orders_, {});
  const auto queued = std::exchange(queue_, {});
  if (asking_) asking_->cancel();
  asking_.reset();
  for (const auto* list : {&waiting, &queued})
    for (const Order& each : *list) refuse(each, outcome, why);
}

void EventTurns::stop(const std::string& why, bool running) {
  dropWaiting(Outcome::kStopped, why);
  if (!running) return;
  for (const auto& each : std::vector(runs_)) each->stop(Outcome::kStopped, why);
}

void EventTurns::keep(const Evaluation& evaluation) {
  try {
    parts_.sink.end(evaluation);
  } catch (...) {
    parts_.world.note("Error", "History can't be written: " + base::CurrentFailure().description());
  }
  ways_.changed();
}

}  // namespace standin
