#pragma once
#include <cstdint>
#include <utility>

#include "base/Failure.hpp"

namespace support {

/// The number of the failure that `statement` throws, 0 when it throws none.
template <class Statement>
std::int32_t FailureNumberOf(Statement&& statement) {
  try {
    std::forward<Statement>(statement)();
  } catch (const base::Failure& failure) {
    return failure.number();
  }
  return 0;
}

}  // namespace support
