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
  constexpr std::array<std::pair<std::string_view, int>, 20> kAnswers{
      {{"first", 0},     {"the first", 0},     {"the first one", 0},  {"one", 0}, {"1", 0},   {"yes", 0},
       {"second", 1},    {"the second", 1},    {"the second one", 1}, {"two", 1}, {"2", 1},   {"third", 2},
       {"the third", 2}, {"the third one", 2}, {"three", 2},          {"3", 2},   {"no", -1}, {"neither", -1},
       {"none", -1},     {"cancel", -1}}};
  const std::string words = SaidWords(text);
  const auto* const found =
      std::find_if(kAnswers.begin(), kAnswers.end(), [&](const auto& each) { return each.first == words; });
  if (found == kAnswers.end()) return std::nullopt;
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
