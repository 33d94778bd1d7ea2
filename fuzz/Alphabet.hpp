#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace support {

/// The input as a text in which characters come up that chance seldom makes: bytes that no UTF-8 has stand
/// for noncharacters, which are well-formed but no text to many a library.
inline std::string Spelled(const std::uint8_t* data, std::size_t size) {
  constexpr std::uint8_t kFirst = 0xF8;
  constexpr std::array kCharacters{"\xEF\xBF\xBE",     "\xEF\xBF\xBF",     "\xEF\xB7\x90", "\xEF\xB7\xAF",
                                   "\xF0\x9F\xBF\xBE", "\xF4\x8F\xBF\xBF", "\xEF\xBB\xBF"};
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    const auto place = static_cast<std::size_t>(data[i] - kFirst);
    if (data[i] >= kFirst && place < kCharacters.size())
      text += kCharacters.at(place);
    else
      text += static_cast<char>(data[i]);
  }
  return text;
}

}  // namespace support
