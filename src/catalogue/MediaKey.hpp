#pragma once
#include <string>
#include <string_view>

namespace catalogue {

/// The form of a library name that device values, voice commands and web forms can carry: letters A to Z and
/// a to z, digits and single blanks. Everything else turns into a blank, and there is none at the ends. True
/// when the key equals the name.
bool MakeMediaKey(std::string_view name, std::string& key);

/// The form of a library name that a settings file can carry: the code of each byte in upper-case
/// hexadecimal without padding.
std::string HexEncodeName(std::string_view text);
/// Reads two digits at a time. A byte below code 16 doesn't survive the way there and back, as the encoder
/// does not pad; no title holds one. Throws number 13 for what is no digit.
std::string HexDecodeName(std::string_view text);

}  // namespace catalogue
