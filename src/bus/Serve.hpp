#pragma once
#include <memory>

#include "base/Failure.hpp"
#include "bus/Message.hpp"

namespace bus {

class Link;

/// Runs an incoming call on the exported object that it is for and replies. Never throws: what the object
/// throws goes back to the caller.
void Serve(const std::shared_ptr<Link>& link, const Message& call);
/// Answers an incoming call with a failure. Never throws.
void Refuse(Link& link, const Message& call, const base::Failure& failure);

}  // namespace bus
