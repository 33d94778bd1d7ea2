#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/Loop.hpp"
#include "mpris/Player.hpp"
#include "mpris/Playlists.hpp"
#include "mpris/session/Exported.hpp"

namespace mpris {

/// The player as other programs of the user see it, and what they are told of it. Changes that come together
/// are told together; where an item has come to is told on jumps only, and asked for otherwise.
class Face {
 public:
  using Emit = std::function<void(const std::string& interface, const std::string& signal, const Values&)>;
  struct Parts {
    base::Loop& loop;
    base::ObjectRef script;
    std::function<bool()> canRaise;
    std::function<bool()> listening;  ///< whether somebody can be told now
    Emit emit;
  };
  explicit Face(const Parts& parts);

  static constexpr const char* kPath = "/org/mpris/MediaPlayer2";

  [[nodiscard]] const Exported& object() const { return exported_; }
  [[nodiscard]] bool ready() { return player_.ready(); }
  /// Somebody can be told from now on, who asks for all that is so now.
  void begin();
  /// The player may be another than it was.
  void changed() { soon_->enabled(true); }
  /// Somebody has chosen another place in the item.
  void sought();
  /// There may be other playlists than before.
  void playlistsChanged();

 private:
  void look();
  [[nodiscard]] std::vector<Interface> tables();

  Parts in_;
  PlayerObject player_;
  Player transport_;
  Playlists playlists_;
  Exported exported_;
  std::unique_ptr<base::Timer> soon_;
  std::vector<Dict> told_;  ///< of each interface
};

}  // namespace mpris
