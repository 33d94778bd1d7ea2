#pragma once
#include <cstddef>

namespace support {

/// A machine without the memory for anything large: while this lives, allocations of at least `limit` bytes
/// fail. One at a time.
class ShortOfMemory {
 public:
  explicit ShortOfMemory(std::size_t limit);
  ~ShortOfMemory();
  ShortOfMemory(const ShortOfMemory&) = delete;
  ShortOfMemory& operator=(const ShortOfMemory&) = delete;
  ShortOfMemory(ShortOfMemory&&) = delete;
  ShortOfMemory& operator=(ShortOfMemory&&) = delete;
};

}  // namespace support
