#pragma once
#include <string>

namespace scripting {

/// What is told of one that its own process has ended, or that had to be ended by the server.
inline constexpr const char* kTooLong = "the script was stopped: it took too long";

/// How a script has ended.
struct ScriptOutcome {
  std::string error;  ///< empty when it has reached its end
  int line = 0;       ///< of the error, 0 where none is known
};

}  // namespace scripting
