#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace base {

/// Lower case by the C library's simple mapping in a UTF-8 locale, also outside ASCII. Bytes that are no
/// valid UTF-8 are kept as they are.
std::string LowerCase(std::string_view text);
/// Equal without regard to case.
bool SameText(std::string_view left, std::string_view right);
/// Without the blanks (code 32 only) at both ends.
std::string TrimBlanks(std::string_view text);
/// The pieces between separators; an empty text has no pieces.
std::vector<std::string> Split(std::string_view text, char separator);
/// The code of the first character, -1 for an empty text.
std::int32_t FirstCharacter(std::string_view text);
/// The text of one character. `code` from 1 to 0x10FFFF; any other gives U+FFFD.
std::string CharacterOf(std::int32_t code);
/// The value of a hexadecimal digit in either case. Throws number 13 for another character.
unsigned HexDigit(char digit);
/// Number of code points.
std::size_t CountCharacters(std::string_view text);
/// True when the text is well-formed UTF-8 (and, as D-Bus asks, holds no code 0).
bool IsPlainUtf8(std::string_view text);
/// The same text with every ill-formed byte replaced by U+FFFD.
std::string RepairUtf8(std::string_view text);

}  // namespace base
