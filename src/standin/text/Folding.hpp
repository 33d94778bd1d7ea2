#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// A text as searches compare it: without case, accents, apostrophes and what nobody sees, letters such as
/// "ø", "ß" and "ﬁ" as they are typed without them, in full or half width alike; every kind of blank is one
/// code 32. Bytes that are no UTF-8 stay as they are.
std::string Folded(std::string_view text);

/// The folded words of what somebody has typed into a search; none for blanks alone.
std::vector<std::string> SoughtWords(std::string_view sought);

}  // namespace standin
