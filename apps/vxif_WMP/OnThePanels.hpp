#pragma once
#include <utility>

#include "UserDesktop.hpp"
#include "mpris/MediaControls.hpp"
#include "player/PlayerEvents.hpp"

/// The player on the desktop's own panels and under its media keys, for as long as this is there: it hears of
/// what the player and the desktop tell, and reaches the player by name.
class OnThePanels {
 public:
  OnThePanels(bus::PollLoop& loop, base::ObjectRef script, player::PlayerEvents& player, UserDesktop& desktop)
      : controls_({loop, std::move(script), [&desktop] { return desktop.shows(); }}),
        player_(player),
        desktop_(desktop) {
    player_.changed = [this] { controls_.changed(); };
    player_.sought = [this] { controls_.sought(); };
    player_.playlistsChanged = [this] { controls_.playlistsChanged(); };
    desktop_.whenGone([this] { controls_.changed(); });  // nothing can be raised any more
  }
  ~OnThePanels() {
    player_.changed = player_.sought = player_.playlistsChanged = nullptr;
    desktop_.whenGone(nullptr);
  }
  OnThePanels(const OnThePanels&) = delete;
  OnThePanels& operator=(const OnThePanels&) = delete;
  OnThePanels(OnThePanels&&) = delete;
  OnThePanels& operator=(OnThePanels&&) = delete;

 private:
  mpris::MediaControls controls_;
  player::PlayerEvents& player_;
  UserDesktop& desktop_;
};
