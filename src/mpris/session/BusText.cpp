#include "mpris/session/BusText.hpp"

#include <array>
#include <string_view>

#include "base/Attempt.hpp"
#include "base/Interchange.hpp"
#include "base/Text.hpp"

namespace mpris {

namespace {

constexpr std::size_t kLongest = 4096;
constexpr std::string_view kDigits = "0123456789ABCDEF";

bool IsControl(unsigned char byte) { return byte < 0x20 || byte == 0x7F; }

/// Without a character that was cut at the end.
std::string Shortened(const std::string& text) {
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end);
}

bool IsPlain(char c) {
  constexpr std::string_view kMarks = "-._~/!$&'()*+,;=:@";
  const bool letter = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  return letter || kMarks.find(c) != std::string_view::npos;
}

/// What is escaped in an address already stays so.
std::string Escaped(std::string_view text, bool isAddress) {
  constexpr std::string_view kOfAddresses = "%?#[]";
  std::string escaped;
  for (const char c : text) {
    if (IsPlain(c) || (isAddress && kOfAddresses.find(c) != std::string_view::npos)) {
      escaped += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    escaped += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
  }
  return escaped;
}

}  // namespace

std::string BusText(const std::string& text) {
  std::string shown = base::InterchangeUtf8(text.size() > kLongest ? Shortened(text) : text);
  for (char& c : shown)
    if (IsControl(static_cast<unsigned char>(c))) c = ' ';
  return shown;
}

std::string AddressOf(const std::string& source) {
  constexpr std::string_view kFile = "file://";
  if (source.starts_with('/')) return std::string(kFile) + Escaped(source, false);
  for (const char* kind : {"http://", "https://", "file://"})
    if (source.starts_with(kind)) return Escaped(source, true);
  return {};
}

std::string Hex(const std::string& text) {
  std::string digits;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    digits += {kDigits[byte >> 4U], kDigits[byte & 15U]};
  }
  return digits;
}

std::string FromHex(const std::string& digits) {
  std::string text;
  if (digits.size() % 2 != 0) return text;
  base::Attempt step;
  const bool all = step([&] {
    for (std::size_t at = 0; at < digits.size(); at += 2)
      text += static_cast<char>(base::HexDigit(digits[at]) * 16 + base::HexDigit(digits[at + 1]));
  });
  return all ? text : std::string();
}

}  // namespace mpris
