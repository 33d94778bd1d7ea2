#pragma once
#include <cstdint>
#include <vector>

#include "pictures/Picture.hpp"

namespace pictures {

/// Makes a picture smaller while its rows come: each new pixel is the mean of those that it covers. Three
/// bytes a pixel.
class Shrinking {
 public:
  /// Both at least 1 by 1; `to` is not larger than `from`, which has at most `kMostPixels` and no side above
  /// 16 million.
  Shrinking(Size from, Size to);

  void add(const std::uint8_t* row);
  /// Once all rows have been added: the new picture, row by row.
  [[nodiscard]] const std::vector<std::uint8_t>& pixels() const { return pixels_; }

 private:
  void finishRow();

  Size from_;
  Size to_;
  // An old row is as high as the new picture has rows, and a new one as the old picture has: so all is whole
  // numbers.
  std::uint32_t missing_;           ///< until the new row is full
  std::vector<std::uint32_t> sum_;  ///< of each old column's colours in the new row
  std::vector<std::uint8_t> pixels_;
};

}  // namespace pictures
