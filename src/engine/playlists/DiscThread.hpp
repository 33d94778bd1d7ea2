#pragma once
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace engine {

/// A thread for work at a disc that may hang, one piece at a time, so that whoever asks waits no longer than
/// he will. Used by one thread. It begins with its first work.
class DiscThread {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// `done` is called on the thread when work is done that nobody waits for.
  explicit DiscThread(std::function<void()> done);
  /// Waits for what is being done for half a second, unless somebody has waited in vain already; then it is
  /// left to itself, and tells nobody.
  ~DiscThread();
  DiscThread(const DiscThread&) = delete;
  DiscThread& operator=(const DiscThread&) = delete;
  DiscThread(DiscThread&&) = delete;
  DiscThread& operator=(DiscThread&&) = delete;

  /// Begins work that nobody waits for. It has to own whatever it touches; what it throws is lost. False, and
  /// nothing is begun, where earlier work isn't done.
  bool begin(std::function<void()> work);
  [[nodiscard]] bool busy() const;
  /// True when nothing is being done; waits for that up to `until`, but no more for work that somebody has
  /// waited for in vain.
  bool wait(Time until);
  /// What the work answers; nothing when the disc doesn't answer earlier work and this within `limit`. Then
  /// what it answers later is lost.
  template <class Answer>
  std::optional<Answer> ask(std::function<Answer()> work, std::chrono::milliseconds limit) {
    const auto answer = std::make_shared<std::optional<Answer>>();
    const Time until = std::chrono::steady_clock::now() + limit;
    if (!wait(until) || !begin([answer, work = std::move(work)] { *answer = work(); }) || !wait(until))
      return std::nullopt;
    return std::move(*answer);
  }

 private:
  struct Shared;

  std::shared_ptr<Shared> shared_;  ///< with the thread, which may outlive this
  std::thread thread_;
};

}  // namespace engine
