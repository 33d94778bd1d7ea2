#include "engine/decoder/DataLimit.hpp"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <mutex>
#include <optional>

namespace engine {
namespace {

/// What the process has set, and what held before.
struct Limits {
  std::mutex mutex;
  int set = 0;
  rlim_t before = RLIM_INFINITY;
};

Limits& OfTheProcess() {
  static Limits limits;
  return limits;
}

/// Bytes that count against the bound; nothing where nobody tells.
std::optional<rlim_t> Taken() {
  rlim_t size = 0;
  rlim_t resident = 0;
  rlim_t shared = 0;
  rlim_t text = 0;
  rlim_t libraries = 0;
  rlim_t data = 0;
  if (!(std::ifstream("/proc/self/statm") >> size >> resident >> shared >> text >> libraries >> data))
    return std::nullopt;
  return data * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
}

void SetTo(rlim_t bytes) {
  rlimit limit{};
  if (::getrlimit(RLIMIT_DATA, &limit) != 0) return;
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  ::setrlimit(RLIMIT_DATA, &limit);
}

}  // namespace

void DataLimit::begin() {
  const std::optional<rlim_t> taken = Taken();
  if (!taken) return;
  Limits& limits = OfTheProcess();
  const std::lock_guard lock(limits.mutex);
  if (!set_ && limits.set++ == 0) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_DATA, &limit) == 0) limits.before = limit.rlim_cur;
  }
  set_ = true;
  SetTo(std::min(*taken + room_, limits.before));
}

void DataLimit::end() {
  if (!set_) return;
  set_ = false;
  Limits& limits = OfTheProcess();
  const std::lock_guard lock(limits.mutex);
  if (--limits.set == 0) SetTo(limits.before);
}

}  // namespace engine
