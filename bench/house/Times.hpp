#pragma once
#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

inline double Milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

/// The value that this share of the values doesn't exceed.
inline double Percentile(std::vector<double> values, double share) {
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}

}  // namespace bench
