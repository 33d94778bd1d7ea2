#pragma once
#include <optional>

#include "mpris/PlayerObject.hpp"
#include "mpris/session/Value.hpp"

namespace mpris {

/// Microseconds, in which the bus tells times, of seconds; 0 for what is no time.
std::int64_t Microseconds(double seconds);

/// What plays, as panels show it.
class Track {
 public:
  /// Takes up what plays now. True when it is another item than before.
  bool follow(const Now& now, PlayerObject& player);

  /// Names the item for as long as it plays; another one, and the same one played anew from another list or
  /// place, has another id. Nothing without an item.
  [[nodiscard]] const std::optional<Path>& id() const { return id_; }
  /// Empty without an item.
  [[nodiscard]] const Dict& metadata() const { return metadata_; }

 private:
  /// What the details depend on.
  struct Shown {
    std::string name;
    std::string artist;
    std::string album;
    std::string albumArtist;
    std::string streamTitle;
    double duration = 0;
    bool operator==(const Shown&) const = default;
  };
  [[nodiscard]] bool isStill(const Now& now) const;
  void describe(const Now& now, PlayerObject& player);

  std::optional<Path> id_;
  std::uint64_t last_ = 0;
  Now at_;
  Shown shown_;
  Dict metadata_;
};

}  // namespace mpris
