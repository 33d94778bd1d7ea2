#pragma once
#include <utility>

#include "mpris/MediaControls.hpp"
#include "player/PlayerEvents.hpp"

/// The player on the desktop's own panels and under its media keys, for as long as this is there: it hears of
/// what the player tells, and reaches it by name.
class OnThePanels {
 public:
  OnThePanels(mpris::MediaControls::Parts parts, player::PlayerEvents& player)
      : controls_(std::move(parts)), player_(player) {
    player_.changed = [this] { controls_.changed(); };
    player_.sought = [this] { controls_.sought(); };
    player_.playlistsChanged = [this] { controls_.playlistsChanged(); };
  }
  ~OnThePanels() { player_.changed = player_.sought = player_.playlistsChanged = nullptr; }
  OnThePanels(const OnThePanels&) = delete;
  OnThePanels& operator=(const OnThePanels&) = delete;
  OnThePanels(OnThePanels&&) = delete;
  OnThePanels& operator=(OnThePanels&&) = delete;

 private:
  mpris::MediaControls controls_;
  player::PlayerEvents& player_;
};
