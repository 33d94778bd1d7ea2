// Any bytes as a picture, and good pictures of all kinds with some of their bytes changed: nothing crashes,
// and what can be shown can be made small.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "pictures/Picture.hpp"
#include "pictures/PictureMaker.hpp"

namespace {

void Look(const std::string& bytes) {
  constexpr std::int64_t kMostPixels = 1 << 18;  // of those that are unpacked here, for the sake of speed
  constexpr int kSide = 16;
  const pictures::Size size = pictures::SizeOf(bytes);
  if (size.width < 0 || size.height < 0) std::abort();
  if (std::int64_t{size.width} * size.height > kMostPixels) return;
  const bool good = pictures::CanBeShown(bytes);
  const std::string small = pictures::Thumbnail(bytes, kSide);
  if (!good && !small.empty()) std::abort();
  const pictures::Size made = pictures::SizeOf(small);
  if (made.width > kSide || made.height > kSide) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace pictures::testing;
  static const std::array kGood{
      Saved("png", 20, 20),  FlatPng(20, 20, {true, 0}),
      Saved("jpeg", 20, 20), WithSegment(Saved("jpeg", 20, 20), '\xE1', Orientation(6)),
      FlatGif(20, 20, 2),    FlatBmp(20, 20),
      Saved("webp", 20, 20), FlatWebp(20, 20),
      MovingWebp(20, 20, 2)};
  Look({reinterpret_cast<const char*>(data), size});
  if (size == 0) return 0;
  // Three bytes each: where, and what.
  std::string changed = kGood[data[0] % kGood.size()];
  for (std::size_t at = 1; at + 2 < size; at += 3) {
    const std::size_t place = data[at] * std::size_t{256} + data[at + 1];
    changed[place % changed.size()] = static_cast<char>(data[at + 2]);
  }
  Look(changed);
  return 0;
}
