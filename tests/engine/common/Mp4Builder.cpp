#include "engine/common/Mp4Builder.hpp"

#include "engine/common/TagBuilder.hpp"

namespace engine::testing {
namespace {

std::string Zeros(std::size_t count) { return std::string(count, '\0'); }

}  // namespace

std::string FullBox(const std::string& type, const std::string& content, std::uint32_t flags) {
  return Box(type, Big(flags, 4) + content);
}

std::string Sizes(std::uint32_t size, std::uint32_t count) {
  return FullBox("stsz", Big(size, 4) + Big(count, 4));
}

std::string Times(std::uint32_t count, std::uint32_t length) {
  return FullBox("stts", Big(1, 4) + Big(count, 4) + Big(length, 4));
}

std::string Spread(std::uint32_t each) {
  return FullBox("stsc", Big(1, 4) + Big(1, 4) + Big(each, 4) + Big(1, 4));
}

std::string Chunks(std::uint32_t count, std::uint32_t at) {
  std::string places;
  for (std::uint32_t i = 0; i < count; ++i) places += Big(at, 4);
  return FullBox("stco", Big(count, 4) + places);
}

std::string Edits(std::uint32_t count) {
  std::string edits;
  for (std::uint32_t i = 0; i < count; ++i) edits += Big(0x40000000, 4) + Big(0, 4) + Big(0x10000, 4);
  return Box("edts", FullBox("elst", Big(count, 4) + edits));
}

std::string Mp4Track(std::uint32_t id, const std::string& lists, const std::string& edits) {
  const std::string header = FullBox("tkhd", Zeros(8) + Big(id, 4) + Zeros(68), 7);
  const std::string time = FullBox("mdhd", Zeros(8) + Big(44100, 4) + Big(44100, 4) + Zeros(4));
  const std::string kind = FullBox("hdlr", Zeros(4) + "soun" + Zeros(13));
  const std::string sound = Box(
      "sowt", Zeros(6) + Big(1, 2) + Zeros(8) + Big(2, 2) + Big(16, 2) + Zeros(4) + Big(44100, 2) + Zeros(2));
  const std::string table = Box("stbl", FullBox("stsd", Big(1, 4) + sound) + lists);
  return Box("trak", header + edits + Box("mdia", time + kind + Box("minf", table)));
}

std::string Tracks(std::uint32_t samples, std::uint32_t size) {
  std::string tracks;
  for (std::uint32_t id = 1; id <= 8; ++id) {
    tracks += Mp4Track(id, Times(samples, 1024) + Spread(samples) + Sizes(size, samples) + Chunks(1));
  }
  return tracks;
}

std::string Movie(const std::string& tracks) {
  return Box("moov", FullBox("mvhd", Zeros(8) + Big(1000, 4) + Big(1000, 4) + Zeros(80)) + tracks);
}

std::string Fragment(const std::string& runs) {
  // What a sample is unless its run says so: a thousandth of a second, four hundred bytes.
  const std::string head = FullBox("tfhd", Big(1, 4) + Big(44, 4) + Big(400, 4), 0x20018);
  return Box("moof", FullBox("mfhd", Big(1, 4)) + Box("traf", head + runs));
}

std::string SampleRun(std::uint32_t count) { return FullBox("trun", Big(count, 4)); }

std::string Mp4File(const std::string& boxes) { return Box("ftyp", "isom" + Zeros(4) + "isom") + boxes; }

}  // namespace engine::testing
