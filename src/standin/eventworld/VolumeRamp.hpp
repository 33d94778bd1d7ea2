#pragma once
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "base/Loop.hpp"

namespace standin {

/// A volume that goes evenly from one level to another, in per cent.
struct VolumeRamp {
  std::int32_t from = 0;
  std::int32_t to = 0;
  base::Milliseconds length{0};

  [[nodiscard]] std::int32_t at(base::Milliseconds passed) const {
    if (passed >= length) return to;
    const double part = static_cast<double>(passed.count()) / static_cast<double>(length.count());
    return from + static_cast<std::int32_t>(std::lround((to - from) * part));
  }
  /// How long a step of one per cent takes; short enough to be no step for the ear, long enough for the bus.
  [[nodiscard]] base::Milliseconds step() const {
    constexpr base::Milliseconds kShortest(100);
    const std::int64_t steps = std::max(std::abs(to - from), 1);
    return std::max(kShortest, base::Milliseconds(length.count() / steps));
  }
};

}  // namespace standin
