#pragma once
#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace bench {

/// How long it takes, in milliseconds.
inline double Milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Of several; 0 of none.
inline double Median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace bench
