#pragma once
#include <cstdint>
#include <string>
#include <string_view>

// The ways in which tags write text, turned into UTF-8.
namespace engine::tags {

std::string FromLatin(std::string_view text);
/// Up to its first code 0. `big`: the greater byte comes first; a mark at the beginning counts more.
std::string FromUtf16(std::string_view bytes, bool big);
/// At most so many bytes, cut between characters.
std::string_view Shortened(std::string_view text, std::size_t most);
/// The bytes that a base64 text stands for; what is none of its letters is passed over.
std::string FromBase64(std::string_view text);
/// What the packed bytes hold, at most so much of it; empty when they are damaged at their beginning.
std::string Unpacked(std::string_view packed, std::size_t most);

}  // namespace engine::tags
