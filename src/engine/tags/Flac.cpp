#include "engine/tags/Bytes.hpp"
#include "engine/tags/Id3.hpp"
#include "engine/tags/Readers.hpp"
#include "engine/tags/XiphComments.hpp"

namespace engine::tags {
namespace {
constexpr int kMostBlocks = 1024;
enum Block : std::uint8_t { kStreamInfo = 0, kComments = 4, kPicture = 6 };
}  // namespace

bool ReadFlac(ByteSource& source, TagFields& fields) {
  TagFields other;  // its own comments count before an ID3 that stands in front of them
  std::uint64_t at = source.at(0, 4) == "fLaC" ? 0 : ReadId3v2(source, 0, other);
  if (source.at(at, 4) != "fLaC") return false;
  at += 4;
  bool found = false;
  for (int i = 0; i < kMostBlocks; ++i) {
    const std::string_view head = source.at(at, 4);
    if (head.size() < 4) break;
    const bool last = (Byte(head, 0) & 0x80U) != 0;
    const auto kind = static_cast<std::uint8_t>(Byte(head, 0) & 0x7FU);
    const std::uint64_t size = Big(head, 1, 3);
    at += 4;
    if (kind == kStreamInfo) {
      const std::string_view info = source.at(at, 18);
      const std::uint64_t rate = Big(info, 10, 3) >> 4U;
      fields.length(Big(info, 13, 5) & 0xFFFFFFFFFU, rate);
      found = rate != 0;
    } else if (kind == kComments) {
      FileStream comments(source, at, at + size);
      ReadXiphComments(comments, fields);
    } else if (kind == kPicture && fields.wantsPicture(true, size)) {
      ReadFlacPicture(source.copy(at, size), fields);
    }
    at += size;
    if (last) break;
  }
  return found;
}

}  // namespace engine::tags
