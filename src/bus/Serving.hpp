#pragma once
#include <functional>
#include <string>
#include <utility>

#include "base/Restored.hpp"
#include "bus/PollLoop.hpp"

namespace bus {

/// Whose calls are being served within each other.
class Serving {
 public:
  explicit Serving(const PollLoop& loop) : loop_(loop) {}

  /// Runs `serve` as a call of that sender.
  void within(std::string sender, const std::function<void()>& serve) {
    const base::Restored innermost(call_, Call{std::move(sender), loop_.depth()});
    serve();
  }
  /// The process that this very moment's work is done for. Empty for what the loop does by itself, also while
  /// a call that turns it is being served.
  [[nodiscard]] std::string sender() const {
    return call_.depth == loop_.depth() ? call_.sender : std::string();
  }

 private:
  struct Call {
    std::string sender;
    int depth = 0;  ///< of the loop's turns where its serving has begun
  };

  const PollLoop& loop_;
  Call call_;
};

}  // namespace bus
