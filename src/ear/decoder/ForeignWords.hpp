#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace ear {

/// How words with letters that English doesn't have are pronounced, by a synthesiser of several languages: in
/// those of German, French, Spanish, Italian and Swedish that have these letters, and in English. For each
/// word, in its order, the ways in the decoder's phones with a blank between them, each once; none where the
/// synthesiser's voices are missing. By one thread of a process.
std::vector<std::vector<std::string>> ForeignWays(const std::vector<std::string>& words);

/// The languages, of those five, that have all the foreign letters of the word; all five where none has. By
/// the names of the synthesiser's voices.
std::vector<std::string_view> LanguagesOf(std::string_view word);

}  // namespace ear
