#include "engine/shown/BoxWalk.hpp"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>

#include "engine/shown/UnreadTags.hpp"
#include "engine/tags/Bytes.hpp"

namespace engine {
namespace {

constexpr int kMostBoxes = 10'000;

bool IsOneOf(std::string_view type, std::initializer_list<std::string_view> types) {
  return std::find(types.begin(), types.end(), type) != types.end();
}

/// Whether the decoder looks for boxes in one of that type. A "free" one it takes for a "moov" if it must.
bool HoldsBoxes(std::string_view type) {
  return IsOneOf(
      type, {"moov", "trak", "moof", "hoov", "free", "meta", "udta", "mdia", "minf", "stbl", "traf", "mvex",
             "edts", "dinf", "ilst", "tref", "sinf", "schi", "stsd", "wave", "wide", "cmov", "glbl"});
}

bool IsOfFragments(std::string_view type) { return IsOneOf(type, {"moof", "sidx", "mfra"}); }

BoxWalk WalkFrom(std::uint64_t at, UnreadTags& file, std::uint64_t size) {
  BoxWalk walk;
  std::array<char, 16> head{};
  bool fragments = false;
  for (int i = 0; i < kMostBoxes; ++i) {
    // What is shorter than a head is no box any more.
    if (at > size || size - at < 8) {
      walk.plain = !fragments;
      return walk;
    }
    const std::int64_t count = file.read(head.data(), head.size(), at);
    if (count < 8) return walk;
    const std::string_view bytes(head.data(), static_cast<std::size_t>(count));
    const std::string_view type = bytes.substr(4, 4);
    walk.boxes = walk.boxes || HoldsBoxes(type);
    fragments = fragments || IsOfFragments(type);
    std::uint64_t length = tags::Big(bytes, 0, 4);
    std::uint64_t headSize = 8;
    if (length == 1 && bytes.size() == head.size()) {
      length = tags::Big(bytes, 8, 8);
      headSize = 16;
    } else if (length == 0) {
      length = size - at;
    }
    if (length < headSize) return walk;
    const std::uint64_t next = at + std::min(length, size - at);
    if (type == "mdat") walk.sound.emplace_back(at + headSize, next);
    at = next;
  }
  return walk;
}

}  // namespace

BoxWalk BoxWalk::Over(UnreadTags& file, std::uint64_t size) {
  BoxWalk walk = WalkFrom(file.frontEnd(), file, size);
  if (file.frontEnd() == 0) return walk;
  // Where nothing was found behind them, the decoder begins again before the tags. Were there more tags than
  // anybody has, what is behind them isn't known.
  std::array<char, 3> begin{};
  const bool more = file.read(begin.data(), begin.size(), file.frontEnd()) == 3 &&
                    std::string_view(begin.data(), begin.size()) == "ID3";
  walk.boxes = walk.boxes || more || WalkFrom(0, file, size).boxes;
  walk.plain = false;
  return walk;
}

}  // namespace engine
