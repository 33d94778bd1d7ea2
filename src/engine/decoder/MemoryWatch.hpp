#pragma once
#include <cstddef>
#include <functional>
#include <memory>

#include "base/Loop.hpp"

namespace engine {

/// Looks once a second at how much the process has grown since a title was opened. The libraries below the
/// decoder bound a block of memory, but not how many a list takes that a station never ends, or that a file
/// fills; so who opened it is told to give it up.
class MemoryWatch {
 public:
  /// `exceeded` is called on the loop's thread, once for each `begin`, when the process holds more than
  /// `most` bytes more than it did then.
  MemoryWatch(base::Loop& loop, std::size_t most, std::function<void()> exceeded);

  /// What is held from now on counts.
  void begin();
  /// Until the next `begin`. It wakes nothing.
  void end();

 private:
  void look();

  std::size_t most_;
  std::function<void()> exceeded_;
  std::size_t before_ = 0;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace engine
