#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// What can be said to an event: words, (one|of|these) choices and [optional] words, within each other at
/// will. A pattern is written by people and programs alike and is never refused as a whole but for its size
/// or depth:
///
/// - a bracket that nobody closes reaches to the end; one that closes nothing is passed over; one that is
///   closed by the other kind is closed all the same;
/// - a choice of nothing is left out, and so is a bracket without any choice: it can't be said;
/// - bars outside of all brackets part whole sentences;
/// - with more than `kLongest` bytes, or brackets more than `kDeepest` within each other, nothing can be
/// said.
///
/// `faults` tells each of these. Reading takes time by the length alone.
class Pattern {
 public:
  static constexpr std::size_t kLongest = std::size_t{4} << 20U;
  static constexpr int kDeepest = 32;
  static constexpr std::size_t kMostFaults = 20;

  struct Part;
  using Sequence = std::vector<Part>;
  enum class Kind { kWords, kChoice, kOptional };
  struct Part {
    Kind kind = Kind::kWords;
    std::string words{};              ///< as written, with one blank between them
    std::vector<Sequence> choices{};  ///< of a bracket; none of them is empty
  };

  explicit Pattern(std::string_view text);

  /// The sentences; none of them is empty.
  [[nodiscard]] const std::vector<Sequence>& sentences() const { return sentences_; }
  /// What is wrong with the text, in words, each with its place counted in characters from 1.
  [[nodiscard]] const std::vector<std::string>& faults() const { return faults_; }

 private:
  class Reader;
  std::vector<Sequence> sentences_;
  std::vector<std::string> faults_;
};

}  // namespace standin
