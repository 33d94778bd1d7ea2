#include "demo/Cover.hpp"

#include <zlib.h>

#include <array>
#include <cmath>
#include <string_view>

#include "base/Failure.hpp"

namespace engine::demo {
namespace {

using Colour = std::array<double, 3>;

std::string BigEndian(std::uint32_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>((number >> shift) & 0xFFU);
  return bytes;
}

std::string Chunk(std::string_view kind, std::string_view data) {
  std::string body(kind);
  body += data;
  const auto sum = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
  return BigEndian(static_cast<std::uint32_t>(data.size())) + body +
         BigEndian(static_cast<std::uint32_t>(sum));
}

std::string Deflated(const std::string& data) {
  uLongf size = compressBound(data.size());
  std::string result(size, '\0');
  const int done = compress(reinterpret_cast<Bytef*>(result.data()), &size,
                            reinterpret_cast<const Bytef*>(data.data()), data.size());
  if (done != Z_OK) throw base::Failure(base::number::kInternal, "The cover can't be packed");
  result.resize(size);
  return result;
}

Colour Hue(double turn, double light) {
  Colour colour{};
  for (std::size_t i = 0; i < colour.size(); ++i) {
    colour[i] = light * (0.55 + 0.45 * std::cos(6.2832 * (turn - static_cast<double>(i) / 3)));
  }
  return colour;
}

}  // namespace

std::string CoverPng(std::uint32_t seed, int size) {
  const double turn = std::fmod(seed * 0.381966, 1.0);
  const Colour inner = Hue(turn, 235);
  const Colour outer = Hue(turn + 0.45, 120);
  const double centre = size * (0.35 + 0.1 * (seed % 4));
  std::string rows;
  for (int y = 0; y < size; ++y) {
    rows += '\0';  // no filter
    for (int x = 0; x < size; ++x) {
      const double distance = std::hypot(x - centre, y - centre) / size;
      const double share = 0.5 + 0.5 * std::sin(distance * (18.0 + seed % 5 * 4));
      for (std::size_t i = 0; i < inner.size(); ++i) {
        rows += static_cast<char>(static_cast<unsigned char>(inner[i] * share + outer[i] * (1 - share)));
      }
    }
  }
  std::string header =
      BigEndian(static_cast<std::uint32_t>(size)) + BigEndian(static_cast<std::uint32_t>(size));
  header += std::string_view("\x08\x02\x00\x00\x00", 5);  // eight bits of red, green and blue
  return "\x89PNG\r\n\x1A\n" + Chunk("IHDR", header) + Chunk("IDAT", Deflated(rows)) + Chunk("IEND", {});
}

}  // namespace engine::demo
