#pragma once
#include <algorithm>
#include <optional>

#include "base/Loop.hpp"

namespace bus {

/// Until when replies are waited for, by all calls together, once the process has been told to end.
class ReplyLimit {
 public:
  /// For a process that is told to stop: it is to be on its way within a second, whatever hangs.
  static constexpr base::Milliseconds kForStop{700};

  explicit ReplyLimit(const base::Loop& loop) : loop_(loop) {}

  /// From now on for so long. A limit that stands already is not put off: who is told to stop twice stops no
  /// later.
  void begin(base::Milliseconds limit) {
    const base::Milliseconds end = loop_.now() + limit;
    end_ = end_ ? std::min(*end_, end) : end;
  }
  void lift() { end_.reset(); }

  [[nodiscard]] bool over() const { return end_ && loop_.now() >= *end_; }
  /// A wait of that length, or of what is left.
  [[nodiscard]] base::Milliseconds cut(base::Milliseconds wait) const {
    return end_ ? std::clamp(*end_ - loop_.now(), base::Milliseconds(0), wait) : wait;
  }

 private:
  const base::Loop& loop_;
  std::optional<base::Milliseconds> end_;
};

}  // namespace bus
