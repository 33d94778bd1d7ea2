#pragma once
#include <ostream>

#include "base/Value.hpp"
#include "bus/Introspection.hpp"

namespace vxcall {

/// Writes a value for reading on a shell: a text as it is, a list one element a line, a record one
/// "key: value" a line, an object as "(name path)", nothing at all for empty.
void PrintValue(std::ostream& out, const base::Value& value);

/// Writes the operations and fields of an object, one a line.
void PrintMembers(std::ostream& out, const bus::NodeInfo& node);

}  // namespace vxcall
