#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

namespace standin {

/// Sound as browsers send it: samples of 16 bits with the lower byte first as "audio/l16;rate=16000", or the
/// same in a file as "audio/wav". Throws number 5, with words for the user, for any other: what has another
/// rate or more than one channel is not made over here, as whoever recorded it can do that better.
std::vector<std::int16_t> SentSound(std::string_view type, std::string_view body);

}  // namespace standin
