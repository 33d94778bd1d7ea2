#pragma once
#include <functional>
#include <optional>
#include <string>

#include "bus/Connection.hpp"
#include "standin/house/House.hpp"
#include "standin/player/PlayerLists.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// Whose cover is wanted: that of the item that the player holds, or that of an album.
struct CoverWish {
  bool playing = false;
  std::string album{};
  std::string artist{};  ///< tells albums of one name apart; may be empty
};

/// What the player has for it.
struct FoundCover {
  std::string album{};
  std::string artist{};
  std::string title{};  ///< of the item that the player holds
  std::string item{};   ///< which item that is, as PlayerNow has it
  std::string mark{};   ///< of the picture; empty without one
  std::string key{};    ///< of the picture, if that is known already: then there are no bytes
  std::string bytes{};
  bool elsewhere = false;  ///< the plug-in has found one that the player doesn't have
};

/// The pictures that the player has, asked for by name: no path goes either way. On the loop's thread.
class PlayerCovers {
 public:
  PlayerCovers(bus::Connection& connection, PluginKeeper& plugin, House& house)
      : PlayerCovers(connection, plugin, house, {}) {}
  PlayerCovers(bus::Connection& connection, PluginKeeper& plugin, House& house,
               PluginKeeper::Address address);

  /// What is known of the picture with that mark: its key, or with an empty one that it can't be shown;
  /// nothing when its bytes are wanted.
  using Known = std::function<std::optional<std::string>(const std::string& mark)>;
  using Found = std::function<void(FoundCover found)>;
  /// Tells the first picture that is not known for none. `found` is called in every case: without a picture
  /// when there is none, or no player that answers.
  void find(const CoverWish& wish, Known known, Found found);
  /// The file with the cover that the plug-in has found last.
  [[nodiscard]] std::filesystem::path lastFound() const;

 private:
  void look(const CoverWish& wish, const Known& known, FoundCover& found);

  bus::Connection& connection_;
  PluginKeeper& plugin_;
  House& house_;
  PluginKeeper::Address address_;
};

}  // namespace standin
