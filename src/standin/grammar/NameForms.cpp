#include "standin/grammar/NameForms.hpp"

#include <algorithm>
#include <array>
#include <queue>
#include <unordered_set>
#include <utility>

#include "standin/grammar/SpokenNumbers.hpp"
#include "standin/text/Folding.hpp"

namespace standin {
namespace {

/// A longer name is only said as it is written: it would have no end of ways.
constexpr std::size_t kMostWords = 40;
constexpr std::size_t kMostBytes = 400;
constexpr std::size_t kLongestWord = 32;
constexpr std::size_t kMostSteps = 4000;
constexpr std::size_t kLongestSpelt = 5;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsCapital(char c) { return c >= 'A' && c <= 'Z'; }
bool IsSmall(char c) { return c >= 'a' && c <= 'z'; }
/// Of a word; bytes outside of ASCII belong to letters.
bool IsPart(char c) {
  return IsDigit(c) || IsCapital(c) || IsSmall(c) || static_cast<unsigned char>(c) >= 0x80;
}
/// "’" and its like are no letters, but stand within words.
bool IsApostrophe(char c) { return c == '\'' || c == '`'; }

bool All(std::string_view text, bool (*test)(char)) { return std::all_of(text.begin(), text.end(), test); }
bool HasDigit(std::string_view text) { return std::any_of(text.begin(), text.end(), &IsDigit); }

/// "UnMute" to "un", "mute": only words of at least two letters each, so that "McCoy" is one too, but "iPod"
/// isn't.
std::vector<std::string> HumpsOf(std::string_view piece) {
  std::vector<std::string> humps;
  std::size_t start = 0;
  for (std::size_t i = 1; i <= piece.size(); ++i) {
    if (i < piece.size() && !(IsSmall(piece[i - 1]) && IsCapital(piece[i]))) continue;
    if (i - start < 2) return {};
    humps.push_back(Folded(piece.substr(start, i - start)));
    start = i;
  }
  return humps.size() < 2 ? std::vector<std::string>() : humps;
}

/// Latin letters beyond those of English, or an accent that stands behind its letter.
bool HasForeignLetter(std::string_view piece) {
  for (std::size_t i = 0; i + 1 < piece.size(); ++i) {
    const auto first = static_cast<unsigned char>(piece[i]);
    const auto second = static_cast<unsigned char>(piece[i + 1]);
    const bool sign = first == 0xC3 && (second == 0x97 || second == 0xB7);  // "×", "÷"
    if ((first >= 0xC3 && first <= 0xC9 && !sign) || first == 0xCC) return true;
    if (first == 0xE1 && second >= 0xB8 && second <= 0xBB) return true;
  }
  return false;
}

void AddPiece(std::string_view piece, std::vector<NameWord>& words) {
  const std::string folded = Folded(piece);
  const bool capitals = All(piece, &IsCapital);
  for (std::size_t start = 0; start < folded.size();) {
    const std::size_t end = std::min(
        static_cast<std::size_t>(
            std::find_if_not(folded.begin() + static_cast<std::ptrdiff_t>(start), folded.end(), &IsPart) -
            folded.begin()),
        folded.size());
    if (end > start) words.push_back({folded.substr(start, end - start), capitals});
    start = end + 1;
  }
  if (words.empty() || words.back().folded != folded) return;
  words.back().humps = HumpsOf(piece);
  if (HasForeignLetter(piece)) words.back().foreign = piece;
}

/// A way to say the next words of a name.
struct Way {
  std::size_t taken = 1;
  std::string words;
  int distance = 1;
  int cost = 1;  ///< what makes it come later
};

/// Typed, what is nearest to how a name is written comes first. Spoken, no digit is left, and what people
/// would say comes first.
enum class Manner { kTyped, kSpoken };

std::string Spelt(std::string_view letters) {
  std::string all;
  for (const char c : letters) all += (all.empty() ? "" : " ") + std::string(1, c);
  return all;
}

struct Short {
  std::string_view written;
  std::string_view said;
  bool beforeNumber = false;
};
constexpr std::array kShorts{Short{"vol", "volume"},      Short{"pt", "part"},         Short{"pts", "parts"},
                             Short{"no", "number", true}, Short{"nr", "number", true}, Short{"op", "opus"},
                             Short{"feat", "featuring"},  Short{"ft", "featuring"},    Short{"vs", "versus"},
                             Short{"mr", "mister"},       Short{"mrs", "missus"},      Short{"dr", "doctor"},
                             Short{"st", "saint"},        Short{"jr", "junior"},       Short{"sr", "senior"},
                             Short{"n", "and"},           Short{"w", "with"},          Short{"ep", "e p"},
                             Short{"lp", "l p"},          Short{"dj", "d j"},          Short{"mc", "m c"}};

/// The letters that are left of a word's end and beginning when its apostrophe has become a blank.
constexpr std::array<std::string_view, 8> kEnds{"t", "s", "m", "d", "ll", "re", "ve", "n"};
constexpr std::array<std::string_view, 6> kBeginnings{"o", "d", "l", "n", "m", "y"};

class Speaker {
 public:
  explicit Speaker(std::string_view name) : words_(NameWords(name)) {}

  [[nodiscard]] std::vector<NameForm> forms(std::size_t most) const {
    if (words_.empty()) return {};
    if (isLong()) return {{written(), 0}};
    std::vector<NameForm> forms = found(Manner::kTyped, most);
    if (std::none_of(words_.begin(), words_.end(),
                     [](const NameWord& word) { return HasDigit(word.folded); }))
      return forms;
    // The nearest of many ways hold a digit here or there, which nobody can say.
    const bool all = forms.size() < most;
    const std::size_t typed = all ? forms.size() : std::max<std::size_t>(1, most / 3);
    std::vector<NameForm> spoken = found(Manner::kSpoken, all ? 1 : most - typed);
    std::vector<NameForm> once;
    std::unordered_set<std::string> known;
    const auto take = [&](NameForm& form) {
      if (once.size() < most && known.insert(form.words).second) once.push_back(std::move(form));
    };
    take(forms.front());
    if (!spoken.empty()) take(spoken.front());
    for (std::size_t i = 1; i < typed; ++i) take(forms[i]);
    for (std::size_t i = 1; i < spoken.size(); ++i) take(spoken[i]);
    for (std::size_t i = typed; i < forms.size(); ++i) take(forms[i]);  // where both have found the same
    return once;
  }

 private:
  /// The first ones, by what their ways cost.
  [[nodiscard]] std::vector<NameForm> found(Manner manner, std::size_t most) const {
    struct Begun {
      int cost;
      std::size_t order;  ///< of those that cost the same the first comes first
      int distance;
      std::size_t at;
      std::string words;
      bool operator<(const Begun& other) const {
        return std::pair(cost, order) > std::pair(other.cost, other.order);
      }
    };
    std::vector<std::vector<Way>> ways;
    for (std::size_t at = 0; at < words_.size(); ++at)
      ways.push_back(manner == Manner::kTyped ? waysAt(at) : spokenWaysAt(at));
    std::vector<NameForm> forms;
    std::priority_queue<Begun> open;
    std::unordered_set<std::string> known;
    std::size_t steps = 0;
    open.push({0, 0, 0, 0, {}});
    while (!open.empty() && forms.size() < most && steps < kMostSteps) {
      const Begun begun = open.top();
      open.pop();
      if (begun.at == words_.size()) {
        if (known.insert(begun.words).second) forms.push_back({begun.words, begun.distance});
        continue;
      }
      for (const Way& way : ways[begun.at]) {
        open.push({begun.cost + way.cost, ++steps, begun.distance + way.distance, begun.at + way.taken,
                   begun.words + (begun.words.empty() ? "" : " ") + way.words});
      }
    }
    return forms;
  }
  [[nodiscard]] bool isLong() const {
    std::size_t bytes = 0;
    for (const NameWord& word : words_) {
      bytes += word.folded.size() + 1;
      if (word.folded.size() > kLongestWord) return true;
    }
    return bytes > kMostBytes || words_.size() > kMostWords;
  }
  [[nodiscard]] std::string written() const {
    std::string all;
    for (const NameWord& word : words_) all += (all.empty() ? "" : " ") + word.folded;
    return all;
  }
  [[nodiscard]] bool is(std::size_t at, std::string_view word) const {
    return at < words_.size() && words_[at].folded == word;
  }
  [[nodiscard]] bool numberAt(std::size_t at) const {
    return at < words_.size() && All(words_[at].folded, &IsDigit);
  }
  [[nodiscard]] bool letterAt(std::size_t at) const {
    return at < words_.size() && words_[at].folded.size() == 1 && IsSmall(words_[at].folded.front());
  }

  /// What the short word there is short for; the empty text where it is none.
  [[nodiscard]] std::string_view inFull(std::size_t at) const {
    for (const Short& each : kShorts)
      if (each.written == words_[at].folded && (!each.beforeNumber || numberAt(at + 1))) return each.said;
    return {};
  }

  [[nodiscard]] std::vector<Way> spokenWaysAt(std::size_t at) const {
    std::vector<Way> ways = waysAt(at);
    std::erase_if(ways, [](const Way& way) { return HasDigit(way.words); });
    const std::string_view full = inFull(at);
    const auto natural = full.empty() ? ways.begin()
                                      : std::find_if(ways.begin(), ways.end(),
                                                     [&](const Way& way) { return way.words == full; });
    for (Way& way : ways) way.cost = 1;
    if (natural != ways.end()) natural->cost = 0;
    return ways;
  }

  [[nodiscard]] std::vector<Way> waysAt(std::size_t at) const {
    const NameWord& word = words_[at];
    std::vector<Way> ways{{1, word.folded, 0, 0}};
    const auto add = [&](std::size_t taken, std::string said) { ways.push_back({taken, std::move(said)}); };
    if (numberAt(at)) {
      for (std::string& way : SpokenNumber(word.folded)) add(1, std::move(way));
      if (is(at + 1, "s")) {
        add(2, word.folded + "s");
        for (std::string& way : SpokenDecade(word.folded)) add(2, std::move(way));
      }
    } else {
      if (std::any_of(word.folded.begin(), word.folded.end(), &IsDigit)) mixed(word.folded, add);
      if (const std::string_view full = inFull(at); !full.empty()) add(1, std::string(full));
      letters(at, add);
      if (word.humps.size() > 1) {
        std::string apart;
        for (const std::string& hump : word.humps) apart += (apart.empty() ? "" : " ") + hump;
        add(1, apart);
      }
    }
    joined(at, add);
    return ways;
  }

  template <class Add>
  void letters(std::size_t at, const Add& add) const {
    const NameWord& word = words_[at];
    if (word.capitals) {
      if (const int roman = RomanValue(Capital(word.folded)); roman > 0)
        add(1, SpokenNumber(std::to_string(roman)).front());
      if (word.folded.size() > 1 && word.folded.size() <= kLongestSpelt) add(1, Spelt(word.folded));
    }
  }

  static std::string Capital(std::string_view text) {
    std::string all;
    for (const char c : text) all += IsSmall(c) ? static_cast<char>(c - 'a' + 'A') : c;
    return all;
  }

  /// Letters and digits in one: "10cc", "u2", "80s", "1st".
  template <class Add>
  static void mixed(const std::string& word, const Add& add) {
    const auto isDigit = [](char c) { return IsDigit(c); };
    const auto digitsEnd =
        static_cast<std::size_t>(std::find_if_not(word.begin(), word.end(), isDigit) - word.begin());
    const std::string digits = word.substr(0, digitsEnd);
    const std::string rest = word.substr(digitsEnd);
    if (!digits.empty() && rest == "s") {
      for (std::string& way : SpokenDecade(digits)) add(1, std::move(way));
    }
    if (!digits.empty() && (rest == "st" || rest == "nd" || rest == "rd" || rest == "th")) {
      for (std::string& way : SpokenOrdinal(digits)) add(1, std::move(way));
    }
    // Part by part: digits in their ways, letters spelt or read.
    std::vector<std::string> all{""};
    std::string apart;
    for (std::size_t start = 0; start < word.size();) {
      std::size_t end = start + 1;
      while (end < word.size() && IsDigit(word[end]) == IsDigit(word[start])) ++end;
      const std::string part = word.substr(start, end - start);
      std::vector<std::string> said;
      if (IsDigit(word[start])) {
        said = SpokenNumber(part);
      } else {
        if (part.size() <= kLongestSpelt) said.push_back(Spelt(part));
        if (part.size() > 1) said.push_back(part);
      }
      std::vector<std::string> next;
      for (const std::string& before : all)
        for (const std::string& each : said)
          if (next.size() < kMostForms)
            next.emplace_back(before).append(before.empty() ? "" : " ").append(each);
      all = std::move(next);
      apart += (apart.empty() ? "" : " ") + part;
      start = end;
    }
    add(1, apart);
    for (std::string& each : all) add(1, std::move(each));
  }

  /// What was one word before its apostrophe or its dots were lost.
  template <class Add>
  void joined(std::size_t at, const Add& add) const {
    if (letterAt(at) && letterAt(at + 1)) {  // "r e m": the whole run
      if (at > 0 && letterAt(at - 1)) return;
      std::size_t end = at;
      std::string all;
      for (; letterAt(end); ++end) all += words_[end].folded;
      if (all.size() <= kLongestSpelt) add(end - at, all);
      return;
    }
    if (at + 1 >= words_.size() || numberAt(at) || numberAt(at + 1)) return;
    const std::string& word = words_[at].folded;
    const std::string& next = words_[at + 1].folded;
    const bool end = word.size() > 1 && std::find(kEnds.begin(), kEnds.end(), next) != kEnds.end();
    const bool beginning =
        next.size() > 1 && std::find(kBeginnings.begin(), kBeginnings.end(), word) != kBeginnings.end();
    if (end || beginning) add(2, word + next);
    // "i m", "i ve": a word of one letter has such an end as well.
    if (word == "i" && next.size() > 1 && std::find(kEnds.begin(), kEnds.end(), next) != kEnds.end())
      add(2, word + next);
  }

  std::vector<NameWord> words_;
};

}  // namespace

std::vector<NameWord> NameWords(std::string_view text) {
  std::vector<NameWord> words;
  for (std::size_t start = 0; start < text.size();) {
    const char c = text[start];
    if (c == '&' || c == '+') {
      words.push_back({"and"});
      ++start;
    } else if (IsPart(c)) {
      std::size_t end = start + 1;
      while (end < text.size() && (IsPart(text[end]) || IsApostrophe(text[end]))) ++end;
      AddPiece(text.substr(start, end - start), words);
      start = end;
    } else {
      ++start;
    }
  }
  return words;
}

std::vector<NameForm> FormsOf(std::string_view name, std::size_t most) { return Speaker(name).forms(most); }

}  // namespace standin
