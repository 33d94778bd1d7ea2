#pragma once
#include <cstddef>
#include <optional>
#include <string_view>

namespace standin {

/// Where a part of a content lies; at least one byte.
struct ByteRange {
  std::size_t first = 0;
  std::size_t count = 0;
};

/// Whether a Range header asks for one range of bytes, such as "bytes=0-99", "bytes=100-" or "bytes=-100".
bool IsOneRange(std::string_view header);
/// The part of a content of that size; nothing when none of it lies there, or the header asks for something
/// else than one range.
std::optional<ByteRange> RangeOf(std::string_view header, std::size_t size);

}  // namespace standin
