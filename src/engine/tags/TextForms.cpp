#include "engine/tags/TextForms.hpp"

#include <zlib.h>

#include <algorithm>

#include "base/Text.hpp"
#include "engine/tags/Bytes.hpp"

namespace engine::tags {

std::string FromLatin(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 2);
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x80) {
      result += c;
    } else {
      result += static_cast<char>(0xC0U | (code >> 6U));
      result += static_cast<char>(0x80U | (code & 0x3FU));
    }
  }
  return result;
}

std::string FromUtf16(std::string_view bytes, bool big) {
  const std::uint64_t mark = Big(bytes, 0, 2);
  if (mark == 0xFEFF || mark == 0xFFFE) {
    big = mark == 0xFEFF;
    bytes.remove_prefix(2);
  }
  std::string result;
  result.reserve(bytes.size());
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    auto code = static_cast<std::int32_t>(big ? Big(bytes, at, 2) : Little(bytes, at, 2));
    if (code == 0) break;
    if (code < 0x80) {
      result += static_cast<char>(code);
      continue;
    }
    if (code >= 0xD800 && code < 0xDC00) {
      const auto low = static_cast<std::int32_t>(big ? Big(bytes, at + 2, 2) : Little(bytes, at + 2, 2));
      if (low >= 0xDC00 && low < 0xE000) {
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        at += 2;
      }
    }
    result += base::CharacterOf(code >= 0xD800 && code < 0xE000 ? 0xFFFD : code);
  }
  return result;
}

std::string_view Shortened(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t end = most;
  while (end > 0 && most - end < 4 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
  return text.substr(0, end);
}

std::string FromBase64(std::string_view text) {
  std::string result;
  result.reserve(text.size() / 4 * 3);
  unsigned bits = 0;
  unsigned count = 0;
  for (const char c : text) {
    unsigned value = 0;
    if (c >= 'A' && c <= 'Z') {
      value = static_cast<unsigned>(c - 'A');
    } else if (c >= 'a' && c <= 'z') {
      value = static_cast<unsigned>(c - 'a') + 26;
    } else if (c >= '0' && c <= '9') {
      value = static_cast<unsigned>(c - '0') + 52;
    } else if (c == '+' || c == '/') {
      value = c == '+' ? 62 : 63;
    } else if (c == '=') {
      break;
    } else {
      continue;
    }
    bits = bits << 6U | value;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    result += static_cast<char>(bits >> count & 0xFFU);
  }
  return result;
}

std::string Unpacked(std::string_view packed, std::size_t most) {
  std::string result;
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return result;
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  int state = Z_OK;
  while (state == Z_OK && result.size() < most) {
    const std::size_t had = result.size();
    const std::size_t step = std::min<std::size_t>(most - had, std::size_t{64} * 1024);
    result.resize(had + step);
    stream.next_out = reinterpret_cast<Bytef*>(result.data() + had);
    stream.avail_out = static_cast<uInt>(step);
    state = inflate(&stream, Z_NO_FLUSH);
    result.resize(had + step - stream.avail_out);
    if (result.size() == had) break;
  }
  inflateEnd(&stream);
  return result;
}

}  // namespace engine::tags
