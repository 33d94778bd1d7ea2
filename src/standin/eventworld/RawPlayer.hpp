#pragma once
#include <cstdint>
#include <string>

#include "base/Object.hpp"

namespace standin {

/// What stands in the player: enough to put it back.
struct PlayerPlace {
  base::ObjectRef playlist{};  ///< the player's own; nothing when it held none
  std::int32_t item = 0;       ///< place in it
  double position = 0;         ///< seconds into the item
  std::int32_t volume = 0;
  bool muted = false;
};

/// The player itself, as the plug-in hands it to scripts. Each call is one to the player, made within a
/// command to the plug-in, and throws what that throws; number 91 while the player isn't ready.
class RawPlayer {
 public:
  explicit RawPlayer(base::Object& vxif);

  /// As the player numbers it: 1 stopped, 2 paused, 3 playing.
  [[nodiscard]] std::int32_t state() const;
  /// False while it is stopped, has come to its end, or holds nothing.
  [[nodiscard]] bool isActive() const;
  /// Seconds.
  [[nodiscard]] double position() const;
  [[nodiscard]] std::int32_t volume() const;
  /// 0 to 100. Leaves a mute as it is, and tells nobody.
  void volume(std::int32_t percent);
  [[nodiscard]] bool muted() const;
  void mute(bool wanted);
  void stop();
  void pause();

  [[nodiscard]] PlayerPlace place() const;
  /// Puts the place back, silent: a "play" goes on there. Volume and mute come back too. Call it while the
  /// player is stopped.
  void putBack(const PlayerPlace& place);
  /// Tells what the player holds from what it held before: the list's name, its length and its first title.
  [[nodiscard]] std::string mark() const;

 private:
  [[nodiscard]] base::Object& script() const { return base::Deref(script_); }
  [[nodiscard]] base::ObjectRef part(const char* name) const;
  [[nodiscard]] base::ObjectRef playlist() const;
  [[nodiscard]] std::int32_t placeOfCurrent(const base::ObjectRef& playlist) const;
  void walkTo(std::int32_t item);

  base::ObjectRef script_;
  base::ObjectRef player_;
};

}  // namespace standin
