#include "Film.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace engine::testing {
namespace {

const std::uint8_t* PixelAt(const base::PictureFrame& frame, int x, int y) {
  return frame.data() + static_cast<std::size_t>(y) * frame.stride + static_cast<std::size_t>(x) * 4;
}

bool Near(const Colour& one, const Colour& other) {
  constexpr int kNear = 24;
  return std::abs(one.red - other.red) <= kNear && std::abs(one.green - other.green) <= kNear &&
         std::abs(one.blue - other.blue) <= kNear;
}

}  // namespace

void MakeFilm(const std::string& path, const std::string& picture, int seconds) {
  const std::string length = std::to_string(seconds);
  std::string line = "ffmpeg -v error -y -f lavfi -i '" + picture + "' -f lavfi -i sine=440";
  line += " -t " + length + " -pix_fmt yuv420p -c:v mpeg4 -q:v 5 -c:a aac '" + path + "'";
  line += " < /dev/null > /dev/null 2>&1";
  EXPECT_EQ(std::system(line.c_str()), 0);
}

Colour ColourAt(const base::PictureFrame& frame, double across, double down) {
  const std::uint8_t* pixel =
      PixelAt(frame, static_cast<int>(across * frame.size.width), static_cast<int>(down * frame.size.height));
  return {pixel[2], pixel[1], pixel[0]};
}

bool ShowsFourColours(const base::PictureFrame& frame) {
  return Near(ColourAt(frame, 0.25, 0.25), {255, 0, 0}) && Near(ColourAt(frame, 0.75, 0.25), {0, 255, 0}) &&
         Near(ColourAt(frame, 0.25, 0.75), {0, 0, 255}) && Near(ColourAt(frame, 0.75, 0.75), {255, 255, 255});
}

int Lit(const base::PictureFrame& frame) {
  int lit = 0;
  for (int y = 0; y < frame.size.height; ++y) {
    for (int x = 0; x < frame.size.width; ++x) {
      const std::uint8_t* pixel = PixelAt(frame, x, y);
      if (pixel[0] > 40 || pixel[1] > 40 || pixel[2] > 40) ++lit;
    }
  }
  return lit;
}

double Unlike(const base::PictureFrame& one, const base::PictureFrame& other) {
  int unlike = 0;
  for (int y = 0; y < one.size.height; ++y) {
    for (int x = 0; x < one.size.width; ++x) {
      const std::uint8_t* a = PixelAt(one, x, y);
      const std::uint8_t* b = PixelAt(other, x, y);
      if (!Near({a[2], a[1], a[0]}, {b[2], b[1], b[0]})) ++unlike;
    }
  }
  return static_cast<double>(unlike) / (one.size.width * one.size.height);
}

}  // namespace engine::testing
