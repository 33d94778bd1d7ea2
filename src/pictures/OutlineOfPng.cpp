#include <zlib.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <vector>

#include "pictures/Outline.hpp"
#include "pictures/Walk.hpp"

namespace pictures {
namespace {

struct Head {
  std::uint64_t width = 0;
  std::uint64_t height = 0;
  std::uint64_t bits = 0;  ///< of a pixel
  bool interlaced = false;
};

std::uint64_t BytesOfRows(const Head& head, std::uint64_t width, std::uint64_t height) {
  return width == 0 ? 0 : height * (1 + (width * head.bits + 7) / 8);
}

/// How many bytes its rows take unpacked.
std::uint64_t BytesOf(const Head& head) {
  struct Pass {
    std::uint64_t x, everyX, y, everyY;
  };
  constexpr std::array<Pass, 7> kPasses{
      {{0, 8, 0, 8}, {4, 8, 0, 8}, {0, 4, 4, 8}, {2, 4, 0, 4}, {0, 2, 2, 4}, {1, 2, 0, 2}, {0, 1, 1, 2}}};
  if (!head.interlaced) return BytesOfRows(head, head.width, head.height);
  std::uint64_t bytes = 0;
  for (const Pass& pass : kPasses) {
    bytes += BytesOfRows(head, (head.width + pass.everyX - 1 - pass.x) / pass.everyX,
                         (head.height + pass.everyY - 1 - pass.y) / pass.everyY);
  }
  return bytes;
}

std::uint64_t ChannelsOf(std::uint8_t colours) {
  switch (colours) {
    case 2: return 3;
    case 4: return 2;
    case 6: return 4;
    default: return 1;
  }
}

/// Whether so many bytes come out of the packed parts. The loader takes fewer for a picture too, and shows
/// grey where they are missing.
bool Unpacks(const std::vector<std::string_view>& parts, std::uint64_t bytes) {
  std::array<Bytef, std::size_t{32} << 10U> room{};
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return false;
  int done = Z_OK;
  for (const std::string_view part : parts) {
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(part.data()));
    stream.avail_in = static_cast<uInt>(part.size());
    do {
      stream.next_out = room.data();
      stream.avail_out = static_cast<uInt>(room.size());
      done = inflate(&stream, Z_NO_FLUSH);
    } while (done == Z_OK && stream.avail_out == 0 && stream.total_out < bytes);
    if (stream.total_out >= bytes || (done != Z_OK && done != Z_BUF_ERROR)) break;
  }
  const bool all = stream.total_out >= bytes;
  inflateEnd(&stream);
  return all;
}

}  // namespace

Outline OutlineOfPng(std::string_view bytes) {
  constexpr std::size_t kSignature = 8;
  constexpr std::uint32_t kHeadLength = 13;
  Outline outline{"png"};
  Walk walk(bytes, kSignature);
  if (walk.big(4) != kHeadLength || walk.take(4) != "IHDR") return outline;
  Head head;
  head.width = walk.big(4);
  head.height = walk.big(4);
  head.bits = walk.byte();
  head.bits *= ChannelsOf(walk.byte());
  walk.skip(2);
  head.interlaced = walk.byte() != 0;
  walk.skip(4);
  if (head.width > INT_MAX || head.height > INT_MAX) return outline;
  outline.size = {static_cast<int>(head.width), static_cast<int>(head.height)};

  std::vector<std::string_view> parts;
  bool end = false;
  while (!end && !walk.atEnd()) {
    const std::uint32_t length = walk.big(4);
    const std::string_view kind = walk.take(4);
    const std::string_view data = walk.take(length);
    walk.skip(4);
    if (!walk.inside()) break;
    if (kind == "IDAT") parts.push_back(data);
    end = kind == "IEND";
  }
  outline.byRows = !head.interlaced;
  outline.whole = end && WithinBounds(outline.size) && (outline.byRows || Unpacks(parts, BytesOf(head)));
  return outline;
}

}  // namespace pictures
