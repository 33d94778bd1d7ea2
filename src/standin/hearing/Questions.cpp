#include "standin/hearing/Questions.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <utility>

#include "standin/grammar/Grammar.hpp"

namespace standin {
namespace {

constexpr std::size_t kMost = 100;
constexpr base::Milliseconds kAnswerWithin = std::chrono::seconds(60);

/// Which of the choices an answer means: 0 and so on, -1 for none of them; nothing where it is no answer.
std::optional<int> ChoiceIn(const std::string& text) {
  constexpr std::array<std::string_view, 3> kPlaces{"first", "second", "third"};
  constexpr std::array<std::pair<std::string_view, int>, 11> kOthers{{{"one", 0},
                                                                      {"1", 0},
                                                                      {"yes", 0},
                                                                      {"two", 1},
                                                                      {"2", 1},
                                                                      {"three", 2},
                                                                      {"3", 2},
                                                                      {"no", -1},
                                                                      {"neither", -1},
                                                                      {"none", -1},
                                                                      {"cancel", -1}}};
  const std::string words = SaidWords(text);
  std::string_view place = words;
  if (place.starts_with("the ")) place.remove_prefix(4);
  if (place.ends_with(" one")) place.remove_suffix(4);
  for (std::size_t i = 0; i < kPlaces.size(); ++i)
    if (kPlaces.at(i) == place) return static_cast<int>(i);
  const auto* const found =
      std::find_if(kOthers.begin(), kOthers.end(), [&](const auto& each) { return each.first == words; });
  if (found == kOthers.end()) return std::nullopt;
  return found->second;
}

}  // namespace

void Questions::ask(const std::string& session, const std::vector<Choice>& choices, base::Milliseconds now) {
  if (asked_.size() >= kMost && !asked_.contains(session)) {
    asked_.erase(std::min_element(asked_.begin(), asked_.end(), [](const auto& left, const auto& right) {
      return left.second.asked < right.second.asked;
    }));
  }
  asked_[session] = {choices, now};
}

std::optional<Questions::Answer> Questions::answer(const std::string& session, const std::string& text,
                                                   bool spoken, base::Milliseconds now) {
  const auto question = asked_.find(session);
  std::optional<int> choice = ChoiceIn(text);
  if (question == asked_.end() || !choice) return std::nullopt;
  const Question asked = std::move(question->second);
  asked_.erase(question);
  if (now - asked.asked > kAnswerWithin) return std::nullopt;
  // To the ear "first" is like "third", which nobody says of two.
  if (spoken && choice == 2 && asked.choices.size() < 3) choice = 0;
  return Answer{*choice, asked.choices};
}

}  // namespace standin
