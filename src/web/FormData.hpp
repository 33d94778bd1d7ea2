#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace web {

/// Names and values of a form post. Its upper bound is the number of pairs, so that the last slot stays
/// empty.
using FormArgs = std::vector<std::pair<std::string, std::string>>;

/// A text of a form post as it was typed: "+" for a blank, "%" and two hexadecimal digits for a byte. Throws
/// number 13 where other characters stand behind a "%".
std::string DecodeUrl(std::string_view text);

/// The slots for a body of pairs name=value that "&" separates: one for each "=", and the empty one.
FormArgs FormSlots(std::string_view data);

/// Calls `take(slot, name, value)` for each pair of the body in order, with both texts as they came.
template <class Take>
void ForEachPair(std::string_view data, Take&& take) {
  std::size_t start = 0;
  for (std::size_t slot = 0; start < data.size(); ++slot) {
    const std::size_t equals = data.find('=', start);
    if (equals == std::string_view::npos) return;
    std::size_t end = data.find('&', equals);
    if (end == std::string_view::npos) end = data.size();
    take(slot, data.substr(start, equals - start), data.substr(equals + 1, end - equals - 1));
    start = end + 1;
  }
}

}  // namespace web
