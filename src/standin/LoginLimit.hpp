#pragma once
#include <algorithm>
#include <chrono>
#include <mutex>

namespace standin {

/// Slows guessing down: from the fifth wrong password in a row on, each one makes the next wait longer.
/// Thread-safe.
class LoginLimit {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// False while the next try has to wait.
  bool mayTry(Time now) {
    const std::lock_guard lock(mutex_);
    return now >= next_;
  }
  void failed(Time now) {
    const std::lock_guard lock(mutex_);
    ++failures_;
    if (failures_ >= kFree)
      next_ = now + std::chrono::seconds(1LL << std::min(failures_ - kFree, kMostDoublings));
  }
  void succeeded() {
    const std::lock_guard lock(mutex_);
    failures_ = 0;
    next_ = {};
  }

 private:
  static constexpr int kFree = 5;
  static constexpr int kMostDoublings = 6;
  std::mutex mutex_;
  int failures_ = 0;
  Time next_{};
};

}  // namespace standin
