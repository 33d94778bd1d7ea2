#pragma once
#include <string>
#include <string_view>

#include "pictures/Picture.hpp"

namespace pictures {

/// What a picture's file says of itself, read without unpacking anything.
struct Outline {
  /// The library's name for the kind, null for what is none of these. What else the machine could decode
  /// (drawings that run code, formats of decades ago) is not let near.
  const char* loader = nullptr;
  Size size{};          ///< of what would be unpacked
  int passes = 1;       ///< how often all of it is gone over
  bool whole = false;   ///< its end is there
  bool byRows = false;  ///< whether all of it is there, reading it by its rows tells
  std::string still{};  ///< of one that moves, its first frame as a file; empty for all others
};

Outline OutlineOf(std::string_view bytes);

/// The kinds by themselves, each for bytes that begin as the kind does.
Outline OutlineOfJpeg(std::string_view bytes);
Outline OutlineOfPng(std::string_view bytes);
Outline OutlineOfGif(std::string_view bytes);
Outline OutlineOfBmp(std::string_view bytes);
Outline OutlineOfWebp(std::string_view bytes);

/// Whether so many pixels may be unpacked.
bool WithinBounds(Size size);

}  // namespace pictures
