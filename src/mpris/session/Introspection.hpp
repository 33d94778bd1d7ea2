#pragma once
#include <string>
#include <vector>

#include "mpris/session/Table.hpp"

namespace mpris {

/// The introspection text of an object with these interfaces.
std::string Introspected(const std::vector<const Interface*>& interfaces);
/// That of a place on the way to the object: its one child, or nothing where `path` does not lead there.
std::string IntrospectedOnTheWay(const std::string& path, const std::string& object);

}  // namespace mpris
