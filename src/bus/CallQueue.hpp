#pragma once
#include <deque>
#include <functional>
#include <string>

#include "base/Loop.hpp"
#include "bus/Message.hpp"

namespace bus {

/// The calls that have come, and the rule by which they are served while others are being served.
///
/// Calls are taken in the order in which they came, up to `kDeepest` within each other, as each takes its
/// share of the one stack. Those beyond wait until one of the others has ended. That loses nothing when they
/// have come independently of each other. Calls in a circle, where each waits for the next, would wait for
/// ever: there nothing moves any more, no reply comes and no call ends, and after a while of that one call is
/// given up.
class CallQueue {
 public:
  static constexpr int kDeepest = 200;
  /// How long nothing moves before a call of the process is given up that the innermost call waits for.
  static constexpr base::Milliseconds kPatience = std::chrono::seconds(5);
  /// The same for a call of any other process, which may belong to a circle of three.
  static constexpr base::Milliseconds kLongPatience = std::chrono::seconds(30);

  explicit CallQueue(const base::Loop& loop) : loop_(loop) {}

  void add(Message call);
  void clear();
  [[nodiscard]] bool empty() const { return waiting_.empty(); }

  /// The call to be served now, null when there is none or none may be served just now. Calls that lead to
  /// no further ones may be served at any depth, but not before those that their sender sent earlier.
  Message take();
  /// Runs `serve` as one more call within those that are being served.
  void within(const std::function<void()>& serve);
  /// How many calls are being served within each other.
  [[nodiscard]] int depth() const { return depth_; }

  /// A reply has come, or whatever else lets a call that is being served go on.
  void moved() { lastMove_ = loop_.now(); }
  /// The call to be given up now, null while there is none. `isAwaited` tells whether the innermost call
  /// waits for the process of that name.
  Message takeStuck(const std::function<bool(const std::string& sender)>& isAwaited);
  /// True while calls wait that can't be served.
  [[nodiscard]] bool held() const { return full() && !waiting_.empty(); }
  /// True while calls are held and nothing has moved for so long that `takeStuck` is to be asked.
  [[nodiscard]] bool idle() const { return held() && loop_.now() - lastMove_ >= kPatience; }

 private:
  struct Waiting {
    Message call;
    base::Milliseconds since;
  };
  using Position = std::deque<Waiting>::iterator;

  [[nodiscard]] bool full() const { return depth_ >= kDeepest; }
  Message takeAt(const Position& at);
  Position firstLight();

  const base::Loop& loop_;
  std::deque<Waiting> waiting_;
  std::size_t light_ = 0;  // how many of those that wait lead to no further calls
  int depth_ = 0;
  base::Milliseconds lastMove_{0};
};

}  // namespace bus
