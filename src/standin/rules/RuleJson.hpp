#pragma once
#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>

#include "base/Failure.hpp"
#include "standin/events/Rule.hpp"

namespace standin {

/// How much a rule may hold. Texts are measured in bytes unless said otherwise.
struct RuleBounds {
  static constexpr std::size_t kName = 200;  ///< characters of a name or group
  static constexpr std::size_t kTriggers = 100;
  static constexpr std::size_t kConditions = 100;
  static constexpr std::size_t kActions = 200;
  static constexpr std::size_t kChoices = 20;  ///< of one wake-up
  static constexpr std::size_t kText = std::size_t{64} << 10U;
};

/// What a text says is no rule. Number 5; the description names the place for a reader ("Action 2, seconds:
/// …").
class BadRule : public base::Failure {
 public:
  /// `place` as programs name it: "actions/1/seconds", empty for the whole.
  BadRule(std::string place, const std::string& description)
      : Failure(base::number::kInvalidArgument, description), place_(std::move(place)) {}
  [[nodiscard]] const std::string& place() const { return place_; }

 private:
  std::string place_;
};

/// The form that pages know a rule in, and the database too. What is not needed for a kind is left out.
nlohmann::json JsonOf(const Rule& rule);
/// The same with the event's number, version, name and group.
nlohmann::json JsonOf(const RuledEvent& event);

/// The other way. Fields that mean nothing are ignored; lists and fields of a kind may be left out where an
/// empty one or a usual value makes sense. Throws `BadRule`.
Rule RuleOf(const nlohmann::json& json);
/// `id` and `version` are 0 when they are left out; blanks around name and group are dropped.
RuledEvent RuledEventOf(const nlohmann::json& json);

/// For storing, on one line. Throws `BadRule` for a rule with texts that are no plain UTF-8.
std::string TextOf(const Rule& rule);
/// Throws `BadRule` for a text that is none of these.
Rule RuleOfText(const std::string& text);

/// "22:05" for 1325.
std::string ClockOf(std::int32_t minute);

}  // namespace standin
