#pragma once
#include <cstdint>

#include "engine/tags/ByteSource.hpp"
#include "engine/tags/TagFields.hpp"

// One reader a kind of file. Each offers what it finds and answers whether there is music or a picture in the
// file.
namespace engine::tags {

bool ReadMpegAudio(ByteSource& source, TagFields& fields);
bool ReadFlac(ByteSource& source, TagFields& fields);
bool ReadOgg(ByteSource& source, TagFields& fields);
bool ReadMp4(ByteSource& source, TagFields& fields);
bool ReadMatroska(ByteSource& source, TagFields& fields);
bool ReadRiff(ByteSource& source, TagFields& fields);
bool ReadAiff(ByteSource& source, TagFields& fields);
bool ReadAsf(ByteSource& source, TagFields& fields);
bool ReadMonkey(ByteSource& source, TagFields& fields);
bool ReadMusepack(ByteSource& source, TagFields& fields);
bool ReadWavPack(ByteSource& source, TagFields& fields);
bool ReadTrueAudio(ByteSource& source, TagFields& fields);
bool ReadDsf(ByteSource& source, TagFields& fields);

}  // namespace engine::tags
