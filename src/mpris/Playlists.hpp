#pragma once
#include <optional>
#include <vector>

#include "mpris/PlayerObject.hpp"
#include "mpris/session/Table.hpp"

namespace mpris {

/// `org.mpris.MediaPlayer2.Playlists`: the stored playlists. One's id is made of its name, so that it means
/// the same list at any time; a renamed list counts as another one.
class Playlists {
 public:
  static constexpr const char* kName = "org.mpris.MediaPlayer2.Playlists";

  explicit Playlists(PlayerObject& player) : player_(player) {}

  /// It lives as long as this.
  Interface table();
  /// There may be others than before.
  void changed();

 private:
  [[nodiscard]] std::uint32_t count();
  /// Sorted by name.
  const std::vector<ListedPlaylist>& list();
  [[nodiscard]] std::vector<ListedPlaylist> page(std::uint32_t from, std::uint32_t count,
                                                 const std::string& order, bool reverse);
  [[nodiscard]] ActivePlaylist active();
  void activate(const Path& id);

  PlayerObject& player_;
  // As long as nothing has changed; asking for thousands takes its time.
  std::optional<std::uint32_t> count_;
  std::optional<std::vector<ListedPlaylist>> list_;
};

}  // namespace mpris
