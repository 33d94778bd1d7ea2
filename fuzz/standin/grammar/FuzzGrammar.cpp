// A pattern in the first line, a sentence in the second, and bytes that choose a way through the pattern in
// the third: what a pattern says is understood, as the sentence that it is; any other text is no danger.
#include <algorithm>
#include <cstdint>
#include <string>

#include "fuzz/Alphabet.hpp"
#include "fuzz/Input.hpp"
#include "standin/grammar/Grammar.hpp"
#include "standin/grammar/NameForms.hpp"

namespace {

using standin::Pattern;
using support::Require;
using support::TakeLine;

/// A sentence of the pattern, as the bytes choose.
class Generator {
 public:
  explicit Generator(std::string bytes) : bytes_(std::move(bytes)) {}

  std::string one(const std::vector<Pattern::Sequence>& choices) {
    Require(!choices.empty());
    std::string all;
    for (const Pattern::Part& part : choices[next() % choices.size()]) {
      if (part.kind == Pattern::Kind::kOptional && next() % 2 == 0) continue;
      const std::string said = part.kind == Pattern::Kind::kWords ? part.words : one(part.choices);
      if (!said.empty()) all += (all.empty() ? "" : " ") + said;
    }
    return all;
  }

 private:
  std::size_t next() { return at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_++]) : 0; }
  std::string bytes_;
  std::size_t at_ = 0;
};

/// Whether the sentence is understood as what it is. Of more ways than are kept to understand it, its own may
/// be missing.
bool Found(const standin::Grammar& grammar, const std::string& sentence) {
  constexpr std::size_t kMostWays = 4;
  const std::string words = standin::SaidWords(sentence);
  const std::vector<standin::Said> all = grammar.match(sentence);
  return all.size() >= kMostWays || std::any_of(all.begin(), all.end(), [&](const standin::Said& each) {
           return standin::SaidWords(each.command) == words;
         });
}

void CheckForms(const std::string& text) {
  const std::vector<standin::NameForm> forms = standin::FormsOf(text);
  Require(forms.size() <= standin::kMostForms && forms.empty() == standin::NameWords(text).empty());
  Require(forms.empty() || (forms.front().words == standin::SaidWords(text) && forms.front().distance == 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text = support::Spelled(data, size);
  const Pattern pattern(TakeLine(text));
  const std::string sentence = TakeLine(text);
  Require(pattern.faults().size() <= Pattern::kMostFaults);
  const standin::Grammar grammar({{7, pattern}}, nullptr);
  CheckForms(sentence);
  for (const standin::Said& said : grammar.match(sentence)) Require(said.event == 7);
  const std::vector<standin::Said> near = grammar.near(sentence, 3);
  Require(near.size() <= 3);
  for (const standin::Said& each : near) {
    Require(Found(grammar, each.command) && Found(grammar, each.whole));
  }
  if (pattern.sentences().empty()) {
    Require(grammar.match(sentence).empty());
    return 0;
  }
  const std::string said = Generator(text).one(pattern.sentences());
  if (standin::SaidWords(said).empty()) return 0;  // all of it was left out, or is punctuation
  Require(Found(grammar, said));
  return 0;
}
