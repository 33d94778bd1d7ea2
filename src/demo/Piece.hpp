#pragma once
#include <string>
#include <vector>

#include "demo/Sound.hpp"
#include "engine/common/Track.hpp"

namespace engine::demo {

/// How a note sounds.
enum class Timbre { kOrgan, kPluck, kBell, kPad };
/// What is played over the chords.
enum class Figure { kArpeggio, kMelody, kPulse };

/// A short piece of music, and what its tags say.
struct Piece {
  TrackTags tags;
  std::string file;  ///< path below the library's folder
  FileFormat format = FileFormat::kFlac;
  int seconds = 20;
  int beatsPerMinute = 100;
  int key = 60;             ///< the tonic as a MIDI note
  std::vector<int> chords;  ///< steps of the scale, one a bar
  bool minor = false;
  Timbre lead = Timbre::kPluck;
  Timbre ground = Timbre::kPad;
  Figure figure = Figure::kArpeggio;
  int cover = 0;  ///< the cover's number; 0 for none
};

/// The demonstration library's pieces.
std::vector<Piece> Pieces();

/// Plays the piece.
Sound Render(const Piece& piece);

}  // namespace engine::demo
