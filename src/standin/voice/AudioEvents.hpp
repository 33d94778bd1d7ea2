#pragma once
#include "bus/PollLoop.hpp"
#include "standin/house/House.hpp"

namespace standin {

/// Tells whoever has asked for audio events that the house needs the room's ear, and when it needs it no
/// longer, so that a player can make room. Who counts them is told of each. On the loop's thread.
class AudioEvents {
 public:
  AudioEvents(bus::PollLoop& loop, House& house) : loop_(loop), house_(house) {}

  /// Returns when all have answered; whoever fails is not told any more.
  void tell(bool started);
  /// While a listener is being told.
  [[nodiscard]] bool telling() const { return telling_ > 0; }

 private:
  bus::PollLoop& loop_;
  House& house_;
  int telling_ = 0;
};

}  // namespace standin
