#pragma once
#include <string>

#include "standin/events/EventWords.hpp"
#include "standin/house/House.hpp"
#include "standin/rules/PluginWords.hpp"

namespace standin {

/// Triggers, conditions and actions in words: the plug-in's in its own, the house's in plain English, with
/// the names that devices and events have now.
class Wordings : public EventWords {
 public:
  Wordings(const House& house, PluginWords& plugin) : house_(house), plugin_(plugin) {}

  [[nodiscard]] std::string of(const Trigger& trigger) const override;
  [[nodiscard]] std::string of(const Condition& condition) const override;
  [[nodiscard]] std::string of(const Action& action) const override;

 private:
  [[nodiscard]] std::string device(std::int32_t ref) const;
  [[nodiscard]] std::string eventOf(std::int32_t id) const;
  [[nodiscard]] std::string wordsOf(const DeviceAction& action) const;
  [[nodiscard]] std::string wordsOf(const WakeAction& action) const;

  const House& house_;
  PluginWords& plugin_;
};

/// "90 seconds", "1 minute", "2 hours": in the largest unit that gives a whole number.
std::string DurationWords(std::int64_t seconds);
/// "Mon, Tue", "Mon to Fri"; empty for every day.
std::string DayWords(Weekdays days);

}  // namespace standin
