#pragma once
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace support {

// The library's reading and writing take a compiler seconds in every file that uses them, so they are done
// here.

/// Throws the library's own failure when the text is no JSON.
nlohmann::json JsonOf(const std::string& text);
/// The library's "discarded" value when it is none.
nlohmann::json JsonIfAny(const std::string& text);
std::string TextOf(const nlohmann::json& json);

}  // namespace support
