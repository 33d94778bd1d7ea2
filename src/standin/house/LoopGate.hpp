#pragma once
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "base/Loop.hpp"

namespace standin {

/// The way from the web's threads into the one thread that owns the house.
class LoopGate {
 public:
  LoopGate(base::Loop& loop, std::chrono::milliseconds limit) : loop_(loop), limit_(limit) {}

  enum class Outcome { kDone, kTooLate, kClosed };

  /// Has `work` run on the loop's thread and waits for the end of it, which `work` may reach later, by
  /// calling the function given to it. Work that has not begun when the limit passes is never begun. What
  /// `work` throws is thrown here.
  Outcome run(std::function<void(std::function<void()> done)> work);
  /// Ends all waits, now and later.
  void close();

 private:
  struct Ticket;
  base::Loop& loop_;
  std::chrono::milliseconds limit_;
  std::mutex mutex_;
  std::set<std::shared_ptr<Ticket>> waiting_;
  bool closed_ = false;
};

}  // namespace standin
