#include "base/Text.hpp"

#include <algorithm>
#include <cstdint>
#include <locale>

#include "base/Failure.hpp"

namespace base {

namespace {

constexpr char32_t kIllFormed = 0xFFFFFFFF;

/// Reads the character at `at` and moves past it; an ill-formed byte is one step of `kIllFormed`.
char32_t Next(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  std::size_t more = 0;
  char32_t code = 0;
  char32_t smallest = 0;
  if (lead < 0x80) {
    ++at;
    return lead;
  }
  if (lead >= 0xC2 && lead <= 0xDF) {
    more = 1, code = lead & 0x1FU, smallest = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    more = 2, code = lead & 0x0FU, smallest = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    more = 3, code = lead & 0x07U, smallest = 0x10000;
  }
  if (more == 0 || text.size() - at <= more) {
    ++at;
    return kIllFormed;
  }
  for (std::size_t i = 1; i <= more; ++i) {
    if ((byte(at + i) & 0xC0U) != 0x80U) {
      ++at;
      return kIllFormed;
    }
    code = (code << 6U) | (byte(at + i) & 0x3FU);
  }
  if (code < smallest || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    ++at;
    return kIllFormed;
  }
  at += more + 1;
  return code;
}

void Append(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0U | (code >> 6U));
    out += static_cast<char>(0x80U | (code & 0x3FU));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0U | (code >> 12U));
    out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
    out += static_cast<char>(0x80U | (code & 0x3FU));
  } else {
    out += static_cast<char>(0xF0U | (code >> 18U));
    out += static_cast<char>(0x80U | ((code >> 12U) & 0x3FU));
    out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
    out += static_cast<char>(0x80U | (code & 0x3FU));
  }
}

bool IsPlain(char c) { return static_cast<unsigned char>(c) < 0x80; }
char LowerPlain(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

const std::ctype<wchar_t>& Folding() {
  static const std::locale utf8("C.UTF-8");
  return std::use_facet<std::ctype<wchar_t>>(utf8);
}

}  // namespace

std::string LowerCase(std::string_view text) {
  // Most texts are plain from end to end.
  const auto* plainEnd = std::find_if_not(text.begin(), text.end(), IsPlain);
  std::string out(text.begin(), plainEnd);
  std::transform(out.begin(), out.end(), out.begin(), LowerPlain);
  for (auto at = static_cast<std::size_t>(plainEnd - text.begin()); at < text.size();) {
    if (IsPlain(text[at])) {
      out += LowerPlain(text[at++]);
      continue;
    }
    const std::size_t start = at;
    const char32_t code = Next(text, at);
    if (code == kIllFormed)
      out.append(text.substr(start, at - start));
    else
      Append(out, static_cast<char32_t>(Folding().tolower(static_cast<wchar_t>(code))));
  }
  return out;
}

bool SameText(std::string_view left, std::string_view right) { return LowerCase(left) == LowerCase(right); }

std::string TrimBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return std::string(text);
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  if (text.empty()) return pieces;
  for (std::size_t start = 0;;) {
    const std::size_t end = text.find(separator, start);
    pieces.emplace_back(text.substr(start, end == std::string_view::npos ? end : end - start));
    if (end == std::string_view::npos) return pieces;
    start = end + 1;
  }
}

std::int32_t FirstCharacter(std::string_view text) {
  if (text.empty()) return -1;
  std::size_t at = 0;
  const char32_t code = Next(text, at);
  return code == kIllFormed ? static_cast<unsigned char>(text.front()) : static_cast<std::int32_t>(code);
}

std::string CharacterOf(std::int32_t code) {
  std::string text;
  const bool valid = code > 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  Append(text, valid ? static_cast<char32_t>(code) : U'\uFFFD');
  return text;
}

unsigned HexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A') + 10;
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a') + 10;
  throw Failure(number::kTypeMismatch);
}

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); ++count) Next(text, at);
  return count;
}

bool IsPlainUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '\0' || Next(text, at) == kIllFormed) return false;
  }
  return true;
}

std::string RepairUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const char32_t code = Next(text, at);
    Append(out, code == kIllFormed ? U'\uFFFD' : code);
  }
  return out;
}

}  // namespace base
