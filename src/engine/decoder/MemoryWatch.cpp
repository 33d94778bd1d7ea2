#include "engine/decoder/MemoryWatch.hpp"

#include <unistd.h>

#include <fstream>
#include <utility>

namespace engine {
namespace {

/// Bytes of the process that lie in memory; 0 where nobody tells.
std::size_t Held() {
  std::size_t all = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace

MemoryWatch::MemoryWatch(base::Loop& loop, std::size_t most, std::function<void()> exceeded)
    : most_(most),
      exceeded_(std::move(exceeded)),
      timer_(loop.makeTimer(std::chrono::seconds(1), [this] { look(); })) {}

void MemoryWatch::begin() {
  before_ = Held();
  timer_->enabled(true);
}

void MemoryWatch::end() { timer_->enabled(false); }

void MemoryWatch::look() {
  const std::size_t held = Held();
  if (held <= before_ || held - before_ <= most_) return;
  end();
  exceeded_();
}

}  // namespace engine
