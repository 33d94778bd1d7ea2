#pragma once
#include <cstddef>
#include <string>
#include <string_view>

/// Texts that every library takes for text. Noncharacters (U+FDD0 to U+FDEF, and the last two of each plane)
/// are well-formed UTF-8, but some refuse them.
namespace base {

/// True when the text is well-formed UTF-8 without code 0 and without a noncharacter.
bool IsInterchangeUtf8(std::string_view text);
/// The same text with every ill-formed byte and every noncharacter replaced by U+FFFD, and code 0 by a blank.
std::string InterchangeUtf8(std::string_view text);

/// Where the character at position `count`, from 0, begins; the text's size when it has no more than `count`
/// characters. An ill-formed byte counts as a character.
std::size_t OffsetOfCharacter(std::string_view text, std::size_t count);

}  // namespace base
