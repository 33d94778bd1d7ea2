#include "engine/common/TagBuilder.hpp"

#include <sys/resource.h>
#include <zlib.h>

#include <filesystem>
#include <fstream>

namespace engine::testing {

std::string Big(std::uint64_t value, int bytes) {
  std::string text;
  while (bytes-- > 0) text += static_cast<char>(value >> 8U * static_cast<unsigned>(bytes) & 0xFFU);
  return text;
}

std::string Little(std::uint64_t value, int bytes) {
  const std::string text = Big(value, bytes);
  return {text.rbegin(), text.rend()};
}

std::string Packed(const std::string& bytes) {
  uLongf size = compressBound(bytes.size());
  std::string packed(size, '\0');
  compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
            bytes.size(), 9);
  packed.resize(size);
  return packed;
}

namespace {

std::string Sevens(std::uint64_t value) {
  std::string text;
  for (const unsigned shift : {21U, 14U, 7U, 0U}) text += static_cast<char>(value >> shift & 0x7FU);
  return text;
}

}  // namespace

std::string Id3Tag(int version, const std::string& frames) {
  return std::string("ID3") + static_cast<char>(version) + std::string(2, '\0') + Sevens(frames.size()) +
         frames;
}

std::string Frame(int version, const std::string& id, const std::string& content, unsigned flags) {
  return id + (version == 4 ? Sevens(content.size()) : Big(content.size(), 4)) + Big(flags, 2) + content;
}

std::string PackedFrame(int version, const std::string& id, const std::string& content) {
  const std::string size = version == 4 ? Sevens(content.size()) : Big(content.size(), 4);
  return Frame(version, id, size + Packed(content), version == 4 ? 0x0009U : 0x0080U);
}

std::string MpegSilence() {
  std::string bytes;
  for (int i = 0; i < 50; ++i) bytes += std::string("\xFF\xFB\x90\xC0", 4) + std::string(413, '\0');
  return bytes;
}

std::string Box(const std::string& type, const std::string& content) {
  return Big(content.size() + 8, 4) + type + content;
}

std::string Mp4With(const std::string& itemType, const std::string& data) {
  const std::string item = Box(itemType, Box("data", Big(1, 4) + Big(0, 4) + data));
  const std::string header =
      Box("mvhd", std::string(12, '\0') + Big(1000, 4) + Big(2500, 4) + std::string(80, '\0'));
  return Box("ftyp", "M4A ") + Box("moov", header + Box("udta", Box("meta", Big(0, 4) + Box("ilst", item))));
}

std::string FlacWith(const std::string& comments) {
  const std::string info =
      std::string(10, '\0') + std::string("\x0A\xC4\x42\xF0\x00\x00\xAC\x44", 8) + std::string(16, '\0');
  return "fLaC" + Big(0, 1) + Big(info.size(), 3) + info + Big(0x84, 1) +
         Big(comments.size() & 0xFFFFFFU, 3) + comments;
}

std::string Comments(const std::string& first) {
  return Little(0, 4) + Little(2, 4) + Little(first.size(), 4) + first + Little(10, 4) + "ARTIST=Ann";
}

void Write(const std::string& path, const std::string& bytes, std::uint64_t size) {
  std::ofstream(path, std::ios::binary) << bytes;
  if (size > bytes.size()) std::filesystem::resize_file(path, size);
}

std::size_t PeakMemory() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

}  // namespace engine::testing
