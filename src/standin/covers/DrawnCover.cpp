#include "standin/covers/DrawnCover.hpp"

#include <utf8proc.h>

#include <array>
#include <cstdint>

#include "base/Text.hpp"

namespace standin {
namespace {

constexpr std::uint32_t kHues = 360;
constexpr std::uint32_t kTurn = 40;  ///< between the two colours of one picture

std::uint32_t HashOf(const std::string& text) {
  std::uint32_t hash = 2166136261U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return hash;
}

bool StandsForAWord(utf8proc_int32_t letter) {
  switch (utf8proc_category(letter)) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
    case UTF8PROC_CATEGORY_ND:
    case UTF8PROC_CATEGORY_NL: return true;
    default: return false;
  }
}

std::string Hue(std::uint32_t hue, const char* rest) {
  return "hsl(" + std::to_string(hue % kHues) + "," + rest + ")";
}

}  // namespace

// Letters and digits alone: none of them means anything in markup.
std::string InitialsOf(const std::string& name) {
  const std::string plain = base::RepairUtf8(name);
  std::string initials;
  int count = 0;
  bool within = false;
  const auto* at = reinterpret_cast<const utf8proc_uint8_t*>(plain.data());
  auto left = static_cast<utf8proc_ssize_t>(plain.size());
  while (left > 0 && count < 2) {
    utf8proc_int32_t letter = 0;
    const utf8proc_ssize_t length = utf8proc_iterate(at, left, &letter);
    if (length <= 0) break;
    const bool blank = letter == ' ' || letter == '-' || letter == '/' || letter == '_';
    if (!within && StandsForAWord(letter)) {
      std::array<utf8proc_uint8_t, 4> upper{};
      const utf8proc_ssize_t size = utf8proc_encode_char(utf8proc_toupper(letter), upper.data());
      initials.append(upper.begin(), upper.begin() + size);
      ++count;
      within = true;
    }
    if (blank) within = false;
    at += length;
    left -= length;
  }
  return initials;
}

std::string DrawnCover(const std::string& name) {
  const std::uint32_t hash = HashOf(base::LowerCase(name));
  const std::uint32_t hue = hash % kHues;
  const std::string initials = InitialsOf(name);
  // Without a name it is a record.
  const std::string sign =
      initials.empty()
          ? R"svg(<g fill="none" stroke="#fff" stroke-opacity=".75" stroke-width="10">)svg"
            R"svg(<circle cx="128" cy="128" r="72"/><circle cx="128" cy="128" r="18"/></g>)svg"
          : R"svg(<text x="128" y="128" dy=".35em" text-anchor="middle" font-family="system-ui,sans-serif" )svg"
            R"svg(font-weight="600" font-size="104" fill="#fff" fill-opacity=".88">)svg" +
                initials + "</text>";
  std::string svg =
      R"svg(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 256 256" width="256" height="256">)svg"
      R"svg(<defs><linearGradient id="g" x1="0" y1="0" x2="1" y2="1">)svg";
  svg += R"svg(<stop offset="0" stop-color=")svg" + Hue(hue, "32%,44%") + R"svg("/>)svg";
  svg += R"svg(<stop offset="1" stop-color=")svg" + Hue(hue + kTurn, "34%,30%") + R"svg("/>)svg";
  svg += R"svg(</linearGradient></defs><rect width="256" height="256" fill="url(#g)"/>)svg";
  return svg + sign + "</svg>";
}

}  // namespace standin
