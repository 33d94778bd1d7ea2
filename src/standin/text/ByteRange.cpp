#include "standin/text/ByteRange.hpp"

#include <algorithm>
#include <charconv>

namespace standin {
namespace {

constexpr std::string_view kUnit = "bytes=";
constexpr std::size_t kMostDigits = 18;

/// From the first byte on, to the last one with it; without a first one so many of the last bytes.
struct Asked {
  std::optional<std::size_t> first;
  std::optional<std::size_t> last;
};

/// Nothing for an empty text. False when it is no number.
bool ReadNumber(std::string_view text, std::optional<std::size_t>& number) {
  if (text.empty()) return true;
  if (text.size() > kMostDigits || text.find_first_not_of("0123456789") != std::string_view::npos)
    return false;
  std::from_chars(text.data(), text.data() + text.size(), number.emplace());
  return true;
}

std::optional<Asked> Read(std::string_view header) {
  if (!header.starts_with(kUnit)) return std::nullopt;
  header.remove_prefix(kUnit.size());
  const std::size_t dash = header.find('-');
  Asked asked;
  const bool read = dash != std::string_view::npos && ReadNumber(header.substr(0, dash), asked.first) &&
                    ReadNumber(header.substr(dash + 1), asked.last);
  if (!read || (!asked.first && !asked.last)) return std::nullopt;
  if (asked.first && asked.last && *asked.last < *asked.first) return std::nullopt;
  return asked;
}

}  // namespace

bool IsOneRange(std::string_view header) { return Read(header).has_value(); }

std::optional<ByteRange> RangeOf(std::string_view header, std::size_t size) {
  const std::optional<Asked> asked = Read(header);
  if (!asked) return std::nullopt;
  if (!asked->first) {
    const std::size_t count = std::min(*asked->last, size);
    if (count == 0) return std::nullopt;
    return ByteRange{size - count, count};
  }
  if (*asked->first >= size) return std::nullopt;
  const std::size_t last = std::min(asked->last.value_or(size), size - 1);
  return ByteRange{*asked->first, last - *asked->first + 1};
}

}  // namespace standin
