#pragma once
#include <string>
#include <string_view>

#include "base/Failure.hpp"

namespace bus {

/// The bus error name that carries a failure's number: "org.vantorix.Failure.N438", with M for a minus sign.
std::string ErrorNameOf(std::int32_t failureNumber);
/// The failure that an error from the bus stands for.
base::Failure FailureOf(std::string_view errorName, const std::string& description);
/// Throws the failure of a negative errno result of the bus library.
void Check(int result);

}  // namespace bus
