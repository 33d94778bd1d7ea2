#pragma once
#include <string>

namespace mpris {

/// A text of the player as every bus library and every panel takes it: what is no text becomes U+FFFD,
/// control characters blanks, and of a long one some thousand bytes are left.
std::string BusText(const std::string& text);

/// The address of what the player calls so, a path or an address, with every byte escaped that addresses
/// don't hold; empty where it has none that others could open.
std::string AddressOf(const std::string& source);

/// The bytes of a text in hexadecimal digits, as a path of the bus holds them, and back; empty for what is no
/// such text.
std::string Hex(const std::string& text);
std::string FromHex(const std::string& digits);

}  // namespace mpris
