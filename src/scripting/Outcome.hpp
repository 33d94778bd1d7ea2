#pragma once
#include <string>

namespace scripting {

/// How a script has ended.
struct ScriptOutcome {
  std::string error;  ///< empty when it has reached its end
  int line = 0;       ///< of the error, 0 where none is known
};

}  // namespace scripting
