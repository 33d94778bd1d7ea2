#pragma once
#include <string>

#include "standin/events/Rule.hpp"

namespace standin {

/// Rules in words, as lists, history and log show them. Answers at once, with what is known: the plug-in's
/// own words where it has told them already.
class EventWords {
 public:
  EventWords() = default;
  EventWords(const EventWords&) = delete;
  EventWords& operator=(const EventWords&) = delete;
  EventWords(EventWords&&) = delete;
  EventWords& operator=(EventWords&&) = delete;
  virtual ~EventWords() = default;

  [[nodiscard]] virtual std::string of(const Trigger& trigger) const = 0;
  [[nodiscard]] virtual std::string of(const Condition& condition) const = 0;
  [[nodiscard]] virtual std::string of(const Action& action) const = 0;
};

}  // namespace standin
