#pragma once
#include <cstdlib>
#include <string>

namespace support {

/// Ends the run with a finding where something doesn't hold.
inline void Require(bool holds) {
  if (!holds) std::abort();
}

/// Takes the first line off a text.
inline std::string TakeLine(std::string& text) {
  const std::size_t end = text.find('\n');
  std::string line = text.substr(0, end);
  text.erase(0, end == std::string::npos ? text.size() : end + 1);
  return line;
}

}  // namespace support
