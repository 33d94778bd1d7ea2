#pragma once
#include <atomic>
#include <chrono>
#include <memory>

#include "bus/PollLoop.hpp"

namespace support {

/// The machine's clock, for a loop whose test need not wait: time is passed over.
class SkippingClock {
 public:
  [[nodiscard]] bus::PollLoop::Clock reader() const {
    return [skipped = skipped_] {
      return std::chrono::steady_clock::now() + std::chrono::milliseconds(skipped->load());
    };
  }
  void skip(std::chrono::milliseconds time) { *skipped_ += time.count(); }

 private:
  std::shared_ptr<std::atomic<std::int64_t>> skipped_ = std::make_shared<std::atomic<std::int64_t>>(0);
};

}  // namespace support
