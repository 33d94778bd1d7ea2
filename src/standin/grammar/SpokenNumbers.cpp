#include "standin/grammar/SpokenNumbers.hpp"

#include <algorithm>
#include <array>

namespace standin {
namespace {

constexpr std::size_t kMostDigits = 6;
constexpr std::array kSmall{"zero",     "one",     "two",     "three",     "four",     "five",    "six",
                            "seven",    "eight",   "nine",    "ten",       "eleven",   "twelve",  "thirteen",
                            "fourteen", "fifteen", "sixteen", "seventeen", "eighteen", "nineteen"};
constexpr std::array kTens{"",      "ten",   "twenty",  "thirty", "forty",
                           "fifty", "sixty", "seventy", "eighty", "ninety"};
constexpr std::array kDecades{"",        "tens",    "twenties",  "thirties", "forties",
                              "fifties", "sixties", "seventies", "eighties", "nineties"};
constexpr std::array kOrdinals{"",          "first",     "second",      "third",      "fourth",
                               "fifth",     "sixth",     "seventh",     "eighth",     "ninth",
                               "tenth",     "eleventh",  "twelfth",     "thirteenth", "fourteenth",
                               "fifteenth", "sixteenth", "seventeenth", "eighteenth", "nineteenth"};
constexpr std::array kTenOrdinals{"",         "",         "twentieth",  "thirtieth", "fortieth",
                                  "fiftieth", "sixtieth", "seventieth", "eightieth", "ninetieth"};

using Ways = std::vector<std::string>;

int ValueOf(std::string_view digits) {
  int value = 0;
  for (const char c : digits) value = value * 10 + (c - '0');
  return value;
}

std::string Small(int value) { return kSmall.at(static_cast<std::size_t>(value)); }

/// 0 to 99.
std::string Pair(int value) {
  if (value < 20) return Small(value);
  const std::string tens = kTens.at(static_cast<std::size_t>(value / 10));
  return value % 10 == 0 ? tens : tens + " " + Small(value % 10);
}

/// 0 to 999,999; what stands behind the hundreds with an "and" before it or without.
std::string Cardinal(int value, bool with) {
  const std::string joint = with ? " and " : " ";
  if (value < 100) return Pair(value);
  if (value < 1000) {
    const std::string hundreds = Small(value / 100) + " hundred";
    return value % 100 == 0 ? hundreds : hundreds + joint + Pair(value % 100);
  }
  std::string thousands = Cardinal(value / 1000, with) + " thousand";
  const int rest = value % 1000;
  if (rest == 0) return thousands;
  return thousands + (rest < 100 ? joint : " ") + Cardinal(rest, with);
}

std::string OneByOne(std::string_view digits, const char* zero) {
  std::string all;
  for (const char c : digits) all += (all.empty() ? "" : " ") + (c == '0' ? zero : Small(c - '0'));
  return all;
}

/// The last two digits as years and three digits have them: "oh five", "eleven".
std::string Tail(int value) { return value < 10 ? "oh " + Small(value) : Pair(value); }

void AddYear(int value, Ways& ways) {
  const int first = value / 100;
  const int last = value % 100;
  if (last == 0) {
    if (first % 10 != 0) ways.push_back(Pair(first) + " hundred");
  } else {
    ways.push_back(Pair(first) + " " + Tail(last));
  }
}

void AddRepeats(std::string_view digits, Ways& ways) {
  for (std::size_t i = 0; i + 1 < digits.size(); ++i) {
    if (digits[i] != digits[i + 1]) continue;
    std::string all;
    for (std::size_t j = 0; j < digits.size(); ++j) {
      const std::string one = digits[j] == '0' ? "oh" : Small(digits[j] - '0');
      all += (all.empty() ? "" : " ") + (j == i ? "double " + one : one);
      if (j == i) ++j;
    }
    ways.push_back(all);
    return;
  }
}

Ways Once(const Ways& ways) {
  Ways once;
  for (const std::string& way : ways)
    if (std::find(once.begin(), once.end(), way) == once.end()) once.push_back(way);
  return once;
}

}  // namespace

std::vector<std::string> SpokenNumber(std::string_view digits) {
  Ways ways;
  const bool plain = digits.size() <= kMostDigits && (digits.front() != '0' || digits.size() == 1);
  if (plain) {
    const int value = ValueOf(digits);
    if (digits.size() == 4) AddYear(value, ways);
    ways.push_back(Cardinal(value, false));
    ways.push_back(Cardinal(value, true));
    if (digits.size() == 3 && value % 100 != 0) ways.push_back(Small(value / 100) + " " + Tail(value % 100));
  }
  ways.push_back(OneByOne(digits, "zero"));
  ways.push_back(OneByOne(digits, "oh"));
  if (digits.size() == 3 && digits.size() <= kMostDigits) AddRepeats(digits, ways);
  if (!plain && digits.size() <= kMostDigits) ways.push_back(Cardinal(ValueOf(digits), false));
  return Once(ways);
}

std::vector<std::string> SpokenDecade(std::string_view digits) {
  if ((digits.size() != 2 && digits.size() != 4) || digits.back() != '0') return {};
  const int value = ValueOf(digits);
  const auto tens = static_cast<std::size_t>(value % 100 / 10);
  if (digits.size() == 2) return tens == 0 ? Ways{} : Ways{kDecades.at(tens)};
  if (value < 1000) return {};
  if (tens == 0) {
    const int hundreds = value / 100;
    return {hundreds % 10 == 0 ? Cardinal(value / 1000, false) + " thousands" : Pair(hundreds) + " hundreds"};
  }
  return {Pair(value / 100) + " " + kDecades.at(tens)};
}

std::vector<std::string> SpokenOrdinal(std::string_view digits) {
  if (digits.empty() || digits.size() > 2) return {};
  const int value = ValueOf(digits);
  if (value == 0) return {};
  if (value < 20) return {kOrdinals.at(static_cast<std::size_t>(value))};
  const auto tens = static_cast<std::size_t>(value / 10);
  if (value % 10 == 0) return {kTenOrdinals.at(tens)};
  return {std::string(kTens.at(tens)) + " " + kOrdinals.at(static_cast<std::size_t>(value % 10))};
}

int RomanValue(std::string_view text) {
  constexpr std::array<std::string_view, 21> kAll{"",    "",     "II",  "III",  "IV",    "V",   "VI",
                                                  "VII", "VIII", "IX",  "X",    "XI",    "XII", "XIII",
                                                  "XIV", "XV",   "XVI", "XVII", "XVIII", "XIX", "XX"};
  if (text.empty()) return 0;
  const auto* const found = std::find(kAll.begin() + 2, kAll.end(), text);
  return found == kAll.end() ? 0 : static_cast<int>(found - kAll.begin());
}

}  // namespace standin
