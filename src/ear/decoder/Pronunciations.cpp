#include "ear/decoder/Pronunciations.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <string_view>

// The library is written in C, and its headers don't say so.
extern "C" {
#include <flite/cst_lexicon.h>
#include <flite/cst_val.h>
cst_lexicon* cmu_lex_init();  // NOLINT(readability-identifier-naming): the lexicon has no header
}

namespace ear {
namespace {

constexpr std::array<std::string_view, 39> kPhones{"AA", "AE", "AH", "AO", "AW", "AY", "B",  "CH", "D",  "DH",
                                                   "EH", "ER", "EY", "F",  "G",  "HH", "IH", "IY", "JH", "K",
                                                   "L",  "M",  "N",  "NG", "OW", "OY", "P",  "R",  "S",  "SH",
                                                   "T",  "TH", "UH", "UW", "V",  "W",  "Y",  "Z",  "ZH"};

/// A phone of the lexicon in the dictionary's letters and without its stress; empty for a pause.
std::string PhoneOf(std::string_view written) {
  std::string phone;
  for (const char c : written)
    if (c >= 'a' && c <= 'z') phone += static_cast<char>(c - 'a' + 'A');
  if (phone == "AX") return "AH";
  return std::find(kPhones.begin(), kPhones.end(), phone) == kPhones.end() ? std::string() : phone;
}

std::string BySpelling(const std::string& word) {
  static const cst_lexicon* const lexicon = cmu_lex_init();
  const auto erase = [](cst_val* value) { delete_val(value); };
  const std::unique_ptr<cst_val, decltype(erase)> phones(lex_lookup(lexicon, word.c_str(), nullptr, nullptr),
                                                         erase);
  std::string all;
  for (const cst_val* each = phones.get(); each != nullptr; each = val_cdr(each)) {
    const std::string phone = PhoneOf(val_string(val_car(each)));
    if (!phone.empty()) all += (all.empty() ? "" : " ") + phone;
  }
  return all;
}

}  // namespace

Pronunciations::Pronunciations(const std::filesystem::path& dictionary) {
  std::ifstream in(dictionary);
  for (std::string line; std::getline(in, line);) {
    const std::size_t blank = line.find_first_of(" \t");
    if (blank == std::string::npos) continue;
    std::string word = line.substr(0, std::min(blank, line.find('(')));
    if (word.find('\'') == std::string::npos) continue;
    std::erase(word, '\'');
    const std::size_t phones = line.find_first_not_of(" \t", blank);
    if (!word.empty() && phones != std::string::npos) withoutApostrophe_[word].push_back(line.substr(phones));
  }
}

std::vector<std::string> Pronunciations::of(const std::string& word) const {
  const auto known = withoutApostrophe_.find(word);
  std::vector<std::string> ways =
      known == withoutApostrophe_.end() ? std::vector<std::string>() : known->second;
  const std::string spelling = BySpelling(word);
  if (!spelling.empty() && std::find(ways.begin(), ways.end(), spelling) == ways.end())
    ways.push_back(spelling);
  return ways;
}

}  // namespace ear
