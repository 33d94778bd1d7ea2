#pragma once
#include <optional>
#include <string>
#include <utility>

#include "base/Failure.hpp"

namespace base {

/// Runs a procedure's statements with failures skipped: a statement that fails leaves its target
/// unchanged and the next one runs. The first failure stays pending until `clear`.
class Attempt {
 public:
  /// Runs one statement. True when it did not fail.
  template <class Statement>
  bool operator()(Statement&& statement) {
    try {
      std::forward<Statement>(statement)();
      return true;
    } catch (...) {
      if (!pending_) pending_.emplace(CurrentFailure());
      return false;
    }
  }

  [[nodiscard]] bool failed() const { return pending_.has_value(); }
  /// The pending failure's number, 0 without one.
  [[nodiscard]] std::int32_t number() const { return pending_ ? pending_->number() : 0; }
  /// The pending failure's description, empty without one.
  [[nodiscard]] std::string text() const { return pending_ ? pending_->description() : std::string(); }
  void clear() { pending_.reset(); }

 private:
  std::optional<Failure> pending_;
};

/// Runs a procedure whose failures jump to one handler at its end. Answers the procedure's result, or
/// what `onFailure(const Failure&)` answers.
template <class Procedure, class Handler>
auto Handled(Procedure&& procedure, Handler&& onFailure) -> decltype(procedure()) {
  try {
    return std::forward<Procedure>(procedure)();
  } catch (...) {
    const Failure failure = CurrentFailure();
    return std::forward<Handler>(onFailure)(failure);
  }
}

}  // namespace base
