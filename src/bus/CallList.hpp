#pragma once
#include <vector>

#include "base/CallEach.hpp"

namespace bus {

/// Several calls as one value: a list of them, each a list of the operation's name and its arguments.
base::Value ListOfCalls(std::vector<base::Call> calls);
/// Throws number 13 for what is no such list.
std::vector<base::Call> CallsIn(const base::Value& list);

/// The failures as one value: a list of them, each a list of place, number and description.
base::Value ListOfFailures(const std::vector<base::FailedCall>& failures);
/// Throws number 13 for what is no such list.
std::vector<base::FailedCall> FailuresIn(const base::Value& list);

}  // namespace bus
