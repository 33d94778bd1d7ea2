#pragma once

namespace desktop {

/// Where a window is for its user.
enum class Standing { kAway, kSeen, kInTaskBar };

/// What is wanted of a window's manager, what it has been asked, and what it has done so far. It comes to it
/// when it comes to it: until then it tells how things were before, and that is nobody's doing.
class Agreement {
 public:
  void want(Standing standing) { wanted_ = standing; }

  /// Whether it may be asked now. A manager that has still to take the window on, or to let it go, would take
  /// the two wishes for one, or one of them for a window that is to come back.
  [[nodiscard]] bool mayAsk() const {
    const bool taken = known_ != Standing::kAway;
    return wanted_ == asked_ || taken == (asked_ != Standing::kAway);
  }

  /// It is being asked for what is wanted.
  void ask() {
    // Who changes his mind before the manager has come to it hears of both.
    settled_ = settled_ && known_ == wanted_;
    asked_ = wanted_;
  }

  /// The manager has put the window there. True when it is to be asked once more: a wish that reaches it
  /// while it is still busy with the window may be lost.
  [[nodiscard]] bool told(Standing now) {
    known_ = now;
    if (asked_ != wanted_) return false;
    if (now == wanted_) settled_ = true;
    return !settled_;
  }

  [[nodiscard]] Standing wanted() const { return wanted_; }
  /// Whether it has done what was wanted last. What it tells from then on is the user's doing.
  [[nodiscard]] bool settled() const { return settled_ && asked_ == wanted_; }

 private:
  Standing wanted_ = Standing::kAway;
  Standing asked_ = Standing::kAway;
  Standing known_ = Standing::kAway;
  bool settled_ = true;
};

}  // namespace desktop
