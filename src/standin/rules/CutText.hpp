#pragma once
#include <string>

namespace standin {

/// At most so many bytes of it, with "…" in place of the rest, and no half character before that.
inline std::string CutText(const std::string& text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t end = most;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end) + "…";
}

}  // namespace standin
