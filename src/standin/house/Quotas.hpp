#pragma once
#include <cstddef>
#include <string>

#include "base/Failure.hpp"

namespace standin {

/// Of any text of the house's that has no bound of its own, in bytes.
inline constexpr std::size_t kLongestPlainText = std::size_t{64} << 10U;

/// The text, or its beginning and "…" where it has more bytes; no character is cut in two.
inline std::string Bounded(const std::string& text, std::size_t longest) {
  if (text.size() <= longest) return text;
  std::size_t cut = longest;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0U) == 0x80U) --cut;
  return text.substr(0, cut) + "…";
}

/// Throws number 6 where the text is longer. `what` begins the sentence: "A text of a device".
inline void CheckLength(const std::string& what, const std::string& text,
                        std::size_t most = kLongestPlainText) {
  if (text.size() > most)
    throw base::Failure(base::number::kOverflow,
                        what + " is too long: it may have " + std::to_string(most) + " bytes");
}

/// Throws number 6 where one more would be more than `most`: "There are too many devices".
inline void CheckRoom(const std::string& what, std::size_t count, std::size_t most) {
  if (count >= most)
    throw base::Failure(base::number::kOverflow,
                        "There are too many " + what + ": there may be " + std::to_string(most));
}

/// What `bytes` is where a text takes the place of another one, which may be empty. Throws number 6 where
/// that is more than before and more than `most`. `what` begins the sentence: "The texts of devices".
inline std::size_t BytesWith(const std::string& what, std::size_t bytes, std::size_t before,
                             std::size_t after, std::size_t most) {
  const std::size_t with = bytes - before + after;
  if (after > before && with > most)
    throw base::Failure(base::number::kOverflow,
                        what + " are too long in all: they may have " + std::to_string(most) + " bytes");
  return with;
}

}  // namespace standin
