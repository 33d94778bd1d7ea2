#include <algorithm>
#include <array>
#include <optional>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Id3.hpp"
#include "engine/tags/Readers.hpp"

namespace engine::tags {
namespace {

constexpr std::uint64_t kSearched = std::uint64_t{256} * 1024;  // so far the first frame is looked for

struct Header {
  std::uint32_t fixed = 0;  ///< the bits that stay the same from frame to frame
  std::uint64_t rate = 0;
  std::uint64_t bits = 0;  ///< a second
  std::uint64_t samples = 0;
  std::uint64_t size = 0;  ///< in bytes, the header among them
  std::size_t infoAt = 0;  ///< where an encoder's notes would lie
};

std::optional<Header> HeaderFrom(std::string_view bytes) {
  static constexpr std::array<std::array<int, 15>, 5> kBits{{
      {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},  // MPEG 1, layer 1
      {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},     // layer 2
      {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},      // layer 3
      {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},     // MPEG 2, layer 1
      {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},          // its layers 2 and 3
  }};
  static constexpr std::array<std::uint64_t, 3> kRates{44100, 48000, 32000};
  const auto word = static_cast<std::uint32_t>(Big(bytes, 0, 4));
  const std::uint32_t version = word >> 19U & 3U;  // 3: MPEG 1, 2: MPEG 2, 0: MPEG 2.5
  const std::uint32_t layer = 4 - (word >> 17U & 3U);
  const std::uint32_t bits = word >> 12U & 15U;
  const std::uint32_t rate = word >> 10U & 3U;
  if (bytes.size() < 4 || word >> 21U != 0x7FFU || version == 1 || layer == 4 || bits == 0 || bits == 15 ||
      rate == 3)
    return std::nullopt;
  Header header;
  header.fixed = word & 0xFFFE0C00U;
  header.rate = kRates.at(rate) / (version == 3 ? 1 : version == 2 ? 2 : 4);
  const std::size_t row = version == 3 ? layer - 1 : layer == 1 ? 3 : 4;
  header.bits = static_cast<std::uint64_t>(kBits.at(row).at(bits)) * 1000;
  header.samples = layer == 1 ? 384 : layer == 3 && version != 3 ? 576 : 1152;
  const std::uint64_t padding = (word >> 9U & 1U) == 0 ? 0 : layer == 1 ? 4 : 1;
  header.size = layer == 1 ? 12 * header.bits / header.rate * 4 + padding
                           : header.samples / 8 * header.bits / header.rate + padding;
  const bool mono = (word >> 6U & 3U) == 3;
  header.infoAt = 4 + (version == 3 ? (mono ? 17U : 32U) : (mono ? 9U : 17U));
  return header;
}

/// The first frame that another one follows, or the file's end.
std::optional<Header> FirstFrame(ByteSource& source, std::uint64_t from, std::uint64_t end,
                                 std::uint64_t& at) {
  const std::uint64_t last = std::min(end, from + kSearched);
  for (at = from; at < last;) {
    const std::string_view bytes = source.at(at, 4096);
    const std::size_t mark = bytes.find('\xFF');
    if (bytes.size() < 4) return std::nullopt;
    if (mark == std::string_view::npos || mark + 4 > bytes.size()) {
      at += mark == std::string_view::npos ? bytes.size() : std::max<std::size_t>(mark, 1);
      if (mark == 0) ++at;
      continue;
    }
    at += mark;
    const auto header = HeaderFrom(bytes.substr(mark, 4));
    if (header) {
      const std::uint64_t next = at + header->size;
      const auto follower = next + 4 <= end ? HeaderFrom(source.at(next, 4)) : std::nullopt;
      if (next + 4 > end || (follower && follower->fixed == header->fixed)) return header;
    }
    ++at;
  }
  return std::nullopt;
}

/// The number of frames where an encoder has noted it, else 0.
std::uint64_t NotedFrames(std::string_view frame, const Header& header) {
  const std::string_view info = Part(frame, header.infoAt, 12);
  const bool xing = info.substr(0, 4) == "Xing" || info.substr(0, 4) == "Info";
  if (xing && (Byte(info, 7) & 1U) != 0) return Big(info, 8, 4);
  const std::string_view other = Part(frame, 36, 18);
  return other.substr(0, 4) == "VBRI" ? Big(other, 14, 4) : 0;
}

}  // namespace

bool ReadMpegAudio(ByteSource& source, TagFields& fields) {
  std::uint64_t begin = ReadId3v2(source, 0, fields);
  for (int i = 0; begin != 0 && i < 8; ++i) {  // some files have several, one behind the other
    const std::uint64_t next = ReadId3v2(source, begin, fields);
    if (next == begin) break;
    begin = next;
  }
  std::uint64_t at = 0;
  const auto header = FirstFrame(source, begin, source.size(), at);
  const std::uint64_t noted = header ? NotedFrames(source.at(at, 64), *header) : 0;
  const Trailer trailer = FindTrailer(source);
  ReadTrailer(source, trailer, fields);
  if (!header) return false;
  if (noted != 0) {
    fields.length(noted * header->samples, header->rate);
  } else if (trailer.musicEnd > at) {
    fields.length((trailer.musicEnd - at) * 8, header->bits);
  }
  return true;
}

}  // namespace engine::tags
