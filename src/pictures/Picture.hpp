#pragma once
#include <cstddef>
#include <string>

/// Pictures decoded by GdkPixbuf, within bounds that are looked at before anything is unpacked.
namespace pictures {

inline constexpr std::size_t kMostBytes = std::size_t{16} << 20U;  ///< of a picture's file
inline constexpr int kMostPixels = 64 << 20;                       ///< such as 8,192 by 8,192

struct Size {
  int width = 0;
  int height = 0;
};

/// The size that a picture claims, read from its head alone. 0 by 0 for what is none of JPEG, PNG, GIF, BMP
/// or WebP.
Size SizeOf(const std::string& bytes);

/// Whether the bytes are a picture of one of these kinds, within the bounds, and can be decoded to their end.
bool CanBeShown(const std::string& bytes);

/// The picture, the right way up and on white where it lets through, as a JPEG whose longer side is at most
/// `side` pixels; it is never made larger. Empty for what can't be shown.
std::string Thumbnail(const std::string& bytes, int side);

}  // namespace pictures
