#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "standin/events/Rule.hpp"

namespace standin {

/// Where the house stands, in degrees, north and east positive.
struct Place {
  double latitude = 0;   ///< -90 to 90
  double longitude = 0;  ///< -180 to 180
  bool operator==(const Place&) const = default;
};

/// The rules of the house, as those see them who carry them out.
class RuleSource {
 public:
  RuleSource() = default;
  RuleSource(const RuleSource&) = delete;
  RuleSource& operator=(const RuleSource&) = delete;
  RuleSource(RuleSource&&) = delete;
  RuleSource& operator=(RuleSource&&) = delete;
  virtual ~RuleSource() = default;

  /// By number. References hold until the rule changes.
  [[nodiscard]] virtual const std::map<std::int32_t, RuledEvent>& all() const = 0;
  /// Null when there is none.
  [[nodiscard]] virtual const RuledEvent* byId(std::int32_t id) const = 0;
  /// Nothing until somebody has said where the house stands.
  [[nodiscard]] virtual std::optional<Place> place() const = 0;

  using Heard = std::function<void(std::int32_t id)>;
  /// Adds a listener, for good: called after each change of a rule, also when it was made or removed, and
  /// with 0 after one of the place.
  virtual void onChange(Heard heard) = 0;
};

}  // namespace standin
