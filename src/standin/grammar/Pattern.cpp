#include "standin/grammar/Pattern.hpp"

#include <utility>

#include "base/Text.hpp"

namespace standin {

class Pattern::Reader {
 public:
  Reader(std::string_view text, std::vector<std::string>& faults) : text_(text), faults_(faults) {}

  /// The alternatives up to the bracket that closes them, which stands at `opened`; whole sentences for depth
  /// 0.
  std::vector<Sequence> choices(int depth, std::size_t opened) {
    std::vector<Sequence> all(1);
    bool closed = depth == 0;
    while (at_ < text_.size() && !tooDeep_) {
      const char c = text_[at_++];
      if (c == '(' || c == '[') {
        bracket(all.back(), c == '[' ? Kind::kOptional : Kind::kChoice, depth + 1);
      } else if (c == ')' || c == ']') {
        if (depth > 0) {
          closed = true;
          if ((text_[opened] == '(') != (c == ')')) fault(at_ - 1, "closes a bracket of the other kind");
          break;
        }
        fault(at_ - 1, "closes no bracket");
      } else if (c == '|') {
        if (all.back().empty()) {
          fault(at_ - 1, "ends an empty choice");
        } else {
          all.emplace_back();
        }
      } else if (static_cast<unsigned char>(c) > ' ') {
        word(all.back());
      }
    }
    if (!closed) fault(opened, "is never closed");
    if (all.back().empty()) {
      const bool nothing = depth == 0 && all.size() == 1;
      if (!nothing) fault(closed && depth > 0 ? at_ - 1 : at_, "ends an empty choice");
      all.pop_back();
    }
    return all;
  }
  [[nodiscard]] bool tooDeep() const { return tooDeep_; }

 private:
  void bracket(Sequence& sequence, Kind kind, int depth) {
    if (depth > kDeepest) {
      tooDeep_ = true;
      return;
    }
    Part part{kind, {}, choices(depth, at_ - 1)};
    if (!part.choices.empty()) sequence.push_back(std::move(part));
  }

  /// The rest of a word whose first letter has been taken.
  void word(Sequence& sequence) {
    const std::size_t start = at_ - 1;
    while (at_ < text_.size() && static_cast<unsigned char>(text_[at_]) > ' ' &&
           std::string_view("()[]|").find(text_[at_]) == std::string_view::npos) {
      ++at_;
    }
    if (sequence.empty() || sequence.back().kind != Kind::kWords) {
      sequence.push_back({});
    } else {
      sequence.back().words += ' ';
    }
    sequence.back().words += text_.substr(start, at_ - start);
  }

  void fault(std::size_t place, const char* what) {
    if (faults_.size() >= kMostFaults) return;
    // Places are looked for in order, but for the openings of brackets that turn out to be left open.
    if (place < counted_) counted_ = characters_ = 0;
    characters_ += base::CountCharacters(text_.substr(counted_, place - counted_));
    counted_ = place;
    const bool there = place < text_.size();
    faults_.push_back(
        (there ? "“" + std::string(1, text_[place]) + "” at character " : "The end at character ") +
        std::to_string(characters_ + 1) + " " + what);
  }

  std::string_view text_;
  std::vector<std::string>& faults_;
  std::size_t at_ = 0;
  std::size_t counted_ = 0;
  std::size_t characters_ = 0;
  bool tooDeep_ = false;
};

Pattern::Pattern(std::string_view text) {
  if (text.size() > kLongest) {
    faults_.emplace_back("The pattern is longer than 4 MiB: nothing of it is read");
    return;
  }
  Reader reader(text, faults_);
  sentences_ = reader.choices(0, 0);
  if (reader.tooDeep()) {
    sentences_.clear();
    faults_ = {"More than 32 brackets stand within each other: nothing of it is read"};
  }
}

}  // namespace standin
