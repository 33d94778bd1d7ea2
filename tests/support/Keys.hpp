#pragma once

namespace support {

/// Keys without a character, as the WebDriver protocol numbers them.
inline constexpr const char* kTab = "\uE004";
inline constexpr const char* kEnter = "\uE007";
inline constexpr const char* kEscape = "\uE00C";
inline constexpr const char* kUp = "\uE013";
inline constexpr const char* kDown = "\uE015";
inline constexpr const char* kSpace = " ";

}  // namespace support
