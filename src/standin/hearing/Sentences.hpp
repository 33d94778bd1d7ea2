#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "standin/grammar/Grammar.hpp"
#include "standin/hearing/HouseGrammar.hpp"
#include "standin/hearing/Understanding.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// What the sentences that were found mean to the house: for which devices they are, and how a person knows
/// them.
class Sentences {
 public:
  using Choice = Understanding::Choice;
  Sentences(const House& house, const HouseGrammar& grammar) : house_(house), grammar_(grammar) {}

  /// That listen to an event; none where there is no such event.
  [[nodiscard]] std::vector<std::int32_t> devicesOf(std::int32_t event) const;
  /// Of the quick-play device among them; the empty text where there is none.
  [[nodiscard]] std::string categoryOf(const std::vector<std::int32_t>& refs) const;
  /// The command with the name that the library has for what is played.
  [[nodiscard]] std::string labelOf(const std::string& category, const std::string& command) const;
  /// Words the commands as their devices are to hear them. What nobody listens to any more can't be meant.
  void settle(std::vector<Said>& said) const;
  /// What somebody who is asked back chooses from, each once: the sentences in the patterns' words. Where two
  /// are the same but for a word that was left out, that word stands there too.
  [[nodiscard]] std::vector<Choice> choicesOf(const std::vector<Said>& said) const;

 private:
  const House& house_;
  const HouseGrammar& grammar_;
};

}  // namespace standin
