#pragma once
#include <cstdint>
#include <string>

#include "base/Value.hpp"

namespace mpris {

/// What a panel tells apart; the bus knows them by these names.
enum class Status { kStopped, kPaused, kPlaying };
std::string NameOf(Status status);

/// The player at one moment, as its own record `now` tells it.
struct Now {
  std::int32_t playState = 0;  ///< as the player's object model numbers them
  double position = 0;         ///< seconds
  double duration = 0;         ///< seconds; 0 for what has no end that is known
  std::int32_t volume = 0;     ///< 0 to 100
  bool loop = false;
  bool shuffle = false;
  // The steps that make sense.
  bool play = false;
  bool pause = false;
  bool next = false;
  bool previous = false;
  std::string name;
  std::string source;
  std::string artist;
  std::string album;
  std::string albumArtist;
  std::string streamTitle;  ///< what a station says that it plays
  double queueMark = 0;
  std::int32_t place = -1;  ///< in the queue
  std::int32_t count = 0;   ///< of the queue
  double revision = 0;      ///< of the queue

  /// What is under way, though it may still be opened or wait for more of itself, plays, unless it is held.
  [[nodiscard]] Status status() const;
  [[nodiscard]] bool scansForward() const;
  [[nodiscard]] bool scansBackward() const;
  /// It is being opened.
  [[nodiscard]] bool opens() const;
  /// It is being opened, and will be paused once it is there.
  [[nodiscard]] bool heldAtStart() const;
  /// It plays, and waits for more of itself.
  [[nodiscard]] bool stalls() const;
  /// How many seconds of the item pass in one while it plays.
  [[nodiscard]] double rate() const;
  /// Something has been chosen to be played, or plays.
  [[nodiscard]] bool hasItem() const;
};

inline constexpr double kScanSpeed = 5;

/// Reads the record; what is missing in it is as in a new `Now`. Throws 13 for what is no record.
Now NowOf(const base::Value& record);

}  // namespace mpris
