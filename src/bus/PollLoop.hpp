#pragma once
#include <chrono>
#include <functional>
#include <memory>
#include <utility>

#include "base/Loop.hpp"

namespace bus {

/// A message loop over poll(2) that may be entered again from within its own events, which neither sd-event
/// nor a bus connection allows: a call that waits for its reply must go on serving.
///
/// An event that throws ends the turn: the exception leaves `turn`, `pump` and `run`, and the loop can be
/// turned on afterwards. Timers and watches may outlive the loop; they are dead from then on.
class PollLoop : public base::Loop {
 public:
  /// What the loop takes for the time. Timers look at it whenever the loop turns, and the loop sleeps no
  /// longer than it says at that moment.
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  explicit PollLoop(Clock clock = std::chrono::steady_clock::now);
  ~PollLoop() override;
  PollLoop(const PollLoop&) = delete;
  PollLoop& operator=(const PollLoop&) = delete;
  PollLoop(PollLoop&&) = delete;
  PollLoop& operator=(PollLoop&&) = delete;

  /// A watched descriptor; unwatched when destroyed, also from within its own event.
  class Watch {
   public:
    Watch() = default;
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    Watch(Watch&&) = delete;
    Watch& operator=(Watch&&) = delete;
    virtual ~Watch() = default;
    /// The poll events (POLLIN, POLLOUT) waited for from now on.
    virtual void events(short value) = 0;
  };

  std::unique_ptr<base::Timer> makeTimer(base::Milliseconds interval, std::function<void()> event) override;
  void post(std::function<void()> work) override;
  /// Handles due timers once each, ready watches and the work posted so far, without waiting.
  void pump() override;
  void whileOpen(const std::function<void()>& body) override;
  /// Runs `body` as outside any `whileOpen`. Every event of the loop runs so.
  void whileClosed(const std::function<void()>& body);
  [[nodiscard]] base::Milliseconds now() const override;

  /// Calls `event(revents)` while the descriptor is ready. A watch is not entered within its own event.
  std::unique_ptr<Watch> watch(int descriptor, short events, std::function<void(short)> event);
  /// Blocks the signal for the calling thread and the threads that it starts from now on, and runs `event`
  /// on the loop when it comes, also inside `waitFor`: a signal to end is not held up by a call that hangs.
  std::unique_ptr<Watch> onSignal(int signal, std::function<void()> event);

  /// Runs `prepare` at the start of every turn, before the turn settles what it waits for and how long: for a
  /// toolkit whose own waits change from turn to turn. There is one; an empty one takes it away.
  void beforeWait(std::function<void()> prepare) { beforeWait_ = std::move(prepare); }

  /// Turns until `quit`; answers the code given to it.
  int run();
  /// Ends the innermost `run` after the turn it is in; without one, the next `run` ends at once.
  void quit(int code);
  /// True once `quit` was called, until the next `run`: what waits within an event had better end then.
  [[nodiscard]] bool quitting() const;
  /// One turn: waits at most `limit` for something to happen, then handles what is ready.
  void turn(base::Milliseconds limit);
  /// Waits at most `limit` until the descriptor is ready for one of `events`. Signals are handled meanwhile,
  /// and end the wait; the rest of the loop stands still.
  void waitFor(int descriptor, short events, base::Milliseconds limit);
  /// True inside `whileOpen`, but not within the events that run inside it.
  [[nodiscard]] bool open() const { return openDepth_ > 0; }
  /// How many turns are under way within each other.
  [[nodiscard]] int depth() const { return depth_; }

 private:
  struct State;
  std::unique_ptr<State> state_;
  std::function<void()> beforeWait_;
  int openDepth_ = 0;
  int depth_ = 0;
};

}  // namespace bus
