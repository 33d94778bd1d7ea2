#include "standin/voice/VoicePattern.hpp"

#include <algorithm>
#include <utility>

#include "base/Text.hpp"

namespace standin {

struct VoicePattern::Part {
  std::string word;  ///< empty for a bracket
  bool optional = false;
  std::vector<Sequence> choices;
};

class VoicePattern::Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  /// The alternatives up to the bracket that closes them.
  std::vector<Sequence> choices(int depth) {
    std::vector<Sequence> all(1);
    std::string word;
    const auto endWord = [&] {
      if (!word.empty()) all.back().push_back({std::exchange(word, {}), false, {}});
    };
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      if (c == '(' || c == '[') {
        endWord();
        if (depth < kDeepest) all.back().push_back({{}, c == '[', choices(depth + 1)});
      } else if (c == ')' || c == ']') {
        if (depth > 0) break;
        endWord();
      } else if (c == '|') {
        endWord();
        all.emplace_back();
      } else if (c == ' ' || c == '\t') {
        endWord();
      } else {
        word += c;
      }
    }
    endWord();
    return all;
  }

 private:
  static constexpr int kDeepest = 32;
  std::string_view text_;
  std::size_t at_ = 0;
};

VoicePattern::VoicePattern(std::string_view pattern)
    : choices_(std::make_unique<std::vector<Sequence>>(Reader(base::LowerCase(pattern)).choices(0))) {}
VoicePattern::VoicePattern(VoicePattern&&) noexcept = default;
VoicePattern& VoicePattern::operator=(VoicePattern&&) noexcept = default;
VoicePattern::~VoicePattern() = default;

std::vector<std::size_t> VoicePattern::ends(const Sequence& sequence, const std::vector<std::string>& words,
                                            std::vector<std::size_t> starts) {
  for (const Part& part : sequence) {
    std::vector<std::size_t> next;
    if (!part.word.empty()) {
      for (const std::size_t start : starts) {
        if (start < words.size() && words[start] == part.word) next.push_back(start + 1);
      }
    } else {
      if (part.optional) next = starts;
      for (const Sequence& choice : part.choices) {
        const std::vector<std::size_t> reached = ends(choice, words, starts);
        next.insert(next.end(), reached.begin(), reached.end());
      }
      std::sort(next.begin(), next.end());
      next.erase(std::unique(next.begin(), next.end()), next.end());
    }
    starts = std::move(next);
    if (starts.empty()) break;
  }
  return starts;
}

bool VoicePattern::fits(std::string_view text) const {
  const std::string folded = base::LowerCase(text);
  std::vector<std::string> words;
  for (const std::string& word : base::Split(folded, ' ')) {
    if (!word.empty()) words.push_back(word);
  }
  if (words.empty()) return false;
  return std::any_of(choices_->begin(), choices_->end(), [&](const Sequence& choice) {
    const std::vector<std::size_t> reached = ends(choice, words, {0});
    return std::find(reached.begin(), reached.end(), words.size()) != reached.end();
  });
}

}  // namespace standin
