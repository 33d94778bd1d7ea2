#pragma once
#include <cstdint>
#include <functional>
#include <string_view>

namespace pictures {

/// Hears of a row: three bytes for each pixel, red, green and blue, on white where the picture lets through.
using PngRow = std::function<void(const std::uint8_t* row)>;

/// Unpacks a PNG that isn't interlaced, row by row, so that a row is all that it takes of memory. False when
/// it doesn't go to its end; rows may have been told by then.
bool ReadPngRows(std::string_view bytes, const PngRow& row);

}  // namespace pictures
