#pragma once
#include <atomic>
#include <cstddef>
#include <mutex>

namespace standin {

/// Something that is done by one thread at a time, and that only so many may wait for. Thread-safe.
class Turns {
 public:
  /// One that has it, and `waiting` that wait.
  explicit Turns(std::ptrdiff_t waiting) : free_(waiting + 1) {}

  /// How many more may come.
  [[nodiscard]] std::ptrdiff_t free() const { return free_; }

  /// The turn, for as long as the object lives.
  class Turn {
   public:
    /// Waits for it; where as many wait as may, it is not given, and at once.
    explicit Turn(Turns& turns) : turns_(turns), given_(--turns.free_ >= 0) {
      if (given_) {
        turns_.one_.lock();
      } else {
        ++turns_.free_;
      }
    }
    ~Turn() {
      if (!given_) return;
      turns_.one_.unlock();
      ++turns_.free_;
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    Turn(Turn&&) = delete;
    Turn& operator=(Turn&&) = delete;

    [[nodiscard]] bool given() const { return given_; }

   private:
    Turns& turns_;
    bool given_;
  };

 private:
  std::atomic<std::ptrdiff_t> free_;
  std::mutex one_;
};

}  // namespace standin
