#include "web/FormData.hpp"

#include <algorithm>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace web {

std::string DecodeUrl(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '+') {
      decoded += ' ';
    } else if (text[at] == '%') {
      if (text.size() - at < 3) throw base::Failure(base::number::kTypeMismatch);
      decoded += static_cast<char>(base::HexDigit(text[at + 1]) * 16 + base::HexDigit(text[at + 2]));
      at += 2;
    } else {
      decoded += text[at];
    }
  }
  return decoded;
}

FormArgs FormSlots(std::string_view data) {
  return FormArgs(static_cast<std::size_t>(std::count(data.begin(), data.end(), '=')) + 1);
}

}  // namespace web
