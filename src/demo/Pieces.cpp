#include "demo/Piece.hpp"

namespace engine::demo {
namespace {

struct Album {
  const char* folder;
  const char* artist;
  const char* title;
  const char* genre;
  std::uint16_t year;
  int cover;
};

constexpr Album kBlue{"Elan Vital/Blue", "Élan Vital", "Blue", "Ambient", 2019, 1};
constexpr Album kRoad{"The R-C Quartet/Road  Trip", "The R/C Quartet", "Road  Trip", "Jazz", 2021, 2};
constexpr Album kFiesta{"Ole Sisters/Fiesta!", "¡Olé! Sisters", "Fiesta, \"Live\"!", "Latin", 2023, 0};
constexpr Album kClockwork{
    "Mira & the Clocks/Night Shift", "Mira & the Clocks", "Night Shift", "Electronic", 2024, 3};

Piece Of(const Album& album, std::uint16_t track, const char* title, FileFormat format) {
  Piece piece;
  piece.tags.title = title;
  piece.tags.artist = album.artist;
  piece.tags.album = album.title;
  piece.tags.genre = album.genre;
  piece.tags.year = album.year;
  piece.tags.track = track;
  piece.format = format;
  piece.cover = album.cover;
  piece.file = std::string(album.folder) + "/0" + std::to_string(track) +
               (format == FileFormat::kOgg ? ".ogg" : ".flac");
  return piece;
}

struct Score {
  int seconds;
  int beatsPerMinute;
  int key;
  bool minor;
  std::vector<int> chords;
  Timbre lead;
  Timbre ground;
  Figure figure;
};

Piece With(Piece piece, Score score) {
  piece.seconds = score.seconds;
  piece.beatsPerMinute = score.beatsPerMinute;
  piece.key = score.key;
  piece.minor = score.minor;
  piece.chords = std::move(score.chords);
  piece.lead = score.lead;
  piece.ground = score.ground;
  piece.figure = score.figure;
  return piece;
}

}  // namespace

std::vector<Piece> Pieces() {
  using enum Timbre;
  using enum Figure;
  using enum FileFormat;
  return {
      With(Of(kBlue, 1, "Horizon", kFlac), {32, 72, 57, false, {0, 5, 3, 4}, kBell, kPad, kArpeggio}),
      With(Of(kBlue, 2, "Été (Part 1)", kFlac), {24, 76, 62, true, {0, 5, 2, 6}, kPad, kPad, kMelody}),
      With(Of(kBlue, 3, "Été (Part 2)", kFlac), {24, 76, 62, true, {3, 0, 5, 4}, kBell, kPad, kArpeggio}),
      With(Of(kRoad, 1, "Route 7, Exit 9", kFlac),
           {28, 126, 58, false, {1, 4, 0, 5}, kPluck, kOrgan, kMelody}),
      With(Of(kRoad, 2, "What's the Hurry?", kFlac),
           {22, 138, 63, false, {0, 3, 1, 4}, kOrgan, kPluck, kMelody}),
      With(Of(kRoad, 3, "Rest Area", kFlac), {26, 88, 56, true, {0, 3, 4, 0}, kPluck, kPad, kArpeggio}),
      With(Of(kFiesta, 1, "¿Quién baila?", kOgg), {20, 132, 64, true, {0, 6, 5, 4}, kPluck, kOrgan, kPulse}),
      With(Of(kFiesta, 2, "Rumba \"Azul\"", kOgg),
           {24, 116, 57, true, {0, 3, 4, 4}, kPluck, kOrgan, kArpeggio}),
      With(Of(kFiesta, 3, "Mañana", kOgg), {18, 104, 60, false, {0, 4, 5, 3}, kBell, kPluck, kMelody}),
      With(Of(kClockwork, 1, "00:01", kFlac), {30, 120, 55, true, {0, 0, 5, 6}, kOrgan, kPad, kPulse}),
      With(Of(kClockwork, 2, "Tick/Tock", kFlac), {16, 124, 60, true, {0, 2, 5, 6}, kPluck, kPad, kArpeggio}),
      With(Of(kClockwork, 3, "Shift's End", kFlac), {36, 92, 53, false, {3, 4, 0, 5}, kBell, kPad, kMelody}),
  };
}

}  // namespace engine::demo
