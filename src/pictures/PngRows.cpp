#include "pictures/PngRows.hpp"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <vector>

namespace pictures {
namespace {

constexpr unsigned kWhite = 255;
constexpr std::size_t kColours = 3;

/// What the library takes the bytes from.
struct Source {
  std::string_view bytes;
  std::size_t at = 0;
};

[[noreturn]] void Fails(png_structp png, png_const_charp /*words*/) { png_longjmp(png, 1); }

void Passes(png_structp /*png*/, png_const_charp /*words*/) {}

void Take(png_structp png, png_bytep to, std::size_t count) {
  auto& source = *static_cast<Source*>(png_get_io_ptr(png));
  if (source.bytes.size() - source.at < count) png_error(png, "cut off");
  std::memcpy(to, source.bytes.data() + source.at, count);
  source.at += count;
}

/// The library's own room.
struct Room {
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, &Fails, &Passes);
  png_infop info = png == nullptr ? nullptr : png_create_info_struct(png);

  Room() = default;
  ~Room() { png_destroy_read_struct(&png, &info, nullptr); }
  Room(const Room&) = delete;
  Room& operator=(const Room&) = delete;
  Room(Room&&) = delete;
  Room& operator=(Room&&) = delete;
};

/// Has the library do something; false when it fails. It then leaves the step without ending what lies on the
/// stack, so steps are plain calls of it.
template <class Step>
bool Goes(png_structp png, const Step& step) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;  // NOLINT(cert-err52-cpp): the library has no other way
  step();
  return true;
}

/// Four bytes for each pixel become three.
void OnWhite(std::vector<std::uint8_t>& row) {
  for (std::size_t from = 0, to = 0; from < row.size(); from += kColours + 1, to += kColours) {
    const unsigned solid = row[from + kColours];
    for (std::size_t i = 0; i < kColours; ++i)
      row[to + i] = static_cast<std::uint8_t>((row[from + i] * solid + kWhite * (kWhite - solid)) / kWhite);
  }
}

}  // namespace

bool ReadPngRows(std::string_view bytes, const PngRow& row) {
  const Room room;
  if (room.info == nullptr) return false;
  Source source{bytes};
  png_set_read_fn(room.png, &source, &Take);
  const bool begun = Goes(room.png, [&room] {
    png_read_info(room.png, room.info);
    png_set_expand(room.png);
    png_set_strip_16(room.png);
    png_set_gray_to_rgb(room.png);
    png_read_update_info(room.png, room.info);
  });
  if (!begun || png_get_interlace_type(room.png, room.info) != PNG_INTERLACE_NONE) return false;
  std::vector<std::uint8_t> pixels(png_get_rowbytes(room.png, room.info));
  const std::size_t channels = png_get_channels(room.png, room.info);
  const png_uint_32 height = png_get_image_height(room.png, room.info);
  for (png_uint_32 y = 0; y < height; ++y) {
    if (!Goes(room.png, [&] { png_read_row(room.png, pixels.data(), nullptr); })) return false;
    if (channels > kColours) OnWhite(pixels);
    row(pixels.data());
  }
  return Goes(room.png, [&room] { png_read_end(room.png, nullptr); });
}

}  // namespace pictures
