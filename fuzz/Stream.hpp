#pragma once
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "fuzz/Input.hpp"

namespace support {

/// Bytes that come over a pipe in pieces, of which their own first one tells the size. `take(come, each)`
/// gives the first whole message to `each`, as it goes over a pipe, and takes it off what has come; false
/// where it is not there yet.
template <class Take>
void CheckStream(std::string_view bytes, std::size_t longest, const Take& take) {
  constexpr std::size_t kHead = 8;
  const std::size_t piece = bytes.empty() ? 1 : static_cast<unsigned char>(bytes.front()) % 16 + 1;
  std::string come;
  std::size_t taken = 0;
  const auto each = [&](const std::string& framed) {
    Require(framed.size() >= kHead && framed.size() - kHead <= longest);
    Require(bytes.substr(taken, framed.size()) == framed);
    taken += framed.size();
  };
  try {
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
      come += bytes.substr(at, piece);
      while (take(come, each)) {
      }
      Require(taken + come.size() <= bytes.size());
    }
  } catch (const std::length_error&) {
    Require(come.size() >= kHead);  // a head that tells of too much
  }
}

}  // namespace support
