#include "pictures/Shrinking.hpp"

#include <algorithm>

namespace pictures {
namespace {

constexpr std::size_t kColours = 3;

std::uint32_t Length(int value) { return static_cast<std::uint32_t>(value); }

}  // namespace

Shrinking::Shrinking(Size from, Size to)
    : from_(from), to_(to), missing_(Length(from.height)), sum_(kColours * Length(from.width)) {
  pixels_.reserve(kColours * Length(to.width) * Length(to.height));
}

void Shrinking::add(const std::uint8_t* row) {
  std::uint32_t left = Length(to_.height);
  while (left > 0) {
    const std::uint32_t part = std::min(left, missing_);
    for (std::size_t i = 0; i < sum_.size(); ++i) sum_[i] += part * row[i];
    left -= part;
    missing_ -= part;
    if (missing_ == 0) finishRow();
  }
}

void Shrinking::finishRow() {
  const std::uint64_t all = std::uint64_t{Length(from_.width)} * Length(from_.height);
  const std::uint64_t half = all / 2;  // so that it is rounded
  const auto add = [&](std::uint64_t sum) {
    // A picture has columns, so that the sum is one of something.
    pixels_.push_back(
        static_cast<std::uint8_t>(sum / all));  // NOLINT(clang-analyzer-core.UndefinedBinaryOperatorResult)
  };
  std::size_t column = 0;
  std::uint32_t left = Length(to_.width);  // of the old column
  for (int x = 0; x < to_.width; ++x) {
    std::uint64_t red = half;
    std::uint64_t green = half;
    std::uint64_t blue = half;
    for (std::uint32_t missing = Length(from_.width); missing > 0;) {
      const std::uint32_t part = std::min(left, missing);
      const std::uint32_t* colours = &sum_[kColours * column];
      red += std::uint64_t{part} * colours[0];
      green += std::uint64_t{part} * colours[1];
      blue += std::uint64_t{part} * colours[2];
      left -= part;
      missing -= part;
      if (left > 0) continue;
      left = Length(to_.width);
      ++column;
    }
    add(red);
    add(green);
    add(blue);
  }
  std::fill(sum_.begin(), sum_.end(), 0);
  missing_ = Length(from_.height);
}

}  // namespace pictures
