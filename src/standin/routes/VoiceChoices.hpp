#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "standin/grammar/Pattern.hpp"

namespace standin {

/// Names of one choice in a pattern.
struct FoundNames {
  std::vector<std::string> names;  ///< as they would be written
  std::size_t total = 0;           ///< how many there are; `names` holds the first of them
};

/// The choice at a place of the pattern, told as the numbers of the sentence and of the part in it, and so on
/// within that part's choices: "0.2" or "0.2.5.1", each from 0. Null when there is none.
const Pattern::Part* ChoiceAt(const Pattern& pattern, std::string_view place);
/// Of the names of a choice those with all the words sought, in any order and without regard to capitals and
/// accents; at most `most` of them are told. Takes time by the number of names.
FoundNames NamesWith(const Pattern::Part& choice, std::string_view sought, std::size_t most);

}  // namespace standin
