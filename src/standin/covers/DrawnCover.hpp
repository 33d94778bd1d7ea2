#pragma once
#include <string>

namespace standin {

/// A picture for an album that has none: a calm ground whose colours follow from the name, and up to two
/// initials of it. SVG, whatever is in the name.
std::string DrawnCover(const std::string& name);

/// Up to two initials of a name: of its first and its second word, leaving out what is no letter or digit.
std::string InitialsOf(const std::string& name);

}  // namespace standin
