#pragma once
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// A voice command pattern: words, (one|of|these) choices and [optional] words, nested at will.
class VoicePattern {
 public:
  /// Never fails: a bracket without its partner closes at the end of the pattern.
  explicit VoicePattern(std::string_view pattern);
  VoicePattern(const VoicePattern&) = delete;
  VoicePattern& operator=(const VoicePattern&) = delete;
  VoicePattern(VoicePattern&&) noexcept;
  VoicePattern& operator=(VoicePattern&&) noexcept;
  ~VoicePattern();

  /// True when the whole text fits, without regard to case and to the number of blanks.
  [[nodiscard]] bool fits(std::string_view text) const;

 private:
  struct Part;
  using Sequence = std::vector<Part>;
  class Reader;
  static std::vector<std::size_t> ends(const Sequence& sequence, const std::vector<std::string>& words,
                                       std::vector<std::size_t> starts);

  std::unique_ptr<std::vector<Sequence>> choices_;
};

}  // namespace standin
