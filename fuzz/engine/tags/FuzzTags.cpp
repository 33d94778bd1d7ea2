// Any bytes as a media file of each kind, as they are and with noncharacters spelled out among them: nothing
// crashes, names stay short and are text, and pictures stay within their bound.

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/Text.hpp"
#include "engine/tags/ByteSource.hpp"
#include "engine/tags/Readers.hpp"
#include "engine/tags/TagFields.hpp"
#include "fuzz/Alphabet.hpp"

namespace tags = engine::tags;

namespace {

void Read(const void* data, std::size_t size) {
  static const int file = ::memfd_create("fuzz", MFD_CLOEXEC);
  if (::ftruncate(file, 0) != 0 || ::pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) std::abort();
  static constexpr std::array kReaders{
      tags::ReadMpegAudio, tags::ReadFlac, tags::ReadOgg,      tags::ReadMp4,    tags::ReadMatroska,
      tags::ReadRiff,      tags::ReadAiff, tags::ReadAsf,      tags::ReadMonkey, tags::ReadMusepack,
      tags::ReadWavPack,   tags::ReadDsf,  tags::ReadTrueAudio};
  for (const auto read : kReaders) {
    for (const bool picture : {false, true}) {
      tags::ByteSource source(file, size);
      tags::TagFields fields(picture);
      read(source, fields);
      const engine::TrackTags found = fields.take();
      for (const std::string* text :
           {&found.title, &found.artist, &found.albumArtist, &found.album, &found.genre})
        if (text->size() > tags::TagFields::kLongest || !base::IsPlainUtf8(*text)) std::abort();
      if (fields.takePicture().size() > tags::ByteSource::kLargestCopy) std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Read(data, size);
  const std::string spelled = support::Spelled(data, size);
  if (spelled.size() != size) Read(spelled.data(), spelled.size());
  return 0;
}
