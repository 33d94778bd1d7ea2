#pragma once
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "base/Value.hpp"

namespace standin {

/// The player as the pages show it, at one moment.
struct PlayerNow {
  bool known = false;      ///< false while there is no player, or none that tells
  std::int32_t state = 0;  ///< as the player's own object model numbers them
  double position = 0;     ///< seconds
  double duration = 0;     ///< seconds; 0 for what has no end that is known
  std::int32_t volume = 0;
  bool mute = false;
  bool loop = false;
  bool shuffle = false;
  bool canPlay = false;
  bool canPause = false;
  bool canNext = false;
  bool canPrevious = false;
  bool canSeek = false;
  std::string title;
  std::string artist;
  std::string album;
  std::string albumArtist;
  std::string item;         ///< tells it from others of its name; empty without one
  std::string queue;        ///< the name by which the queue is shown and changed
  std::string from;         ///< what the queue was begun from: a playlist, an album
  std::int32_t place = -1;  ///< in the queue
  std::int32_t count = 0;   ///< of the queue
  double revision = 0;      ///< of the queue
  /// The key of its picture, empty where it has none; nothing while that is being looked for.
  std::optional<std::string> cover = std::string();
  std::int64_t at = 0;  ///< when it was so: milliseconds of the server's own clock

  /// It is being opened, and will be paused once it is there.
  [[nodiscard]] bool heldAtStart() const;
  /// Seconds of the item that pass in one.
  [[nodiscard]] double rate() const;
  /// Where the item has come to at a later moment, if nothing has happened since.
  [[nodiscard]] double positionAt(std::int64_t later) const;
  /// Whether a page that was told of `this` shows `later` right without hearing of it.
  [[nodiscard]] bool foretells(const PlayerNow& later) const;
};

/// From what the raw player's `now` answers.
PlayerNow PlayerNowOf(const base::Value& record, std::int64_t at);
/// For the pages. `clock`: the server's own clock as it is now.
nlohmann::json JsonOf(const PlayerNow& now, std::int64_t clock);

}  // namespace standin
