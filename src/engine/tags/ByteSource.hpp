#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace engine::tags {

/// An open file, of which a bounded part is ever in memory, and of which only so much is read that no file
/// can keep its reader busy for long. What can't be had is empty, as is what lies beyond the end.
class ByteSource {
 public:
  static constexpr std::size_t kMost = std::size_t{64} * 1024;
  static constexpr std::size_t kLargestCopy = std::size_t{16} * 1024 * 1024;

  /// The descriptor is lent. `size` in bytes.
  ByteSource(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  ByteSource(ByteSource&&) = delete;
  ByteSource& operator=(ByteSource&&) = delete;
  ~ByteSource() = default;

  [[nodiscard]] std::uint64_t size() const { return size_; }
  /// Up to `length` bytes, at most `kMost`, fewer at the file's end. They hold until the next call.
  std::string_view at(std::uint64_t offset, std::size_t length);
  /// All of `length` bytes; empty when they are more than `kLargestCopy` or the file ends before.
  std::string copy(std::uint64_t offset, std::uint64_t length);

 private:
  bool fill(std::uint64_t offset, std::size_t length);

  int descriptor_;
  std::uint64_t size_;
  std::uint64_t start_ = 0;
  int reads_ = 0;
  std::uint64_t bytes_ = 0;  ///< read so far
  std::string large_;        ///< in the place of the window for what does not fit it
  std::string_view window_;
  std::array<char, 8192> small_;  // not set to zero: it costs a scan what reading costs
};

}  // namespace engine::tags
