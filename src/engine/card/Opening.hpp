#pragma once
#include <condition_variable>
#include <mutex>

#include "base/Loop.hpp"

namespace engine {

/// What may take a moment or, in a bad driver, for ever, between the thread that does it and whoever waits
/// for it. Both hold it; each method is called once at most after `left` or `come` has answered true.
class Opening {
 public:
  /// On the thread that does it: it is done. False where nobody waits any more, and whoever waited may have
  /// gone.
  bool come() {
    const std::lock_guard lock(mutex_);
    if (left_) return false;
    come_ = true;
    turn_.notify_all();
    return true;
  }

  /// Waits that long. True where it hasn't come, and is left to itself from now on.
  bool leave(base::Milliseconds patience) {
    std::unique_lock lock(mutex_);
    left_ = !turn_.wait_for(lock, patience, [this] { return come_; });
    return left_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable turn_;
  bool come_ = false;
  bool left_ = false;
};

}  // namespace engine
