#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace standin {

/// Words that lead from place to place, and steps between places that take no word but may tell something
/// (`output`). Names that begin alike share the way as long as they are alike, so that the places reached by
/// a text are found in a time by its own words, however many names there are. Without circles.
class WordGraph {
 public:
  using Place = std::uint32_t;
  static constexpr std::uint32_t kNoOutput = 0;
  struct Step {
    Place from = 0;
    Place to = 0;
    std::uint32_t output = kNoOutput;
    std::int32_t distance = 0;
  };
  struct Arc {
    Place from = 0;
    std::uint32_t word = 0;
    Place to = 0;
  };

  Place add() { return places_++; }
  void addStep(const Step& step) { steps_.push_back(step); }
  /// The place behind these words, which stand with one blank between them.
  Place follow(Place from, std::string_view words);
  /// To be called once, behind the last addition and before any question.
  void finish();

  [[nodiscard]] Place places() const { return places_; }
  [[nodiscard]] const std::vector<std::string>& words() const { return words_; }
  [[nodiscard]] const std::vector<Arc>& arcs() const { return arcs_; }
  [[nodiscard]] const std::vector<Step>& steps() const { return steps_; }
  /// The nearest first.
  [[nodiscard]] std::span<const Step> stepsFrom(Place place) const;
  /// Where a word leads from a place; nothing where it leads nowhere.
  [[nodiscard]] std::optional<Place> after(Place from, std::string_view word) const;

 private:
  static std::uint64_t keyOf(Place from, std::uint32_t word) {
    return (static_cast<std::uint64_t>(from) << 32U) | word;
  }
  std::uint32_t numberOf(std::string_view word);

  Place places_ = 0;
  std::vector<Arc> arcs_;
  std::vector<Step> steps_;
  std::vector<std::size_t> firstStep_;  ///< by place, and one behind the last
  std::vector<std::string> words_;
  std::unordered_map<std::string, std::uint32_t> numbers_;
  std::unordered_map<std::uint64_t, Place> children_;
};

}  // namespace standin
