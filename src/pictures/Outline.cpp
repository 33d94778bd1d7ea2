#include "pictures/Outline.hpp"

#include <algorithm>
#include <cstdlib>

#include "pictures/Walk.hpp"

namespace pictures {
namespace {

/// The markers of a JPEG that matter here.
enum Marker : std::uint8_t {
  kFrameFirst = 0xC0,
  kTables = 0xC4,
  kExtension = 0xC8,
  kArithmetic = 0xCC,
  kFrameLast = 0xCF,
  kRestartFirst = 0xD0,
  kRestartLast = 0xD7,
  kBegin = 0xD8,
  kEnd = 0xD9,
  kScan = 0xDA,
  kAlone = 0x01,
};

bool IsFrame(std::uint8_t marker) {
  return marker >= kFrameFirst && marker <= kFrameLast && marker != kTables && marker != kExtension &&
         marker != kArithmetic;
}

/// On to the byte behind the next 0xFF that begins a marker; 0 when there is none. Within a scan, pixels' own
/// 0xFF are followed by 0.
std::uint8_t NextMarker(std::string_view bytes, Walk& walk) {
  while (walk.inside()) {
    const std::size_t found = bytes.find('\xFF', walk.at());
    if (found == std::string_view::npos) return 0;
    walk.to(found + 1);
    const auto next = found + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[found + 1]) : 0;
    if (next == 0xFF) continue;
    walk.skip(1);
    if (next != 0) return next;
  }
  return 0;
}

}  // namespace

Outline OutlineOfJpeg(std::string_view bytes) {
  Outline outline{"jpeg"};
  Walk walk(bytes);
  outline.passes = 0;
  while (const std::uint8_t marker = NextMarker(bytes, walk)) {
    // The end of a small picture within a segment is not the end of this one: segments are passed over.
    if (marker == kEnd) {
      outline.whole = outline.passes > 0;
      break;
    }
    if (marker == kBegin || marker == kAlone || (marker >= kRestartFirst && marker <= kRestartLast)) continue;
    const std::size_t next = walk.at() + walk.big(2);
    if (IsFrame(marker) && outline.size.width == 0) {
      walk.skip(1);
      outline.size.height = static_cast<int>(walk.big(2));
      outline.size.width = static_cast<int>(walk.big(2));
    }
    if (marker == kScan) ++outline.passes;
    walk.to(next);
  }
  return outline;
}

Outline OutlineOfBmp(std::string_view bytes) {
  constexpr std::uint32_t kOldHead = 12;  // with numbers of two bytes
  Outline outline{"bmp"};
  Walk walk(bytes, 2);
  const bool there = walk.little(4) <= bytes.size() && bytes.size() > 26;
  walk.to(10);
  const std::uint32_t pixels = walk.little(4);
  const std::uint32_t head = walk.little(4);
  walk.to(46);
  const std::uint32_t colours = head == kOldHead ? 0 : walk.little(4);
  // The loader makes as much room as these say before it has looked any further.
  outline.whole = there && pixels <= bytes.size() && head <= bytes.size() && colours <= bytes.size() / 4;
  walk.to(18);
  const unsigned digits = head == kOldHead ? 2 : 4;
  const auto width = static_cast<std::int32_t>(walk.little(digits));
  const auto height = static_cast<std::int32_t>(walk.little(digits));
  // Below zero it stands on its head.
  outline.size = {std::max(0, width), height == INT32_MIN ? 0 : std::abs(height)};
  return outline;
}

Outline OutlineOf(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xD8\xFF")) return OutlineOfJpeg(bytes);
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return OutlineOfPng(bytes);
  if (bytes.starts_with("GIF8")) return OutlineOfGif(bytes);
  if (bytes.starts_with("BM")) return OutlineOfBmp(bytes);
  if (bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP")) return OutlineOfWebp(bytes);
  return {};
}

bool WithinBounds(Size size) {
  return size.width > 0 && size.height > 0 && size.width <= kMostPixels / size.height;
}

}  // namespace pictures
