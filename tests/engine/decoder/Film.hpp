#pragma once
#include <cstdint>
#include <string>

#include "base/MovingPicture.hpp"

namespace engine::testing {

/// Encodes a film with a tone at that path: `picture` is a source of the encoder's own.
void MakeFilm(const std::string& path, const std::string& picture, int seconds = 120);

/// A picture that stands still, 320 by 180: red above left, green above right, blue below left, white below
/// right.
inline constexpr const char* kFourColours =
    "color=red:size=160x90:rate=25[a];color=lime:size=160x90:rate=25[b];color=blue:size=160x90:rate=25[c];"
    "color=white:size=160x90:rate=25[d];[a][b]hstack[e];[c][d]hstack[f];[e][f]vstack";

struct Colour {
  int red = 0;
  int green = 0;
  int blue = 0;
};

/// The frame's colour at that part of its width and height.
Colour ColourAt(const base::PictureFrame& frame, double across, double down);

/// Whether a frame shows the four colours, each in its corner.
bool ShowsFourColours(const base::PictureFrame& frame);

/// How many of a frame's pixels are not black.
int Lit(const base::PictureFrame& frame);

/// The part of the pixels, 0 to 1, that have another colour in another frame of the same size.
double Unlike(const base::PictureFrame& one, const base::PictureFrame& other);

}  // namespace engine::testing
