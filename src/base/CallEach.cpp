#include "base/CallEach.hpp"

#include <utility>

#include "base/Attempt.hpp"

namespace base {

std::vector<FailedCall> CallEach(Object& object, std::vector<Call> calls) {
  auto* many = dynamic_cast<TakesManyCalls*>(&object);
  return many != nullptr && calls.size() > 1 ? many->callEach(std::move(calls))
                                             : CallOneByOne(object, std::move(calls));
}

std::vector<FailedCall> CallOneByOne(Object& object, std::vector<Call> calls) {
  std::vector<FailedCall> failed;
  for (std::size_t i = 0; i < calls.size(); ++i)
    Handled([&] { object.call(calls[i].name, calls[i].args); },
            [&](const Failure& failure) {
              failed.push_back({i, failure});
            });
  return failed;
}

}  // namespace base
