#pragma once
#include <string>
#include <vector>

namespace web {

/// A long text in the making: its pieces, which its owner joins once at the end. The last element is always a
/// free slot.
using StringAccumulator = std::vector<std::string>;

/// Erases everything that was collected and begins anew, with the bounds 0 to 1.
void ConcatInit(StringAccumulator& array);
/// Puts `text` into the free slot and appends a new one. An array that was never initialised takes nothing.
void ConcatAdd(StringAccumulator& array, std::string text);
/// All elements joined with nothing between them.
std::string ConcatResult(const StringAccumulator& array);

}  // namespace web
