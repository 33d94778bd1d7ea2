#pragma once
#include <optional>
#include <string>

namespace standin {

/// The text as a number, where rules and what they look at compare numbers: digits with a point, whatever
/// the place where the house stands, a sign and an exponent if wished. Nothing for any other text, and for a
/// number that is out of range.
std::optional<double> RuleNumber(const std::string& text);

}  // namespace standin
