// Any bytes as a media file of each kind, as they are and with noncharacters spelled out among them: nothing
// crashes, names stay short and are text, pictures stay within their bound, and no file keeps its reader busy
// for longer than so many reads and bytes.

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <string>

#include "base/Text.hpp"
#include "engine/tags/ByteSource.hpp"
#include "engine/tags/Readers.hpp"
#include "engine/tags/TagFields.hpp"
#include "fuzz/Alphabet.hpp"
#include "fuzz/Input.hpp"

namespace tags = engine::tags;

namespace {

constexpr int kMostReads = 4096;
constexpr std::uint64_t kMostBytes = std::uint64_t{64} * 1024 * 1024;
constexpr std::size_t kLarge = std::size_t{1} << 30U;

/// What has been read of files.
int reads = 0;
std::uint64_t bytes = 0;

using Reader = bool (*)(tags::ByteSource&, tags::TagFields&);

void ReadBy(Reader read, int file, std::size_t size, bool picture) {
  reads = 0;
  bytes = 0;
  tags::ByteSource source(file, size);
  tags::TagFields fields(picture);
  read(source, fields);
  support::Require(reads <= kMostReads && bytes <= kMostBytes + tags::ByteSource::kMost);
  const engine::TrackTags found = fields.take();
  for (const std::string* text : {&found.title, &found.artist, &found.albumArtist, &found.album, &found.genre,
                                  &found.collectionId, &found.discId})
    support::Require(text->size() <= tags::TagFields::kLongest && base::IsPlainUtf8(*text));
  support::Require(fields.takePicture().size() <= tags::ByteSource::kLargestCopy);
}

/// The bytes and, behind them, as many zeros as make that size.
void Read(const void* data, std::size_t length, std::size_t size) {
  static const int file = ::memfd_create("fuzz", MFD_CLOEXEC);
  support::Require(::ftruncate(file, 0) == 0 &&
                   ::pwrite(file, data, length, 0) == static_cast<ssize_t>(length) &&
                   ::ftruncate(file, static_cast<off_t>(size)) == 0);
  static constexpr std::array<Reader, 13> kReaders{
      tags::ReadMpegAudio, tags::ReadFlac, tags::ReadOgg,      tags::ReadMp4,    tags::ReadMatroska,
      tags::ReadRiff,      tags::ReadAiff, tags::ReadAsf,      tags::ReadMonkey, tags::ReadMusepack,
      tags::ReadWavPack,   tags::ReadDsf,  tags::ReadTrueAudio};
  for (const Reader read : kReaders)
    for (const bool picture : {false, true}) ReadBy(read, file, size, picture);
}

}  // namespace

// In the place of the C library's, so that each read is counted.
// NOLINTBEGIN(cert-dcl50-cpp,readability-inconsistent-declaration-parameter-name)
extern "C" {

ssize_t pread(int file, void* target, size_t size, off_t place) {
  const ssize_t got = ::syscall(SYS_pread64, file, target, size, place);
  ++reads;
  if (got > 0) bytes += static_cast<std::uint64_t>(got);
  return got;
}
ssize_t pread64(int file, void* target, size_t size, off64_t place) {
  return pread(file, target, size, place);
}

}  // extern "C"
// NOLINTEND(cert-dcl50-cpp,readability-inconsistent-declaration-parameter-name)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Read(data, size, size);
  const std::string spelled = support::Spelled(data, size);
  if (spelled.size() != size) Read(spelled.data(), spelled.size(), spelled.size());
  // Only a large file comes to the bounds, and few of its kind take long.
  if (size % 8 == 0) Read(data, size, kLarge);
  return 0;
}
