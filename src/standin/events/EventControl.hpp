#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "standin/events/Evaluation.hpp"
#include "standin/events/Rule.hpp"

namespace standin {

/// What would come of a rule if it were triggered now.
struct DryRun {
  std::vector<SeenCondition> conditions{};
  bool would = false;
  std::vector<std::string> actions{};  ///< in words, whether or not they would be carried out
  std::string why{};                   ///< in words, what speaks against it; empty when it would run
};

/// When the sun rises and sets today, in minutes of the day; nothing where it doesn't.
struct SunToday {
  std::optional<std::int32_t> rise{};
  std::optional<std::int32_t> set{};
};

/// What pages may ask of the events besides their rules. On the loop's thread. Throws number 53 for an event
/// that isn't there.
class EventControl {
 public:
  EventControl() = default;
  EventControl(const EventControl&) = delete;
  EventControl& operator=(const EventControl&) = delete;
  EventControl(EventControl&&) = delete;
  EventControl& operator=(EventControl&&) = delete;
  virtual ~EventControl() = default;

  /// Called once, at once or later: when the first action is about to begin or has to wait for its turn
  /// (outcome kRunning), or when there is none to begin and why. The number is 0 where nothing runs yet.
  using Told = std::function<void(const Evaluation& evaluation)>;
  /// Runs the actions, whatever the conditions say and whether or not the event is on.
  virtual void run(std::int32_t event, Told told) = 0;
  /// As if one of its triggers had come: its conditions count. Also when it is off.
  virtual void trigger(std::int32_t event, Told told) = 0;
  /// Ends what runs of it and what waits to run. The action under way is broken off where it can be.
  virtual void stop(std::int32_t event) = 0;
  /// Asks the conditions of a rule for the event, 0 for one that isn't stored yet, and does nothing else.
  /// `told` is called once, at once or later.
  virtual void dry(std::int32_t event, const Rule& rule, std::function<void(const DryRun& answer)> told) = 0;

  /// How often it runs now.
  [[nodiscard]] virtual std::size_t running(std::int32_t event) const = 0;
  /// When its next time trigger is due, milliseconds since 1970.
  [[nodiscard]] virtual std::optional<std::int64_t> next(std::int32_t event) const = 0;
  /// Nothing without a place.
  [[nodiscard]] virtual std::optional<SunToday> sun() const = 0;
};

}  // namespace standin
