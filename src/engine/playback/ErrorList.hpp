#pragma once
#include <deque>
#include <string>

#include "player/WMP9.hpp"

namespace engine {

/// The media can't be played, as the player's errors are numbered.
inline constexpr auto kCannotPlay = static_cast<std::int32_t>(0xC00D11B1U);

/// The player's errors, the newest first, as its reader looks at item 0.
class ErrorList : public player::ErrorQueue {
 public:
  void add(std::int32_t code, std::string description);

  [[nodiscard]] std::int32_t errorCount() const override { return static_cast<std::int32_t>(items_.size()); }
  [[nodiscard]] player::ErrorItem item(std::int32_t index) const override;
  void clearErrorQueue() override { items_.clear(); }

 private:
  std::deque<player::ErrorItem> items_;
};

}  // namespace engine
