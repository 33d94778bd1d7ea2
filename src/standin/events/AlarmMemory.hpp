#pragma once
#include <cstdint>
#include <optional>

namespace standin {

/// Up to when triggers of time have been seen to, kept over an end of the house however it ends. Moments are
/// milliseconds since 1970.
class AlarmMemory {
 public:
  AlarmMemory() = default;
  AlarmMemory(const AlarmMemory&) = delete;
  AlarmMemory& operator=(const AlarmMemory&) = delete;
  AlarmMemory(AlarmMemory&&) = delete;
  AlarmMemory& operator=(AlarmMemory&&) = delete;
  virtual ~AlarmMemory() = default;

  /// Up to when those of all events have been; nothing in a house that has never looked at its clock.
  [[nodiscard]] virtual std::optional<std::int64_t> seen() const = 0;
  /// The same for one event, which may have been seen to since.
  [[nodiscard]] virtual std::optional<std::int64_t> seen(std::int32_t event) const = 0;
  /// Stores it, for all events or for one. Doesn't throw: what can't be stored now may be another time.
  virtual void keep(std::int64_t moment) = 0;
  virtual void keep(std::int32_t event, std::int64_t moment) = 0;
};

}  // namespace standin
