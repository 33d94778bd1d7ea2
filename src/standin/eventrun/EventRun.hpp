#pragma once
#include <functional>
#include <memory>
#include <string>

#include "standin/eventrun/EngineParts.hpp"
#include "standin/eventrun/Rounds.hpp"

namespace standin {

/// One walk through the actions of an event. An action begins when the one before it has ended, however that
/// ended; each on a turn of the loop of its own. Waits are timers.
class EventRun : public std::enable_shared_from_this<EventRun> {
 public:
  struct Ways {
    /// Fires an event; answers why it can't be fired, or an empty text.
    std::function<std::string(std::int32_t event, const CausePtr& cause)> fire;
    /// An action begins to reach out into the house, or has ended.
    std::function<void(const CausePtr& cause, const Action& action, bool ended)> acted;
    std::function<void(EventRun& run)> ended;  ///< the last thing that a run does
  };
  /// `evaluation` is taken down already.
  EventRun(const EngineParts& parts, Evaluation evaluation, std::shared_ptr<const Rule> rule, CausePtr cause,
           Ways ways);

  /// Begins on the next turn of the loop.
  void begin();
  /// Breaks off what is under way, and ends it so. `ended` is called before this returns.
  void stop(Outcome outcome, const std::string& why);
  [[nodiscard]] const Evaluation& evaluation() const { return evaluation_; }

 private:
  void stepSoon();
  void step();
  void carryOut(const Action& action);
  void done(std::size_t action, const std::string& failure);
  void wait(const WaitAction& action);
  void fire(const EventAction& action);
  void end(Outcome outcome, const std::string& why);
  [[nodiscard]] Outcome whole() const;

  EngineParts parts_;
  Evaluation evaluation_;
  std::shared_ptr<const Rule> rule_;
  CausePtr cause_;
  Ways ways_;
  std::size_t at_ = 0;  ///< the action under way, or the next one
  bool under_ = false;  ///< it is under way
  bool over_ = false;
  base::Milliseconds since_{0};
  std::unique_ptr<Deed> deed_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace standin
