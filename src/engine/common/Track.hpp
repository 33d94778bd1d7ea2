#pragma once
#include <cstdint>
#include <limits>
#include <string>

#include "files/Stamp.hpp"

namespace engine {

/// The place of a track in the track table; it stays valid, and its texts readable, after the track has left
/// the library.
using TrackId = std::uint32_t;

enum class MediaKind : std::uint8_t {
  kNone = 0,  ///< looked at, and no media
  kAudio = 1,
  kVideo = 2,
};

/// How loud a track is, as its tags tell it.
struct Loudness {
  static constexpr std::int16_t kUnknown = std::numeric_limits<std::int16_t>::min();

  std::int16_t track = kUnknown;  ///< what makes the track as loud as others: hundredths of a decibel
  std::int16_t album = kUnknown;  ///< the same for its whole album
  std::uint16_t trackPeak = 0;    ///< ten-thousandths of full scale; 0 for unknown
  std::uint16_t albumPeak = 0;

  bool operator==(const Loudness&) const = default;
};

/// What a file's tags say.
struct TrackTags {
  MediaKind kind = MediaKind::kAudio;
  std::string title;  ///< never empty once read: the file's name stands in
  std::string artist;
  std::string albumArtist;
  std::string album;
  std::string genre;
  std::string collectionId;  ///< the release's own id, empty without one
  std::string discId;        ///< the table of contents of the disc it came from
  std::uint16_t year = 0;
  std::uint16_t track = 0;
  std::uint16_t disc = 0;
  std::uint32_t milliseconds = 0;
  Loudness loudness{};

  bool operator==(const TrackTags&) const = default;
};

/// A file as the library remembers it.
struct FileRecord {
  std::string path;
  files::FileStamp stamp;
  TrackTags tags;
  bool added = false;  ///< by hand, not found below a music folder
};

}  // namespace engine
