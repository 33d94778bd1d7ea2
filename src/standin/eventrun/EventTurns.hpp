#pragma once
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "standin/eventrun/Asking.hpp"
#include "standin/eventrun/EventRun.hpp"
#include "standin/events/EventControl.hpp"

namespace standin {

/// How much may wait and run of one event.
struct TurnLimits {
  std::size_t asked = 100;    ///< triggers that wait for their conditions to be asked
  std::size_t queued = 20;    ///< runs that wait for the one before them
  std::size_t together = 10;  ///< runs at one time
};

/// What is under way of one event: its triggers come one after the other to where its conditions are asked,
/// and run or don't, as the rule says. Each comes to one evaluation.
class EventTurns {
 public:
  /// One trigger that has come.
  struct Order {
    Evaluation evaluation{};
    std::shared_ptr<const Rule> rule{};
    CausePtr cause{};
    bool asks = true;           ///< conditions count
    EventControl::Told told{};  ///< may be empty
  };
  struct Ways {
    std::function<std::string(std::int32_t event, const CausePtr& cause)> fire;
    std::function<void(const CausePtr& cause, const Action& action, bool ended)> acted;
    std::function<void()> changed;  ///< what runs, or its history
  };
  EventTurns(const EngineParts& parts, Ways ways, TurnLimits limits);
  ~EventTurns();
  EventTurns(const EventTurns&) = delete;
  EventTurns& operator=(const EventTurns&) = delete;
  EventTurns(EventTurns&&) = delete;
  EventTurns& operator=(EventTurns&&) = delete;

  /// Takes it up on a later turn of the loop.
  void add(Order order);
  /// It comes to nothing.
  void refuse(Order order, Outcome outcome, const std::string& why);
  /// Ends what waits and, if `running`, what runs.
  void stop(const std::string& why, bool running);
  /// The house ends: what waits is told as cut. What runs is, too, when the house starts again.
  void houseEnds();
  [[nodiscard]] std::size_t running() const { return runs_.size(); }
  [[nodiscard]] bool idle() const { return runs_.empty() && orders_.empty() && queue_.empty() && !asking_; }

 private:
  void dropWaiting(Outcome outcome, const std::string& why);
  void nextSoon();
  void next();
  void asked(bool holds, const std::vector<SeenCondition>& seen);
  void decide(Order order);
  void run(Order order);
  void ended(EventRun& run);
  void keep(const Evaluation& evaluation);

  EngineParts parts_;
  Ways ways_;
  TurnLimits limits_;
  std::deque<Order> orders_;
  std::shared_ptr<Asking> asking_;  ///< of the first order
  std::deque<Order> queue_;         ///< allowed by their conditions
  std::vector<std::shared_ptr<EventRun>> runs_;
  bool posted_ = false;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace standin
