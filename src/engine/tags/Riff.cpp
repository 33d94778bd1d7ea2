#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "base/Text.hpp"
#include "engine/tags/Bytes.hpp"
#include "engine/tags/Id3.hpp"
#include "engine/tags/Readers.hpp"

namespace engine::tags {
namespace {

constexpr int kMostChunks = 1024;

struct Chunk {
  std::string id;
  std::uint64_t begin = 0;  ///< of its content
  std::uint64_t end = 0;
};

using Number = std::uint64_t (*)(std::string_view, std::size_t, std::size_t);

template <typename Work>
void ForEachChunk(ByteSource& source, std::uint64_t at, std::uint64_t end, Number number, const Work& work) {
  for (int i = 0; i < kMostChunks && at + 8 <= end; ++i) {
    const std::string_view head = source.at(at, 8);
    if (head.size() < 8) return;
    Chunk chunk{std::string(head.substr(0, 4)), at + 8, 0};
    const std::uint64_t size = number(head, 4, 4);
    chunk.end = std::min(chunk.begin + size, end);
    work(chunk);
    at = chunk.begin + size + (size & 1U);
  }
}

constexpr std::array<std::pair<std::string_view, Field>, 7> kInfo{{
    {"INAM", Field::kTitle},
    {"IART", Field::kArtist},
    {"IPRD", Field::kAlbum},
    {"IGNR", Field::kGenre},
    {"ICRD", Field::kYear},
    {"IPRT", Field::kTrack},
    {"ITRK", Field::kTrack},
}};

void ReadInfo(ByteSource& source, const Chunk& list, TagFields& fields) {
  ForEachChunk(source, list.begin + 4, list.end, Little, [&](const Chunk& chunk) {
    const auto* found =
        std::find_if(kInfo.begin(), kInfo.end(), [&](const auto& info) { return info.first == chunk.id; });
    if (found == kInfo.end()) return;
    const std::string_view text = source.at(
        chunk.begin,
        static_cast<std::size_t>(std::min<std::uint64_t>(chunk.end - chunk.begin, TagFields::kMostOfText)));
    const std::string_view whole = text.substr(0, text.find('\0'));
    if (base::IsPlainUtf8(whole)) {
      fields.offer(found->second, whole);
    } else {
      fields.offerLatin(found->second, whole);
    }
  });
}

/// A film's frames, and how long each stands.
void ReadFilmHeader(ByteSource& source, const Chunk& list, TagFields& fields) {
  ForEachChunk(source, list.begin + 4, list.end, Little, [&](const Chunk& chunk) {
    const std::string_view head = source.at(chunk.begin, 20);
    if (chunk.id == "avih") fields.length(Little(head, 0, 4) * Little(head, 16, 4) / 1000);
  });
}

/// An 80-bit number of whole samples a second.
std::uint64_t Extended(std::string_view bytes) {
  const auto exponent = static_cast<int>(Big(bytes, 0, 2) & 0x7FFFU) - 16383 - 63;
  const double value = std::ldexp(static_cast<double>(Big(bytes, 2, 8)), exponent);
  return value > 0 && value < 1e9 ? static_cast<std::uint64_t>(std::llround(value)) : 0;
}

}  // namespace

bool ReadRiff(ByteSource& source, TagFields& fields) {
  const std::string kind(source.at(0, 12));
  const bool film = kind.size() == 12 && kind.substr(8) == "AVI ";
  if (kind.size() < 12 || (kind.substr(0, 4) != "RIFF" && kind.substr(0, 4) != "RF64") ||
      (!film && kind.substr(8) != "WAVE"))
    return false;
  std::uint64_t bytesASecond = 0;
  std::uint64_t bytes = 0;
  bool found = film;
  Chunk info;
  ForEachChunk(source, 12, source.size(), Little, [&](const Chunk& chunk) {
    if (chunk.id == "fmt ") {
      const std::string_view head = source.at(chunk.begin, 16);
      bytesASecond = Little(head, 8, 4);
      found = Little(head, 4, 4) != 0;
    }
    if (chunk.id == "data") bytes = chunk.end - chunk.begin;
    if (chunk.id == "id3 " || chunk.id == "ID3 ") ReadId3v2(source, chunk.begin, fields);
    if (chunk.id != "LIST") return;
    const std::string_view list = source.at(chunk.begin, 4);
    if (list == "INFO") info = chunk;
    if (list == "hdrl") ReadFilmHeader(source, chunk, fields);
  });
  if (!film) fields.length(bytes, bytesASecond);
  if (info.end != 0 && !fields.any()) ReadInfo(source, info, fields);
  return found;
}

bool ReadAiff(ByteSource& source, TagFields& fields) {
  if (source.at(0, 4) != "FORM" || source.at(8, 3) != "AIF") return false;
  bool found = false;
  ForEachChunk(source, 12, source.size(), Big, [&](const Chunk& chunk) {
    if (chunk.id == "ID3 " || chunk.id == "id3 ") ReadId3v2(source, chunk.begin, fields);
    if (chunk.id != "COMM") return;
    const std::string_view head = source.at(chunk.begin, 18);
    const std::uint64_t rate = Extended(Part(head, 8));
    fields.length(Big(head, 2, 4), rate);
    found = rate != 0;
  });
  return found;
}

}  // namespace engine::tags
