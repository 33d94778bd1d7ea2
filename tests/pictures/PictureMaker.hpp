#pragma once
#include <cstdint>
#include <string>

/// Pictures of all kinds and sizes, good ones and bad ones, made from nothing.
namespace pictures::testing {

struct PngShape {
  bool interlaced = false;
  std::uint32_t missing = 0;  ///< so many bytes at the end of its rows, in a picture that is whole otherwise
};
/// White on black, one bit a pixel, and so little as a file.
std::string FlatPng(std::uint32_t width, std::uint32_t height, PngShape shape = {});
/// The same as a GIF of so many frames, each as large as the whole.
std::string FlatGif(int width, int height, int frames = 1);
/// The same as a packed BMP.
std::string FlatBmp(int width, int height);
/// The same as a WebP; at most 16,384 by 16,384.
std::string FlatWebp(int width, int height);
/// A WebP that moves, of so many such frames, in a room that is as large or larger.
std::string MovingWebp(int width, int height, int frames, int roomWidth = 0, int roomHeight = 0);

/// A picture of many colours as the library itself saves it, with one of its options where it is named.
std::string Saved(const char* kind, int width, int height, const char* option = nullptr,
                  const char* value = nullptr);
/// The same as a JPEG that claims another size in its head.
std::string JpegThatClaims(int width, int height);
/// A JPEG with another segment behind its first two bytes, such as the one that holds a small picture or
/// tells how the large one is to be held.
std::string WithSegment(const std::string& jpeg, char kind, const std::string& content);
/// What such a segment holds that tells the orientation, 1 to 8.
std::string Orientation(char value);

}  // namespace pictures::testing
