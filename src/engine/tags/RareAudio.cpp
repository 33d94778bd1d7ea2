#include <array>

#include "engine/tags/Bytes.hpp"
#include "engine/tags/Id3.hpp"
#include "engine/tags/Readers.hpp"

// Formats with a short head of numbers, and tags that other formats have too.
namespace engine::tags {
namespace {

void ReadTail(ByteSource& source, TagFields& fields) { ReadTrailer(source, FindTrailer(source), fields); }

}  // namespace

bool ReadMonkey(ByteSource& source, TagFields& fields) {
  TagFields ignored;
  const std::uint64_t at = ReadId3v2(source, 0, ignored);
  ReadTail(source, fields);
  const std::string head(source.at(at, 64));
  if (head.substr(0, 4) != "MAC ") return false;
  const std::uint64_t version = Little(head, 4, 2);
  std::uint64_t rate = 0;
  std::uint64_t frames = 0;
  std::uint64_t lastBlocks = 0;
  std::uint64_t blocks = 0;
  if (version >= 3980) {
    const std::string_view info = source.at(at + Little(head, 8, 4), 24);
    blocks = Little(info, 4, 4);
    lastBlocks = Little(info, 8, 4);
    frames = Little(info, 12, 4);
    rate = Little(info, 20, 4);
  } else {
    const bool large = version >= 3900 || (version >= 3800 && Little(head, 6, 2) == 4000);
    blocks = version >= 3950 ? 73728 * 4 : large ? 73728 : 9216;
    rate = Little(head, 12, 4);
    frames = Little(head, 24, 4);
    lastBlocks = Little(head, 28, 4);
  }
  fields.length(frames == 0 ? 0 : (frames - 1) * blocks + lastBlocks, rate);
  return rate != 0;
}

bool ReadMusepack(ByteSource& source, TagFields& fields) {
  static constexpr std::array<std::uint64_t, 4> kRates{44100, 48000, 37800, 32000};
  TagFields ignored;
  std::uint64_t at = ReadId3v2(source, 0, ignored);
  ReadTail(source, fields);
  const std::string head(source.at(at, 64));
  if (head.substr(0, 3) == "MP+" && (Byte(head, 3) & 15U) == 7) {
    const std::uint64_t samples = Little(head, 4, 4) * 1152;
    fields.length(samples > 576 ? samples - 576 : 0, kRates.at(Byte(head, 10) & 3U));
    return true;
  }
  if (head.substr(0, 4) != "MPCK") return false;
  const auto number = [&](std::size_t& place) {
    std::uint64_t value = 0;
    for (int i = 0; i < 9; ++i) {
      const std::uint64_t byte = Byte(head, place++);
      value = value << 7U | (byte & 0x7FU);
      if ((byte & 0x80U) == 0) break;
    }
    return value;
  };
  std::size_t place = 6;
  number(place);  // its size
  if (head.substr(4, 2) != "SH") return false;
  place += 5;  // a sum and a version
  const std::uint64_t samples = number(place);
  const std::uint64_t silent = number(place);
  fields.length(samples > silent ? samples - silent : 0, kRates.at(Byte(head, place) >> 5U & 3U));
  return true;
}

bool ReadWavPack(ByteSource& source, TagFields& fields) {
  static constexpr std::array<std::uint64_t, 16> kRates{6000,  8000,  9600,   11025, 12000, 16000,
                                                        22050, 24000, 32000,  44100, 48000, 64000,
                                                        88200, 96000, 192000, 44100};
  ReadTail(source, fields);
  const std::string_view head = source.at(0, 32);
  if (head.substr(0, 4) != "wvpk") return false;
  const std::uint64_t samples = Little(head, 12, 4);
  fields.length(samples == 0xFFFFFFFF ? 0 : samples, kRates.at(Little(head, 24, 4) >> 23U & 15U));
  return true;
}

bool ReadTrueAudio(ByteSource& source, TagFields& fields) {
  const std::uint64_t at = ReadId3v2(source, 0, fields);
  ReadTail(source, fields);
  const std::string_view head = source.at(at, 22);
  if (head.substr(0, 4) != "TTA1") return false;
  fields.length(Little(head, 14, 4), Little(head, 10, 4));
  return Little(head, 10, 4) != 0;
}

bool ReadDsf(ByteSource& source, TagFields& fields) {
  const std::string head(source.at(0, 80));
  if (head.substr(0, 4) != "DSD " || head.size() < 80) return false;
  const std::uint64_t rate = Little(head, 56, 4);
  fields.length(Little(head, 64, 8), rate);
  if (const std::uint64_t tag = Little(head, 20, 8); tag != 0) ReadId3v2(source, tag, fields);
  return rate != 0;
}

}  // namespace engine::tags
