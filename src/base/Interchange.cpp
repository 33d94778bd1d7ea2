#include "base/Interchange.hpp"

#include <algorithm>

#include "base/Text.hpp"

namespace base {

namespace {

/// How many bytes a noncharacter takes at this place of a well-formed text; 0 when there is none.
std::size_t NoncharacterAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) {
    return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
  };
  if (byte(0) == 0xEF) {
    const bool inBlock = byte(1) == 0xB7 && byte(2) >= 0x90 && byte(2) <= 0xAF;
    return inBlock || (byte(1) == 0xBF && byte(2) >= 0xBE) ? 3 : 0;
  }
  const bool lastOfPlane =
      byte(0) >= 0xF0 && (byte(1) & 0x0FU) == 0x0FU && byte(2) == 0xBF && byte(3) >= 0xBE;
  return lastOfPlane ? 4 : 0;
}

/// The next place at which a noncharacter could begin.
std::size_t NextCandidate(std::string_view text, std::size_t from) {
  const auto* found = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) >= 0xEF; });
  return static_cast<std::size_t>(found - text.begin());
}

}  // namespace

bool IsInterchangeUtf8(std::string_view text) {
  if (!IsPlainUtf8(text)) return false;
  for (std::size_t at = NextCandidate(text, 0); at < text.size(); at = NextCandidate(text, at + 1)) {
    if (NoncharacterAt(text, at) > 0) return false;
  }
  return true;
}

std::string InterchangeUtf8(std::string_view text) {
  const std::string repaired = RepairUtf8(text);
  std::string open;
  open.reserve(repaired.size());
  for (std::size_t at = 0; at < repaired.size();) {
    const std::size_t bad = NoncharacterAt(repaired, at);
    if (bad > 0)
      open += "\uFFFD";
    else
      open += repaired[at] == '\0' ? ' ' : repaired[at];
    at += std::max<std::size_t>(bad, 1);
  }
  return open;
}

std::size_t OffsetOfCharacter(std::string_view text, std::size_t count) {
  std::size_t at = 0;
  while (count-- > 0 && at < text.size()) {
    std::size_t bytes = 4;  // no more make one character
    while (bytes > 1 && CountCharacters(text.substr(at, bytes)) > 1) --bytes;
    at += std::min(bytes, text.size() - at);
  }
  return at;
}

}  // namespace base
