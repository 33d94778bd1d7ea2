#include "ear/decoder/Phones.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace ear {
namespace {

using Sound = std::pair<std::string_view, std::string_view>;

/// Those of two letters first.
constexpr std::array kSounds{
    Sound{"aɪ", "AY"}, Sound{"aʊ", "AW"}, Sound{"ɔʏ", "OY"},   Sound{"ɔø", "OY"}, Sound{"ɔɪ", "OY"},
    Sound{"oɪ", "OY"}, Sound{"eɪ", "EY"}, Sound{"oʊ", "OW"},   Sound{"əʊ", "OW"}, Sound{"tʃ", "CH"},
    Sound{"dʒ", "JH"}, Sound{"œɾ", "ER"}, Sound{"œr", "ER"},   Sound{"øɾ", "ER"}, Sound{"ør", "ER"},
    Sound{"ɜɹ", "ER"}, Sound{"i", "IY"},  Sound{"ɪ", "IH"},    Sound{"e", "EY"},  Sound{"ɛ", "EH"},
    Sound{"æ", "AE"},  Sound{"a", "AA"},  Sound{"ɑ", "AA"},    Sound{"ɒ", "AA"},  Sound{"ɐ", "AH"},
    Sound{"ʌ", "AH"},  Sound{"ə", "AH"},  Sound{"ɔ", "AO"},    Sound{"o", "OW"},  Sound{"u", "UW"},
    Sound{"ʊ", "UH"},  Sound{"y", "UW"},  Sound{"ʉ", "UW"},    Sound{"ʏ", "UH"},  Sound{"ɵ", "UH"},
    Sound{"ø", "ER"},  Sound{"œ", "ER"},  Sound{"ɜ", "ER"},    Sound{"ɚ", "ER"},  Sound{"ɝ", "ER"},
    Sound{"p", "P"},   Sound{"b", "B"},   Sound{"β", "B"},     Sound{"t", "T"},   Sound{"ʈ", "T"},
    Sound{"d", "D"},   Sound{"ɖ", "D"},   Sound{"k", "K"},     Sound{"c", "K"},   Sound{"ɡ", "G"},
    Sound{"g", "G"},   Sound{"ɣ", "G"},   Sound{"f", "F"},     Sound{"v", "V"},   Sound{"ʋ", "V"},
    Sound{"s", "S"},   Sound{"z", "Z"},   Sound{"ʃ", "SH"},    Sound{"ʂ", "SH"},  Sound{"ɕ", "SH"},
    Sound{"ç", "SH"},  Sound{"ɧ", "SH"},  Sound{"ʒ", "ZH"},    Sound{"θ", "TH"},  Sound{"ð", "DH"},
    Sound{"h", "HH"},  Sound{"x", "HH"},  Sound{"χ", "HH"},    Sound{"m", "M"},   Sound{"n", "N"},
    Sound{"ɳ", "N"},   Sound{"ɲ", "N Y"}, Sound{"ŋ", "NG"},    Sound{"l", "L"},   Sound{"ɫ", "L"},
    Sound{"ɭ", "L"},   Sound{"ʎ", "L Y"}, Sound{"ɹ", "R"},     Sound{"r", "R"},   Sound{"ɾ", "R"},
    Sound{"ʁ", "R"},   Sound{"ʀ", "R"},   Sound{"j", "Y"},     Sound{"ʝ", "Y"},   Sound{"w", "W"},
    Sound{"ɥ", "W"},   Sound{"ɟ", "JH"},  Sound{"\u0303", "N"}};  // the last is a vowel's nasality

/// Marks of length stand between sounds that belong together.
std::string WithoutMarks(std::string_view sounds) {
  constexpr std::array<std::string_view, 6> kMarks{"ˈ", "ˌ", "ː", "\u0361", "\u0329", "_"};
  std::string all;
  bool bracket = false;
  for (std::size_t at = 0; at < sounds.size();) {
    const auto* const mark = std::find_if(kMarks.begin(), kMarks.end(), [&](std::string_view each) {
      return sounds.substr(at).starts_with(each);
    });
    if (mark != kMarks.end()) {
      at += mark->size();
      continue;
    }
    const char c = sounds[at++];
    if (c == '(') bracket = true;
    if (!bracket) all += c;
    if (c == ')') bracket = false;
  }
  return all;
}

}  // namespace

std::string PhonesOf(std::string_view sounds) {
  const std::string plain = WithoutMarks(sounds);
  std::string phones;
  for (std::size_t at = 0; at < plain.size();) {
    const auto* const sound = std::find_if(kSounds.begin(), kSounds.end(), [&](const Sound& each) {
      return std::string_view(plain).substr(at).starts_with(each.first);
    });
    if (sound == kSounds.end()) {
      ++at;
      continue;
    }
    phones.append(phones.empty() ? "" : " ").append(sound->second);
    at += sound->first.size();
  }
  return phones;
}

}  // namespace ear
