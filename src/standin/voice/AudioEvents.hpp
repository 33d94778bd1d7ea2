#pragma once
#include "bus/PollLoop.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// Tells whoever has asked for audio events that the house needs the room's ear, and when it needs it no
/// longer, so that a player can make room. Who counts them is told of each. On the loop's thread.
class AudioEvents {
 public:
  AudioEvents(bus::PollLoop& loop, House& house) : loop_(loop), house_(house) {}

  /// Returns when all have answered; whoever fails is not told any more, nor are the other objects of his
  /// program.
  void tell(bool started);
  /// Ends all that have begun: their own ends are not told any more. A player that is given a command has to
  /// be as its listener knows it, not as it makes room: "pause" has a paused one play, and what was stopped
  /// would go on with the last speaker's end.
  void endAll();
  /// Behind that command, once for each call of `endAll`. After the last of them those who have not ended
  /// since are told to have begun once more.
  void goOn();
  /// Whether somebody has been told to make room and not yet to come back.
  [[nodiscard]] bool making() const { return begun_ > 0; }
  /// Whether players have come back for a command alone, while somebody still needs the room's ear.
  [[nodiscard]] bool interrupted() const { return ended_ > 0; }
  /// While a listener is being told.
  [[nodiscard]] bool telling() const { return telling_ > 0; }

 private:
  [[nodiscard]] bool isKept(const EventSink& sink) const;
  void send(bool started);

  bus::PollLoop& loop_;
  House& house_;
  int telling_ = 0;
  int begun_ = 0;     ///< and not ended
  int ended_ = 0;     ///< before their own end, which is still to come
  int commands_ = 0;  ///< that have ended all and not yet gone on
};

}  // namespace standin
