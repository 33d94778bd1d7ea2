#include "bus/CallList.hpp"

#include <utility>

namespace bus {

using base::Array;
using base::Call;
using base::FailedCall;
using base::Value;

namespace {

/// What people read of a failure is bounded, and there may be many.
constexpr std::size_t kLongestDescription = std::size_t{1} << 16U;

const Array& WordsIn(const Value& value, std::size_t atLeast) {
  const Array& words = value.array();
  if (words.size() < atLeast) throw base::Failure(base::number::kTypeMismatch);
  return words;
}

}  // namespace

Value ListOfCalls(std::vector<Call> calls) {
  Array list;
  list.reserve(calls.size());
  for (Call& call : calls) {
    call.args.emplace(call.args.begin(), std::move(call.name));
    list.emplace_back(std::move(call.args));
  }
  return list;
}

std::vector<Call> CallsIn(const Value& list) {
  std::vector<Call> calls;
  calls.reserve(list.array().size());
  for (const Value& each : list.array()) {
    const Array& words = WordsIn(each, 1);
    calls.push_back({base::ToText(words[0]), base::Args(words.begin() + 1, words.end())});
  }
  return calls;
}

Value ListOfFailures(const std::vector<FailedCall>& failures) {
  Array list;
  for (const FailedCall& each : failures)
    list.emplace_back(Array{static_cast<std::int32_t>(each.place), each.failure.number(),
                            each.failure.description().substr(0, kLongestDescription)});
  return list;
}

std::vector<FailedCall> FailuresIn(const Value& list) {
  std::vector<FailedCall> failures;
  for (const Value& each : list.array()) {
    const Array& words = WordsIn(each, 3);
    failures.push_back({static_cast<std::size_t>(base::ToInt32(words[0])),
                        base::Failure(base::ToInt32(words[1]), base::ToText(words[2]))});
  }
  return failures;
}

}  // namespace bus
