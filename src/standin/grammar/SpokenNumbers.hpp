#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// The ways in which digits are said, each a list of words with one blank between them and each once: as a
/// number, as a year, in pairs, one by one. `digits` are 1 or more ASCII digits; beyond six they are said one
/// by one only.
std::vector<std::string> SpokenNumber(std::string_view digits);
/// The ways in which a decade such as the "80" of "80s" or the "1980" of "1980s" is said; none where it is no
/// such number.
std::vector<std::string> SpokenDecade(std::string_view digits);
/// "first" for "1"; none for what is larger than 99 or not a number.
std::vector<std::string> SpokenOrdinal(std::string_view digits);
/// The value of a Roman number from II to XX in capital letters; 0 for any other text.
int RomanValue(std::string_view text);

}  // namespace standin
