#pragma once
#include <memory>

#include "base/Loop.hpp"
#include "player/WMPCalls.hpp"
#include "player/WMPPlayer.hpp"
#include "ui/popup/PopupWindow.hpp"

namespace ui {

/// The popup window's transport bar. It does what it is told to by the same calls as everybody else, and
/// shows what the player says. Only while something plays, or is on its way to it, before somebody's eyes
/// does it look at the player by itself, once a second.
class TransportBar {
 public:
  TransportBar(PopupWindow& window, player::WMPPlayer& form, player::WMPCalls& calls, base::Loop& loop);

  // The buttons. Failures are skipped.
  void playOrPause();
  void stop();
  void previous();
  void next();
  /// Seconds from the title's start; a time beyond it is brought into it.
  void seek(double seconds);
  /// 0 to 100.
  void volume(std::int16_t percent);
  void mute();

  /// Shows what the player says now. Never throws.
  void refresh();

 private:
  void turnRound();
  /// It is being opened, or waits for more of itself.
  [[nodiscard]] bool underWay();
  [[nodiscard]] TransportShown read();

  PopupWindow& window_;
  player::WMPPlayer& form_;
  player::WMPCalls& calls_;
  std::unique_ptr<base::Timer> look_;
};

}  // namespace ui
