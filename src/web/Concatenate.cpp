#include "web/Concatenate.hpp"

#include "base/Attempt.hpp"

namespace web {

void ConcatInit(StringAccumulator& array) {
  base::Attempt step;
  step([&] { StringAccumulator(2).swap(array); });
}

void ConcatAdd(StringAccumulator& array, std::string text) {
  if (array.empty()) return;
  base::Attempt step;
  step([&] {
    array.emplace_back();
    array[array.size() - 2] = std::move(text);
  });
}

std::string ConcatResult(const StringAccumulator& array) {
  std::string joined;
  base::Attempt step;
  step([&] {
    std::size_t size = 0;
    for (const std::string& piece : array) size += piece.size();
    joined.reserve(size);
    for (const std::string& piece : array) joined += piece;
  });
  return joined;
}

}  // namespace web
