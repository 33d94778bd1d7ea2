#pragma once
#include <cstddef>
#include <string>

#include "standin/scripts/ScriptHouse.hpp"

namespace standin {

/// How a script has ended.
struct ScriptOutcome {
  std::string error;  ///< empty when it has reached its end
  int line = 0;       ///< of the error, 0 where none is known
};

/// Runs a Lua script to its end in a state of its own, which has the text, table, number and time functions
/// of the language and the house, and no way to files, programs or foreign code. Never throws on account of
/// the script. `memory` is in bytes.
ScriptOutcome RunLua(const std::string& name, const std::string& text, ScriptHouse& house,
                     std::size_t memory = std::size_t{64} << 20U);

}  // namespace standin
