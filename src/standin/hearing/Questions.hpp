#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/Loop.hpp"
#include "standin/hearing/Understanding.hpp"

namespace standin {

/// What the house has asked back, of each session the last, and which of the choices an answer means. A
/// question is open for a minute, and of a hundred the oldest is forgotten.
class Questions {
 public:
  using Choice = Understanding::Choice;
  void ask(const std::string& session, const std::vector<Choice>& choices, base::Milliseconds now);
  void forget(const std::string& session) { asked_.erase(session); }

  struct Answer {
    int choice = 0;  ///< from 0 on, perhaps beyond the last; -1 for none of them
    std::vector<Choice> choices;
  };
  /// Nothing where the session was asked nothing, or the text is no answer; otherwise the question is over.
  std::optional<Answer> answer(const std::string& session, const std::string& text, bool spoken,
                               base::Milliseconds now);

 private:
  struct Question {
    std::vector<Choice> choices;
    base::Milliseconds asked{0};
  };
  std::map<std::string, Question> asked_;
};

}  // namespace standin
