#include "pictures/PictureMaker.hpp"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <zlib.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace pictures::testing {
namespace {

using namespace std::string_literals;

std::string LittleEndian(std::uint32_t number, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>((number >> (8 * i)) & 0xFFU);
  return text;
}

std::string BigEndian(std::uint32_t number, int bytes) {
  std::string text;
  for (int i = bytes - 1; i >= 0; --i) text += static_cast<char>((number >> (8 * i)) & 0xFFU);
  return text;
}

std::string PngChunk(const std::string& kind, const std::string& data) {
  const std::string body = kind + data;
  const auto sum = crc32_z(0, reinterpret_cast<const Bytef*>(body.data()), body.size());
  return BigEndian(static_cast<std::uint32_t>(data.size()), 4) + body +
         BigEndian(static_cast<std::uint32_t>(sum), 4);
}

/// Bytes of zero, packed without ever being there as a whole.
std::string PackedZeros(std::uint64_t count) {
  constexpr std::size_t kPiece = std::size_t{1} << 20U;
  std::string zeros(kPiece, '\0');
  std::string packed;
  std::string room(kPiece, '\0');
  z_stream stream{};
  if (deflateInit(&stream, Z_BEST_COMPRESSION) != Z_OK) throw std::runtime_error("nothing can be packed");
  int done = Z_OK;
  while (done != Z_STREAM_END) {
    const auto now = static_cast<uInt>(std::min<std::uint64_t>(count, kPiece));
    stream.next_in = reinterpret_cast<Bytef*>(zeros.data());
    stream.avail_in = now;
    count -= now;
    do {
      stream.next_out = reinterpret_cast<Bytef*>(room.data());
      stream.avail_out = static_cast<uInt>(room.size());
      done = deflate(&stream, count == 0 ? Z_FINISH : Z_NO_FLUSH);
      packed.append(room, 0, room.size() - stream.avail_out);
    } while (stream.avail_out == 0);
  }
  deflateEnd(&stream);
  return packed;
}

std::uint64_t BytesOfRows(std::uint64_t width, std::uint64_t height) {
  return width == 0 ? 0 : height * (1 + (width + 7) / 8);
}

/// Of the seven passes in which a picture comes that is there coarsely first.
std::uint64_t BytesOfPasses(std::uint64_t width, std::uint64_t height) {
  struct Pass {
    std::uint64_t x, stepX, y, stepY;
  };
  constexpr std::array<Pass, 7> kPasses{
      {{0, 8, 0, 8}, {4, 8, 0, 8}, {0, 4, 4, 8}, {2, 4, 0, 4}, {0, 2, 2, 4}, {1, 2, 0, 2}, {0, 1, 1, 2}}};
  std::uint64_t bytes = 0;
  for (const Pass& pass : kPasses)
    bytes += BytesOfRows((width + pass.stepX - 1 - pass.x) / pass.stepX,
                         (height + pass.stepY - 1 - pass.y) / pass.stepY);
  return bytes;
}

/// Codes of growing width, packed from the low bits on, in blocks of at most 255 bytes.
class GifCodes {
 public:
  void add(int code, int width) {
    bits_ |= static_cast<std::uint32_t>(code) << held_;
    for (held_ += static_cast<unsigned>(width); held_ >= 8; held_ -= 8) {
      bytes_ += static_cast<char>(bits_ & 0xFFU);
      bits_ >>= 8U;
    }
  }
  std::string blocks() {
    if (held_ > 0) bytes_ += static_cast<char>(bits_ & 0xFFU);
    std::string all;
    for (std::size_t at = 0; at < bytes_.size(); at += 255) {
      const std::string block = bytes_.substr(at, 255);
      all += static_cast<char>(block.size());
      all += block;
    }
    return all + '\0';
  }

 private:
  std::string bytes_;
  std::uint32_t bits_ = 0;
  unsigned held_ = 0;
};

/// So many pixels of one colour: each code stands for one pixel more than the one before.
std::string FlatGifData(std::int64_t pixels) {
  constexpr int kClear = 4;
  constexpr int kEnd = 5;
  constexpr int kLongest = 4095;
  GifCodes codes;
  int next = 6;
  int width = 3;
  codes.add(kClear, width);
  codes.add(0, width);
  --pixels;
  while (pixels > 0) {
    const std::int64_t run = std::min<std::int64_t>(pixels, next - 4);
    codes.add(run == 1 ? 0 : static_cast<int>(run) + 4, width);
    pixels -= run;
    if (next < kLongest) ++next;
    if (next == 1 << width && width < 12) ++width;
  }
  codes.add(kEnd, width);
  return codes.blocks();
}

std::string RiffChunk(const std::string& kind, const std::string& data) {
  return kind + LittleEndian(static_cast<std::uint32_t>(data.size()), 4) + data +
         (data.size() % 2 != 0 ? "\0"s : ""s);
}

std::string WebpOf(const std::string& chunks) { return RiffChunk("RIFF", "WEBP" + chunks); }

/// The head of one that moves.
std::string WebpHead(int width, int height) {
  return RiffChunk("VP8X", "\x02\0\0\0"s + LittleEndian(static_cast<std::uint32_t>(width - 1), 3) +
                               LittleEndian(static_cast<std::uint32_t>(height - 1), 3));
}

/// Each of the five codes of a pixel knows one value alone, so that no pixel takes a bit.
std::string FlatFrame(int width, int height) {
  const std::uint32_t size = static_cast<std::uint32_t>(width - 1) | static_cast<std::uint32_t>(height - 1)
                                                                         << 14U;
  // No transforms, no cache, one table: three bits of 0. Then five times 1, 0, 0 and the value 0.
  std::uint32_t codes = 0;
  for (unsigned i = 0; i < 5; ++i) codes |= 1U << (3 + 4 * i);
  return RiffChunk("VP8L", "\x2F" + LittleEndian(size, 4) + LittleEndian(codes, 4) + "\0"s);
}

}  // namespace

std::string FlatPng(std::uint32_t width, std::uint32_t height, PngShape shape) {
  const std::uint64_t bytes = shape.interlaced ? BytesOfPasses(width, height) : BytesOfRows(width, height);
  std::string head = BigEndian(width, 4) + BigEndian(height, 4) + "\x01\0\0\0"s;
  head += shape.interlaced ? '\x01' : '\0';
  return "\x89PNG\r\n\x1A\n" + PngChunk("IHDR", head) + PngChunk("IDAT", PackedZeros(bytes - shape.missing)) +
         PngChunk("IEND", {});
}

std::string FlatGif(int width, int height, int frames) {
  const std::string size = LittleEndian(static_cast<std::uint32_t>(width), 2) +
                           LittleEndian(static_cast<std::uint32_t>(height), 2);
  const std::string frame =
      "\x21\xF9\x04\0\x0A\0\0\0\x2C\0\0\0\0"s + size + "\0\x02"s + FlatGifData(std::int64_t{width} * height);
  std::string gif = "GIF89a" + size + "\x80\0\0\xFF\xFF\xFF\0\0\0"s;
  for (int i = 0; i < frames; ++i) gif += frame;
  return gif + ";";
}

std::string FlatBmp(int width, int height) {
  std::string row;
  for (int left = width; left > 0; left -= 255) row += static_cast<char>(std::min(left, 255)) + "\0"s;
  row += "\0\0"s;
  std::string rows;
  rows.reserve(row.size() * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) rows += row;
  rows += "\0\x01"s;
  const std::string palette = "\xFF\xFF\xFF\0\0\0\0\0"s;
  const std::uint32_t at = 54 + 8;
  const auto size = static_cast<std::uint32_t>(rows.size());
  return "BM" + LittleEndian(at + size, 4) + LittleEndian(0, 4) + LittleEndian(at, 4) + LittleEndian(40, 4) +
         LittleEndian(static_cast<std::uint32_t>(width), 4) +
         LittleEndian(static_cast<std::uint32_t>(height), 4) + "\x01\0\x08\0\x01\0\0\0"s +
         LittleEndian(size, 4) + LittleEndian(2835, 4) + LittleEndian(2835, 4) + LittleEndian(2, 4) +
         LittleEndian(0, 4) + palette + rows;
}

std::string FlatWebp(int width, int height) { return WebpOf(FlatFrame(width, height)); }

std::string MovingWebp(int width, int height, int frames, int roomWidth, int roomHeight) {
  const std::string frame =
      RiffChunk("ANMF", "\0\0\0\0\0\0"s + LittleEndian(static_cast<std::uint32_t>(width - 1), 3) +
                            LittleEndian(static_cast<std::uint32_t>(height - 1), 3) + LittleEndian(100, 3) +
                            "\0"s + FlatFrame(width, height));
  std::string chunks =
      WebpHead(std::max(width, roomWidth), std::max(height, roomHeight)) + RiffChunk("ANIM", "\0\0\0\0\0\0"s);
  for (int i = 0; i < frames; ++i) chunks += frame;
  return WebpOf(chunks);
}

std::string Saved(const char* kind, int width, int height, const char* option, const char* value) {
  const std::unique_ptr<GdkPixbuf, decltype(&g_object_unref)> picture(
      gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, width, height), &g_object_unref);
  guchar* const pixels = gdk_pixbuf_get_pixels(picture.get());
  const int stride = gdk_pixbuf_get_rowstride(picture.get());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      guchar* const pixel = pixels + static_cast<std::ptrdiff_t>(y) * stride + std::ptrdiff_t{3} * x;
      pixel[0] = static_cast<guchar>(255 * x / width);
      pixel[1] = static_cast<guchar>(255 * y / height);
      pixel[2] = static_cast<guchar>((x * 7 + y * 13) % 256);
    }
  }
  gchar* data = nullptr;
  gsize size = 0;
  if (gdk_pixbuf_save_to_buffer(picture.get(), &data, &size, kind, nullptr, option, value, nullptr) == FALSE)
    throw std::runtime_error("no "s + kind + " can be made");
  const std::unique_ptr<gchar, decltype(&g_free)> owned(data, &g_free);
  return {data, size};
}

std::string JpegThatClaims(int width, int height) {
  std::string jpeg = Saved("jpeg", 16, 16);
  const std::size_t head = jpeg.find("\xFF\xC0");
  if (head == std::string::npos) throw std::runtime_error("a JPEG without a head");
  return jpeg.replace(
      head + 5, 4,
      BigEndian(static_cast<std::uint32_t>(height), 2) + BigEndian(static_cast<std::uint32_t>(width), 2));
}

std::string WithSegment(const std::string& jpeg, char kind, const std::string& content) {
  return jpeg.substr(0, 2) + '\xFF' + kind + BigEndian(static_cast<std::uint32_t>(content.size() + 2), 2) +
         content + jpeg.substr(2);
}

std::string Orientation(char value) {
  return "Exif\0\0II\x2A\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0"s + value + "\0\0\0\0\0\0\0"s;
}

}  // namespace pictures::testing
