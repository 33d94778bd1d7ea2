#pragma once
#include <functional>
#include <optional>

#include "base/Loop.hpp"
#include "mpris/PlayerObject.hpp"
#include "mpris/Track.hpp"
#include "mpris/session/Table.hpp"

namespace mpris {

/// `org.mpris.MediaPlayer2.Player`: transport, what plays, how loud it is.
class Player {
 public:
  static constexpr const char* kName = "org.mpris.MediaPlayer2.Player";

  /// `moved`: the player has been told something, so that it is worth a look.
  Player(PlayerObject& player, const base::Loop& loop, std::function<void()> moved)
      : player_(player), loop_(loop), moved_(std::move(moved)) {}

  /// It lives as long as this.
  Interface table();
  /// Looks at the player.
  void refresh();
  /// Somebody has chosen another place in the item.
  void sought() { sought_ = true; }
  /// From now on somebody listens, who knows all that is so now.
  void begin();
  /// After a look: the position in microseconds, where it is not what whoever has listened so far must take
  /// it for.
  std::optional<std::int64_t> jumped();

 private:
  [[nodiscard]] bool canPlay() const;
  [[nodiscard]] bool canSeek() const;
  void play();
  void pause();
  void playPause();
  void stop();
  void next();
  void previous();
  void seekBy(std::int64_t microseconds);
  void seekTo(const Path& track, std::int64_t microseconds);
  void seek(double seconds);
  void open(const std::string& address);
  void loop(const std::string& status);
  void rate(double wanted);
  void volume(double wanted);
  [[nodiscard]] double believedRate() const;
  void believe(double position);

  PlayerObject& player_;
  const base::Loop& loop_;
  std::function<void()> moved_;
  Now now_;
  Track track_;
  bool otherTrack_ = false;  ///< since the last look for jumps
  bool sought_ = false;

  // What a listener takes the position for: where it was when he was told last, and how it has gone on since.
  double believed_ = 0;
  double rate_ = 0;
  base::Milliseconds since_{0};
};

/// The kinds of address that `OpenUri` takes.
const Texts& AddressKinds();

}  // namespace mpris
