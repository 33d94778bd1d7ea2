#pragma once
#include <mutex>
#include <string>
#include <vector>

#include "base/Members.hpp"

namespace support {

/// The dialogs of a plug-in, as far as a server can tell. What it does with the controls it does as a plug-in
/// would, over the bus. May be asked from any thread.
class FakeDialogs {
 public:
  std::string action;     ///< the text of an action's dialog
  std::string trigger;    ///< that of a trigger's
  std::string condition;  ///< those of conditions
  std::string message;    ///< what ValidateActionUI answers
  std::string words = "in words";
  std::vector<std::string> titles{"River", "Carey"};  ///< for the button
  base::ObjectRef controls;                           ///< as they were handed over

  [[nodiscard]] std::vector<std::string> calls() {
    const std::lock_guard lock(mutex_);
    return calls_;
  }

  /// The plug-in's operations for them.
  std::vector<base::Member> members();
  [[nodiscard]] base::ObjectRef control(std::int32_t number) const;

 private:
  void note(const std::string& call);
  void refill() const;

  const std::string none_;
  std::mutex mutex_;
  std::vector<std::string> calls_;
};

}  // namespace support
