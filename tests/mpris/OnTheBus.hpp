#pragma once
#include <gtest/gtest.h>

#include <optional>

#include "BusUser.hpp"
#include "RecordingPlayer.hpp"
#include "mpris/MediaControls.hpp"
#include "support/BusDaemon.hpp"
#include "support/SkippingClock.hpp"

namespace mpris_test {

/// The player on a session bus of the test's own, with another program there.
class OnTheBus : public ::testing::Test {
 protected:
  static constexpr const char* kRoot = "org.mpris.MediaPlayer2";
  static constexpr const char* kPlayer = "org.mpris.MediaPlayer2.Player";
  static constexpr const char* kPlaylists = "org.mpris.MediaPlayer2.Playlists";
  static constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

  void SetUp() override { player.plays(); }

  /// The player appears, and a program that looks at it.
  void appear() {
    bus.emplace();
    controls.emplace(parts());
    ASSERT_TRUE(appears());
    user.emplace(loop, bus->address());
  }
  bool appears() {
    return TurnUntil(loop, [&] {
      clock.skip(std::chrono::milliseconds(200));
      return controls->seen();
    });
  }
  mpris::MediaControls::Parts parts() {
    return {loop, player.script, [] { return true; },
            [this] {
              ++lookedFor;
              return bus ? bus->address() : std::string();
            }};
  }

  support::SkippingClock clock;
  bus::PollLoop loop{clock.reader()};
  RecordingPlayer player;
  int lookedFor = 0;  ///< how often the bus was
  std::optional<support::BusDaemon> bus;
  std::optional<mpris::MediaControls> controls;
  std::optional<BusUser> user;
};

}  // namespace mpris_test
