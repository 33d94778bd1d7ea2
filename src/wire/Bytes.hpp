#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace wire {

/// Whole numbers of 32 bits with the lowest byte first, and texts behind their length.
inline void PutNumber(std::string& out, std::uint32_t value) {
  for (unsigned shift = 0; shift < 32; shift += 8) out += static_cast<char>(value >> shift);
}
inline void PutText(std::string& out, std::string_view text) {
  PutNumber(out, static_cast<std::uint32_t>(text.size()));
  out += text;
}

/// Reads foreign bytes from the front. Once something isn't there, everything is 0 or empty, and it has
/// failed.
class Bytes {
 public:
  explicit Bytes(std::string_view content) : left_(content) {}

  std::uint8_t byte() {
    const std::string_view one = take(1);
    return one.empty() ? 0 : static_cast<std::uint8_t>(one.front());
  }
  std::uint32_t number() { return static_cast<std::uint32_t>(little(4)); }
  std::uint64_t longNumber() { return little(8); }
  /// Within the content.
  std::string_view text() { return take(number()); }

  void fail() {
    good_ = false;
    left_ = {};
  }
  [[nodiscard]] std::size_t left() const { return left_.size(); }
  /// Nothing was missing and nothing is left.
  [[nodiscard]] bool whole() const { return good_ && left_.empty(); }
  [[nodiscard]] bool good() const { return good_; }

 private:
  std::string_view take(std::size_t size) {
    if (size > left_.size()) {
      fail();
      return {};
    }
    const std::string_view taken = left_.substr(0, size);
    left_.remove_prefix(size);
    return taken;
  }
  std::uint64_t little(std::size_t size) {
    const std::string_view taken = take(size);
    std::uint64_t value = 0;
    for (std::size_t i = taken.size(); i-- > 0;) value = value << 8U | static_cast<unsigned char>(taken[i]);
    return value;
  }

  std::string_view left_;
  bool good_ = true;
};

}  // namespace wire
