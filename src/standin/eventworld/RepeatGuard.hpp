#pragma once
#include <memory>
#include <string>

#include "base/Loop.hpp"
#include "base/Object.hpp"

namespace standin {

/// The plug-in leaves an action alone that it has carried out within the last five seconds, so that an action
/// can't trigger itself through the player, and tells whoever asks nothing of that. This knows it.
class RepeatGuard {
 public:
  explicit RepeatGuard(base::Loop& loop) : loop_(loop) {}

  /// How long to wait until the plug-in would carry the action out; 0 when it would now.
  [[nodiscard]] base::Milliseconds left(const std::string& stored) const;
  /// Hands the action to the plug-in, within a command to it. Throws number 70 where the plug-in leaves it.
  void carryOut(base::Object& vxif, const std::string& stored);
  /// The plug-in is another now, and has carried out nothing.
  void forget() { known_ = false; }

 private:
  base::Loop& loop_;
  bool known_ = false;  ///< something has been carried out
  std::string last_;
  base::Milliseconds at_{0};
};

}  // namespace standin
