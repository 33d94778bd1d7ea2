#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

// Numbers out of bytes. Bytes beyond the end count as 0, so a reader need not ask before each field.
namespace engine::tags {

inline std::uint64_t Byte(std::string_view bytes, std::size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}

/// `count` bytes from `at`, the greatest first.
inline std::uint64_t Big(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < count; ++i) value = value << 8U | Byte(bytes, at + i);
  return value;
}

/// `count` bytes from `at`, the smallest first.
inline std::uint64_t Little(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t i = count; i-- > 0;) value = value << 8U | Byte(bytes, at + i);
  return value;
}

/// Four bytes of seven bits each.
inline std::uint32_t Sevens(std::string_view bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i)
    value = value << 7U | (static_cast<std::uint32_t>(Byte(bytes, at + i)) & 0x7FU);
  return value;
}

/// Up to the end, if that comes first.
inline std::string_view Part(std::string_view bytes, std::size_t at,
                             std::size_t count = std::string_view::npos) {
  return at < bytes.size() ? bytes.substr(at, count) : std::string_view();
}

}  // namespace engine::tags
