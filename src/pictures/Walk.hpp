#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pictures {

/// Goes through a file's bytes; behind their end there are zeros.
class Walk {
 public:
  explicit Walk(std::string_view bytes, std::size_t at = 0) : bytes_(bytes), at_(at) {}

  [[nodiscard]] std::size_t at() const { return at_; }
  /// False once more was asked for than there is.
  [[nodiscard]] bool inside() const { return at_ <= bytes_.size(); }
  [[nodiscard]] bool atEnd() const { return at_ >= bytes_.size(); }
  void skip(std::size_t count) { at_ += count; }
  void to(std::size_t place) { at_ = place; }

  std::uint32_t little(unsigned count) {
    std::uint32_t number = 0;
    for (unsigned i = 0; i < count; ++i) number |= std::uint32_t{byte()} << (8 * i);
    return number;
  }
  std::uint32_t big(unsigned count) {
    std::uint32_t number = 0;
    for (unsigned i = 0; i < count; ++i) number = number << 8U | byte();
    return number;
  }
  std::uint8_t byte() {
    const std::size_t place = at_++;
    return place < bytes_.size() ? static_cast<std::uint8_t>(bytes_[place]) : std::uint8_t{0};
  }
  /// As many of the bytes as there are.
  std::string_view take(std::size_t count) {
    const std::string_view part = atEnd() ? std::string_view() : bytes_.substr(at_, count);
    at_ += count;
    return part;
  }

 private:
  std::string_view bytes_;
  std::size_t at_;
};

}  // namespace pictures
