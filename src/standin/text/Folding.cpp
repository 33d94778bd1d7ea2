#include "standin/text/Folding.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <utility>

namespace standin {
namespace {

using Code = utf8proc_int32_t;

// Letters that Unicode takes for letters of their own, though most people type them as another.
constexpr std::array<std::pair<Code, std::string_view>, 14> kLetters{{
    {0x00E6, "ae"},
    {0x00F0, "d"},
    {0x00F8, "o"},
    {0x00FE, "th"},
    {0x0111, "d"},
    {0x0127, "h"},
    {0x0131, "i"},
    {0x0138, "k"},
    {0x0142, "l"},
    {0x014B, "n"},
    {0x0153, "oe"},
    {0x0167, "t"},
    {0x0180, "b"},
    {0x0268, "i"},
}};

// "Don’t", "Don't" and "dont" are one word.
bool IsApostrophe(Code code) {
  constexpr std::array<Code, 8> kAll{'\'', '`', 0x00B4, 0x02BB, 0x02BC, 0x2018, 0x2019, 0x2032};
  return std::find(kAll.begin(), kAll.end(), code) != kAll.end();
}

// Only marks that readers of a script leave out when they type: those of others make words of them.
bool IsAccent(Code code) {
  constexpr std::array<std::pair<Code, Code>, 9> kRanges{{{0x0300, 0x036F},
                                                          {0x0483, 0x0487},
                                                          {0x0591, 0x05C7},
                                                          {0x064B, 0x0655},
                                                          {0x0670, 0x0670},
                                                          {0x1AB0, 0x1AFF},
                                                          {0x1DC0, 0x1DFF},
                                                          {0x20D0, 0x20FF},
                                                          {0xFE20, 0xFE2F}}};
  return std::any_of(kRanges.begin(), kRanges.end(),
                     [&](const auto& range) { return code >= range.first && code <= range.second; });
}

bool IsDash(Code code) { return (code >= 0x2010 && code <= 0x2015) || code == 0x2212; }

bool IsBlank(Code code) {
  switch (utf8proc_category(code)) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
    case UTF8PROC_CATEGORY_CC: return true;
    default: return false;
  }
}

void AddAscii(std::string& out, char character) {
  const auto code = static_cast<unsigned char>(character);
  if (character >= 'A' && character <= 'Z') {
    out += static_cast<char>(character + ('a' - 'A'));
  } else if (code <= ' ' || code == 0x7F) {
    out += ' ';
  } else if (!IsApostrophe(code)) {
    out += character;
  }
}

void AddPart(std::string& out, Code code) {
  if (code < 0x80) return AddAscii(out, static_cast<char>(code));
  if (IsAccent(code) || IsApostrophe(code)) return;
  const auto* const letter =
      std::lower_bound(kLetters.begin(), kLetters.end(), code,
                       [](const auto& each, Code wanted) { return each.first < wanted; });
  if (letter != kLetters.end() && letter->first == code) {
    out += letter->second;
  } else if (IsDash(code)) {
    out += '-';
  } else if (IsBlank(code)) {
    out += ' ';
  } else {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto length = utf8proc_encode_char(code, bytes.data());
    out.append(bytes.begin(), bytes.begin() + length);
  }
}

void AddCharacter(std::string& out, Code code) {
  if (IsApostrophe(code)) return;
  std::array<Code, 32> parts{};
  int boundary = 0;
  const auto options = static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT |
                                                      UTF8PROC_CASEFOLD | UTF8PROC_IGNORE);
  const auto count = utf8proc_decompose_char(code, parts.data(), parts.size(), options, &boundary);
  // None is known to have more parts than there is room for; it would stay as it is.
  if (count < 0 || static_cast<std::size_t>(count) > parts.size()) return AddPart(out, code);
  for (utf8proc_ssize_t i = 0; i < count; ++i) AddPart(out, parts.at(static_cast<std::size_t>(i)));
}

}  // namespace

std::string Folded(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (static_cast<unsigned char>(text[i]) < 0x80) {
      AddAscii(out, text[i++]);
      continue;
    }
    Code code = 0;
    const auto* at = reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + i;  // NOLINT: its own alphabet
    const auto length = utf8proc_iterate(at, static_cast<utf8proc_ssize_t>(text.size() - i), &code);
    if (length <= 0) {
      out += text[i++];
    } else {
      AddCharacter(out, code);
      i += static_cast<std::size_t>(length);
    }
  }
  return out;
}

std::vector<std::string> SoughtWords(std::string_view sought) {
  const std::string folded = Folded(sought);
  std::vector<std::string> words;
  for (std::size_t start = 0; start < folded.size();) {
    const std::size_t end = std::min(folded.find(' ', start), folded.size());
    if (end > start) words.push_back(folded.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

}  // namespace standin
