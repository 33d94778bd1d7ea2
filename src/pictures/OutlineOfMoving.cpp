#include <algorithm>

#include "pictures/Outline.hpp"
#include "pictures/Walk.hpp"

// The kinds that may move. Of those the first frame is shown, and nothing else of them is given to the
// library: a few bytes may stand for a frame of many millions of pixels, and there may be thousands.
namespace pictures {
namespace {

using namespace std::string_literals;

/// Passes over blocks that each begin with their length, up to the empty one.
void SkipBlocks(Walk& walk) {
  while (const std::uint8_t length = walk.byte()) walk.skip(length);
}

void SkipColours(Walk& walk, std::uint8_t flags) {
  constexpr std::uint8_t kThere = 0x80;
  if ((flags & kThere) != 0) walk.skip(std::size_t{3} << ((flags & 7U) + 1));
}

std::string LittleEndian(std::uint32_t number, unsigned count) {
  std::string bytes;
  for (unsigned i = 0; i < count; ++i) bytes += static_cast<char>((number >> (8 * i)) & 0xFFU);
  return bytes;
}

struct Chunk {
  std::string_view kind;
  std::string_view data;
  std::string_view all;  ///< with its head and what fills it up
};

/// None, with an empty kind, where there is no whole one.
Chunk NextChunk(std::string_view bytes, Walk& walk) {
  const std::size_t from = walk.at();
  Chunk chunk;
  chunk.kind = walk.take(4);
  const std::uint32_t length = walk.little(4);
  chunk.data = walk.take(length);
  if (chunk.kind.size() < 4 || !walk.inside()) return {};
  walk.skip(length % 2);
  chunk.all = bytes.substr(from, walk.at() - from);
  return chunk;
}

/// The size that a frame's own head tells; none for another chunk.
Size FrameSize(const Chunk& chunk) {
  constexpr std::uint32_t kFourteenBits = 0x3FFF;
  if (chunk.kind == "VP8L") {
    Walk walk(chunk.data, 1);
    const std::uint32_t both = walk.little(4);
    return {static_cast<int>((both & kFourteenBits) + 1),
            static_cast<int>(((both >> 14U) & kFourteenBits) + 1)};
  }
  if (chunk.kind != "VP8 ") return {};
  Walk walk(chunk.data, 6);
  const auto width = static_cast<int>(walk.little(2) & kFourteenBits);
  return {width, static_cast<int>(walk.little(2) & kFourteenBits)};
}

/// A frame as a file of its own.
std::string FileOf(Size size, std::string_view transparency, const Chunk& frame) {
  std::string chunks = "WEBP";
  if (!transparency.empty()) {
    chunks += "VP8X\x0A\0\0\0\x10\0\0\0"s + LittleEndian(static_cast<std::uint32_t>(size.width - 1), 3) +
              LittleEndian(static_cast<std::uint32_t>(size.height - 1), 3);
    chunks += transparency;
  }
  chunks += frame.all;
  return "RIFF" + LittleEndian(static_cast<std::uint32_t>(chunks.size()), 4) + chunks;
}

/// Takes the first of the frames among these chunks into the outline.
void TakeFrame(std::string_view bytes, Walk& walk, bool moving, Outline& outline) {
  constexpr std::size_t kFrameHead = 16;
  std::string_view transparency;
  for (Chunk chunk = NextChunk(bytes, walk); !chunk.kind.empty(); chunk = NextChunk(bytes, walk)) {
    if (moving && chunk.kind == "ANMF") {
      Walk inner(chunk.data, std::min(kFrameHead, chunk.data.size()));
      TakeFrame(chunk.data, inner, false, outline);
      return;
    }
    if (chunk.kind == "ALPH") transparency = chunk.all;
    const Size size = FrameSize(chunk);
    if (moving || size.width == 0) continue;
    outline.size = size;
    outline.whole = true;
    outline.still = FileOf(size, chunk.kind == "VP8L" ? std::string_view() : transparency, chunk);
    return;
  }
}

}  // namespace

Outline OutlineOfGif(std::string_view bytes) {
  constexpr std::uint8_t kExtension = 0x21;
  constexpr std::uint8_t kFrame = 0x2C;
  Outline outline{"gif"};
  Walk walk(bytes, 6);
  int width = static_cast<int>(walk.little(2));
  int height = static_cast<int>(walk.little(2));
  outline.size = {width, height};
  const std::uint8_t flags = walk.byte();
  walk.skip(2);
  SkipColours(walk, flags);
  std::uint8_t block = walk.byte();
  for (; block == kExtension; block = walk.byte()) {
    walk.skip(1);
    SkipBlocks(walk);
  }
  if (block != kFrame) return outline;
  const auto x = static_cast<int>(walk.little(2));
  const auto y = static_cast<int>(walk.little(2));
  width = std::max(width, x + static_cast<int>(walk.little(2)));
  height = std::max(height, y + static_cast<int>(walk.little(2)));
  outline.size = {width, height};  // as large as is needed for a frame that sticks out
  SkipColours(walk, walk.byte());
  walk.skip(1);
  SkipBlocks(walk);
  outline.whole = walk.inside();
  if (outline.whole) outline.still = std::string(bytes.substr(0, walk.at())) + ';';
  return outline;
}

Outline OutlineOfWebp(std::string_view bytes) {
  constexpr std::size_t kHead = 12;
  constexpr std::uint8_t kMoves = 2;
  Outline outline{"webp"};
  Walk head(bytes, 4);
  const std::size_t end = std::size_t{head.little(4)} + 8;
  if (end > bytes.size()) return outline;
  const std::string_view file = bytes.substr(0, end);
  Walk walk(file, kHead);
  const Chunk first = NextChunk(file, walk);
  if (first.kind == "VP8X") {
    Walk inner(first.data);
    const bool moving = (inner.byte() & kMoves) != 0;
    TakeFrame(file, walk, moving, outline);
    if (moving) return outline;
    outline.still.clear();  // it has more to tell than its frame, such as its colours
    inner.skip(3);
    outline.size.width = std::max(outline.size.width, static_cast<int>(inner.little(3)) + 1);
    outline.size.height = std::max(outline.size.height, static_cast<int>(inner.little(3)) + 1);
    return outline;
  }
  outline.size = FrameSize(first);
  outline.whole = outline.size.width > 0;
  return outline;
}

}  // namespace pictures
