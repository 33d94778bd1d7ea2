#pragma once
#include <cstddef>
#include <string>

#include "base/Value.hpp"
#include "wire/Bytes.hpp"

namespace scripting {

/// What a value is reckoned to take in memory, besides the bytes of its texts.
inline constexpr std::size_t kOneValue = 64;
/// What the values of one question to the house may take, in bytes: a table that holds another many times is
/// as large as all of them together once it has been read.
inline constexpr std::size_t kMostAsked = std::size_t{64} << 20U;
/// What the values of an answer may take.
inline constexpr std::size_t kMostAnswered = std::size_t{256} << 20U;

/// Appends the value; objects must be handles, others are written as nothing. Throws number 6 when it takes
/// more than `left`, which is lowered by what it takes, and 5 when it is nested too deeply.
void PutValue(std::string& out, const base::Value& value, std::size_t& left, int depth = 0);
/// Reads a value of another process, which fails where it is none or takes more than `left`.
base::Value ReadValue(wire::Bytes& in, std::size_t& left, int depth = 0);

}  // namespace scripting
