#include "ear/decoder/ForeignWords.hpp"

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

#include <algorithm>
#include <array>
#include <utility>

#include "ear/decoder/Phones.hpp"

namespace ear {
namespace {

constexpr std::array<std::string_view, 5> kLanguages{"de", "fr-fr", "es", "it", "sv"};

struct Language {
  std::string_view name;
  std::string_view letters;
};
constexpr std::array kLetters{Language{"de", "äöüßÄÖÜ"}, Language{"fr-fr", "àâæçéèêëîïôœùûüÿÀÂÆÇÉÈÊËÎÏÔŒÙÛÜ"},
                              Language{"es", "áéíñóúüÁÉÍÑÓÚÜ"}, Language{"it", "àèéìíîòóùúÀÈÉÌÒÙ"},
                              Language{"sv", "åäöéøæÅÄÖÉØÆ"}};

/// Letters outside of ASCII.
std::vector<std::string_view> ForeignLetters(std::string_view word) {
  std::vector<std::string_view> all;
  for (std::size_t at = 0; at < word.size();) {
    std::size_t end = at + 1;
    while (end < word.size() && (static_cast<unsigned char>(word[end]) & 0xC0U) == 0x80) ++end;
    if (end > at + 1) all.push_back(word.substr(at, end - at));
    at = end;
  }
  return all;
}

constexpr int kSounds = 2;  // in the International Phonetic Alphabet

std::string SoundsOf(const std::string& word) {
  const void* text = word.c_str();
  std::string all;
  // It goes on clause by clause, and for a text without any it never comes to its end.
  for (int clauses = 0; clauses < 2 && text != nullptr; ++clauses) {
    const char* sounds = espeak_TextToPhonemes(&text, espeakCHARS_UTF8, kSounds);
    if (sounds == nullptr) break;
    all += sounds;
  }
  return all;
}

/// The synthesiser is prepared once and never ended: its end waits for a thread that may not have begun.
bool Speaks() {
  static const bool speaks = [] {
    espeak_ng_InitializePath(nullptr);
    return espeak_ng_Initialize(nullptr) == ENS_OK;
  }();
  return speaks;
}

}  // namespace

std::vector<std::string_view> LanguagesOf(std::string_view word) {
  const std::vector<std::string_view> letters = ForeignLetters(word);
  std::vector<std::string_view> languages;
  for (const Language& each : kLetters) {
    if (std::all_of(letters.begin(), letters.end(), [&](std::string_view letter) {
          return each.letters.find(letter) != std::string_view::npos;
        }))
      languages.push_back(each.name);
  }
  return languages.empty() ? std::vector<std::string_view>(kLanguages.begin(), kLanguages.end()) : languages;
}

std::vector<std::vector<std::string>> ForeignWays(const std::vector<std::string>& words) {
  std::vector<std::vector<std::string>> all(words.size());
  if (!Speaks()) return all;
  const auto add = [&](std::string_view language, const auto& speaks) {
    if (espeak_SetVoiceByName(std::string(language).c_str()) != EE_OK) return;
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (!speaks(words[i])) continue;
      std::string phones = PhonesOf(SoundsOf(words[i]));
      if (!phones.empty() && std::find(all[i].begin(), all[i].end(), phones) == all[i].end())
        all[i].push_back(std::move(phones));
    }
  };
  // A voice takes longer to load than a word to say.
  for (const std::string_view language : kLanguages) {
    add(language, [&](const std::string& word) {
      const std::vector<std::string_view> known = LanguagesOf(word);
      return std::find(known.begin(), known.end(), language) != known.end();
    });
  }
  add("en-us", [](const std::string&) { return true; });
  return all;
}

}  // namespace ear
