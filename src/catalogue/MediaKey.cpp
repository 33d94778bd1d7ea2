#include "catalogue/MediaKey.hpp"

#include "base/Text.hpp"

namespace catalogue {

namespace {

bool BelongsToKey(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

}  // namespace

bool MakeMediaKey(std::string_view name, std::string& key) {
  key.resize(name.size());
  auto end = key.begin();
  char previous = ' ';  // so that no blank comes first
  for (const char c : name) {
    const char kept = BelongsToKey(c) ? c : ' ';
    if (kept != ' ' || previous != ' ') *end++ = kept;
    previous = kept;
  }
  key.erase(end, key.end());
  if (!key.empty() && key.back() == ' ') key.pop_back();
  return key == name;
}

std::string HexEncodeName(std::string_view text) {
  static constexpr const char* kDigits = "0123456789ABCDEF";
  std::string encoded(text.size() * 2, '\0');
  auto end = encoded.begin();
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= 16) *end++ = kDigits[code / 16];
    *end++ = kDigits[code % 16];
  }
  encoded.erase(end, encoded.end());
  return encoded;
}

std::string HexDecodeName(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size() / 2);
  for (std::size_t at = 0; at < text.size(); at += 2) {
    unsigned code = base::HexDigit(text[at]);
    if (at + 1 < text.size()) code = code * 16 + base::HexDigit(text[at + 1]);
    decoded += static_cast<char>(code);
  }
  return decoded;
}

}  // namespace catalogue
