#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "engine/tags/ByteSource.hpp"
#include "engine/tags/TagFields.hpp"

namespace engine::tags {

/// Reads the tag of the second kind that begins at `offset`. Answers where it ends; `offset` when there is
/// none.
std::uint64_t ReadId3v2(ByteSource& source, std::uint64_t offset, TagFields& fields);

/// Where the tags behind the music begin: APE's, and the 128 bytes of the first ID3.
struct Trailer {
  std::uint64_t musicEnd = 0;
  std::uint64_t apeItems = 0;  ///< where APE's items begin, up to `apeEnd`; both 0 without any
  std::uint64_t apeEnd = 0;
  bool id3v1 = false;
};
Trailer FindTrailer(ByteSource& source);
/// Reads APE's tag, and the first ID3's when nothing else was found anywhere.
void ReadTrailer(ByteSource& source, const Trailer& trailer, TagFields& fields);

/// The genre of that number; empty for none.
std::string_view Genre(std::uint64_t number);
/// A genre as ID3 writes it, such as "(17)Rock" or "17".
std::string GenreText(std::string_view text);

}  // namespace engine::tags
