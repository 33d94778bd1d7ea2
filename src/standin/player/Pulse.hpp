#pragma once
#include <functional>
#include <memory>

#include "base/Loop.hpp"

namespace standin {

/// Whether the plug-in still answers: a plug-in that owes an answer for two seconds is silent, and one that
/// is asked for nothing is asked for something small once a second. So a plug-in that hangs is seen within
/// three seconds.
class Pulse {
 public:
  struct Parts {
    std::function<void()> ask;      ///< calls the plug-in for something small, between `begins` and `ends`
    std::function<bool()> wanted;   ///< whether anybody wants to know; without it nobody is woken
    std::function<void()> changed;  ///< `silent` has changed
  };
  Pulse(base::Loop& loop, Parts parts);

  /// Asks from now on, while nothing else is asked.
  void start();
  /// Asks no more, and takes what is under way for answered.
  void stop();
  /// A call to the plug-in begins, or has come to its end. Calls don't overlap.
  void begins();
  void ends();
  /// True while an answer is owed for too long.
  [[nodiscard]] bool silent() const { return silent_; }

 private:
  void silence(bool silent);

  Parts parts_;
  bool silent_ = false;
  bool waiting_ = false;
  std::unique_ptr<base::Timer> ask_;
  std::unique_ptr<base::Timer> patience_;
};

}  // namespace standin
