#pragma once
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>

#include "bus/PollLoop.hpp"
#include "mpris/Face.hpp"
#include "mpris/session/Session.hpp"
#include "mpris/session/SessionAddress.hpp"

namespace mpris {

/// The player on the user's session bus. It appears there once the plug-in's start is over, and whenever that
/// bus comes; without one nothing happens.
class MediaControls {
 public:
  static constexpr const char* kBusName = "org.mpris.MediaPlayer2.vantorix";

  struct Parts {
    bus::PollLoop& loop;
    base::ObjectRef script;          ///< the plug-in's script object
    std::function<bool()> canRaise;  ///< there is a window to bring to the front
    std::function<std::string()> address = SessionAddress;
    uid_t user = ::geteuid();  ///< whose bus alone is taken
  };
  explicit MediaControls(Parts parts);

  /// What the player tells of itself.
  void changed() { face_.changed(); }
  void sought() { face_.sought(); }
  void playlistsChanged() { face_.playlistsChanged(); }

  /// It can be seen on the bus.
  [[nodiscard]] bool seen() const { return session_.ready(); }

 private:
  void lookForPlayer();

  Face face_;
  Session session_;
  std::unique_ptr<base::Timer> waiting_;
};

}  // namespace mpris
