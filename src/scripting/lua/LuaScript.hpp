#pragma once
#include <cstddef>
#include <string>

#include "scripting/Outcome.hpp"
#include "scripting/ScriptHouse.hpp"

namespace scripting {

/// Runs a Lua script to its end in a state of its own, which has the text, table, number and time functions
/// of the language and the house, and no way to files, programs or foreign code. Never throws on account of
/// the script. `memory` is in bytes.
ScriptOutcome RunLua(const std::string& name, const std::string& text, ScriptHouse& house,
                     std::size_t memory = std::size_t{64} << 20U);

}  // namespace scripting
