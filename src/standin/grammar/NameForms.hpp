#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// A word of a name: as a listener compares it, and how it is written.
struct NameWord {
  std::string folded;                ///< without case, accents, apostrophes and punctuation
  bool capitals = false;             ///< written in Latin capitals alone
  std::vector<std::string> humps{};  ///< the folded parts of a word such as "UnMute"; none of another
  std::string foreign{};             ///< as it is written, where it has letters such as "ö" or "é"
};
/// The words of a name or of what somebody has typed; "&" and "+" are the word "and". None for blanks and
/// punctuation alone.
std::vector<NameWord> NameWords(std::string_view text);

/// A way in which a name is said or typed: its folded words with one blank between them.
struct NameForm {
  std::string words;
  int distance = 0;  ///< how many of its words are said in another way than they are written
  bool operator==(const NameForm&) const = default;
};

/// All ways in which a name is said, each once; at most `most` of them. The one as it is written comes first,
/// and for a name with digits the one that people would say second: it has all of them in words. The nearer
/// ones follow; where there are too many, two thirds of the room are kept for ways without any digit. Digits
/// are said as a number, a year and one by one; capitals and single
/// letters are spelt or read as a word; apostrophes may have been lost to a blank ("Don t"); "Vol", "Pt" and
/// their like are said in full. A name of more than 40 words or 400 bytes, or with a word of more than 32
/// bytes, is said as it is written only. None for a name without any letter or digit.
inline constexpr std::size_t kMostForms = 48;
std::vector<NameForm> FormsOf(std::string_view name, std::size_t most = kMostForms);

}  // namespace standin
