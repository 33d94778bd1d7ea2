#pragma once
#include <functional>
#include <memory>
#include <string>

#include "bus/Connection.hpp"
#include "standin/player/PlayerLists.hpp"
#include "standin/player/PlayerNow.hpp"
#include "standin/player/PluginKeeper.hpp"

namespace standin {

/// What plays now, told to the pages when it changes; where an item has come to they reckon themselves. What
/// the player tells by its devices is seen at once; how loud it is and where it was sent it tells nobody, so
/// that it is asked once a second, while somebody has a page open. All use is on the loop's thread.
class NowPlaying {
 public:
  NowPlaying(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, House& house)
      : NowPlaying(loop, connection, plugin, house, {}) {}
  NowPlaying(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, House& house,
             PluginKeeper::Address address);

  using Heard = std::function<void(const PlayerNow& now)>;
  /// How it is now; `known` is false where the player can't tell.
  void ask(Heard heard);

  using Work = std::function<void(PlayerLists& lists)>;
  /// The number is one of base/Failure.hpp.
  using Done = std::function<void(const PlayerNow& now, std::int32_t number, const std::string& failure)>;
  /// Has something done to the player and tells, also to the pages, what has become of it.
  void act(Work work, Done done);

  struct Picture {
    std::string item{};  ///< as PlayerNow has it; empty where nobody could tell
    std::string album{};
    std::string albumArtist{};
    std::string key{};  ///< empty where there is none
  };
  /// Another item plays, whose picture is to be told by `picture`.
  std::function<void()> onPictureWanted = [] {};
  /// What plays, or has played a moment ago, has that picture. Pages are told.
  void picture(Picture picture);
  /// It may have another one by now, which is asked for when somebody looks.
  void forgetPicture() { asked_ = picture_.item = {}; }

  /// The server's own clock, by which the pages reckon: milliseconds.
  [[nodiscard]] std::int64_t clock() const;

 private:
  void soon();
  void look();
  PlayerNow read(PlayerLists& lists) const;
  void tell(PlayerNow& now);
  void addPicture(PlayerNow& now);

  bus::PollLoop& loop_;
  bus::Connection& connection_;
  PluginKeeper& plugin_;
  House& house_;
  PluginKeeper::Address address_;
  PlayerNow told_;
  Picture picture_;
  std::string asked_;  ///< the item whose picture was wanted last
  bool looking_ = false;
  std::unique_ptr<base::Timer> soon_;
  std::unique_ptr<base::Timer> often_;
  DeviceHearing devices_;
};

}  // namespace standin
