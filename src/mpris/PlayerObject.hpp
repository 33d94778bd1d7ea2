#pragma once
#include <string>
#include <vector>

#include "base/Object.hpp"
#include "mpris/Now.hpp"

namespace mpris {

/// The player as everybody reaches it: the plug-in's script object and, behind it, the raw player, both by
/// name. What is wanted of them is done with failures skipped, and nothing is before the plug-in's start is
/// over.
class PlayerObject {
 public:
  explicit PlayerObject(base::ObjectRef script) : script_(std::move(script)) {}

  /// The plug-in's start is over.
  [[nodiscard]] bool ready();
  /// As it is now; a new `Now` where it can't be told.
  [[nodiscard]] Now now();
  /// An attribute of what plays, such as "Genre".
  [[nodiscard]] std::string info(const char* attribute);
  /// The picture of what plays as the player calls it, "file://" and a path; empty without one.
  [[nodiscard]] std::string picture();

  /// One of the script object's operations without arguments.
  void act(const char* operation);
  void set(const char* field, const base::Value& value);
  /// Pauses what is being opened or waits for more of itself, of which the script object's own word knows
  /// nothing.
  void hold();
  /// Takes that back from what is still being opened.
  void goOn();
  void seek(double seconds);
  void open(const std::string& address);

  /// How many stored playlists there are, their names, whether there is one of that name.
  [[nodiscard]] std::int32_t playlistCount();
  [[nodiscard]] std::vector<std::string> playlistNames();
  [[nodiscard]] bool hasPlaylist(const std::string& name);
  void playPlaylist(const std::string& name);
  struct Played {
    bool stored = false;  ///< a stored playlist is what is played
    std::string name{};
  };
  [[nodiscard]] Played played();

 private:
  base::ObjectRef raw();
  base::ObjectRef part(const char* name);

  base::ObjectRef script_;
};

}  // namespace mpris
