#include "standin/player/Title.hpp"

#include "base/Text.hpp"

namespace standin {

std::string MarkOf(const std::string& name, const std::string& source) {
  // FNV-1a: quick, and what it is asked is whether two texts are the same, not what they are.
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  for (const std::string* text : {&name, &source}) {
    for (const char character : *text + '\0') {
      hash ^= static_cast<unsigned char>(character);
      hash *= 0x100000001B3ULL;
    }
  }
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string mark;
  for (int shift = 60; shift >= 0; shift -= 4) mark += kDigits[(hash >> static_cast<unsigned>(shift)) & 15U];
  return mark;
}

bool IsBy(const Title& title, const std::string& artist) {
  return base::SameText(title.albumArtist, artist) || base::SameText(title.artist, artist);
}

}  // namespace standin
