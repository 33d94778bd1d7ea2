#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "base/Object.hpp"

namespace base {

/// One of several calls that are made together.
struct Call {
  std::string name;
  Args args;
};

/// What one of them has failed with.
struct FailedCall {
  std::size_t place = 0;  ///< among the calls, from 0
  Failure failure;
};

/// An object that many calls reach at the price of a few.
class TakesManyCalls {
 public:
  TakesManyCalls() = default;
  TakesManyCalls(const TakesManyCalls&) = delete;
  TakesManyCalls& operator=(const TakesManyCalls&) = delete;
  TakesManyCalls(TakesManyCalls&&) = delete;
  TakesManyCalls& operator=(TakesManyCalls&&) = delete;
  virtual ~TakesManyCalls() = default;

  /// As `CallEach`.
  virtual std::vector<FailedCall> callEach(std::vector<Call> calls) = 0;
};

/// Makes the calls one after the other, each also when one before it has failed, and returns when all have
/// ended, with those that have failed, in their order. For calls of which nothing is wanted back. Throws
/// nothing that a call throws.
std::vector<FailedCall> CallEach(Object& object, std::vector<Call> calls);
/// The same, one by one whatever the object can do.
std::vector<FailedCall> CallOneByOne(Object& object, std::vector<Call> calls);

}  // namespace base
