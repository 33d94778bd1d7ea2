#pragma once
#include <ostream>
#include <stdexcept>

#include "bus/Connection.hpp"
#include "vxcall/Arguments.hpp"

namespace vxcall {

/// There is nobody to talk to.
struct Unreachable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Does what is asked for and writes what comes back. Throws Unreachable, UsageError, or the operation's
/// own base::Failure.
void Perform(bus::Connection& connection, const Request& request, std::ostream& out);

}  // namespace vxcall
