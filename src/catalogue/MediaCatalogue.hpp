#pragma once
#include <cstdint>
#include <map>
#include <string>

#include "base/Collection.hpp"
#include "base/DayClock.hpp"
#include "base/Value.hpp"
#include "catalogue/NameXref.hpp"
#include "catalogue/Progress.hpp"
#include "player/LibraryLookup.hpp"
#include "player/PlayTarget.hpp"
#include "player/StaleMarks.hpp"
#include "player/WMPPlayer.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Loggers.hpp"

namespace catalogue {

/// Statuses of the catalogue: 0 for success, any other positive or large number the player's own failure.
inline constexpr std::int32_t kDone = 0;
inline constexpr std::int32_t kNotFound = -1;

/// The categories that have lists of names, as the system writes them; they compare without regard to case.
/// Any other word is taken as an attribute of the player's library.
inline constexpr const char* kPlayListCategory = "PlayList";
inline constexpr const char* kMediaLibraryCategory = "Media Library";

/// What the catalogue is built on.
struct CatalogueParts {
  player::WMPPlayer& form;
  plugin::HostServices& host;
  plugin::Loggers& loggers;
  const plugin::PluginState& state;
  player::StaleMarks& stale;
  player::PlayTarget& target;
  NameXref& xref;
  Progress& progress;
  const base::DayClock& clock;
};

/// The player's library by name: lists of names, kept in memory until the player says that they changed,
/// groups and items, and the playlists' changes. Every name that passes is entered in the cross-reference.
/// No operation throws; the results are statuses.
class MediaCatalogue : public player::LibraryLookup {
 public:
  explicit MediaCatalogue(const CatalogueParts& parts) : in_(parts) {}

  /// The names of a category in the player's order. `list` is the cached collection itself, to be read only;
  /// after a failure it is an empty one. -1 when there are no playlists at all. The names of playlists pass
  /// `FilterString` with `filter`.
  std::int32_t GetGroupList(const std::string& category, base::TextListRef& list, const std::string& filter);

  std::int32_t GetGroupItems(const std::string& category, const std::string& name,
                             player::PlaylistRef& group) override;
  std::int32_t GetMediaItem(std::string& title, player::PlaylistRef& list, player::MediaRef& item) override;
  std::int32_t GetPlayListByName(const std::string& name, player::PlaylistRef& list) override;
  std::int32_t GetAllMedia(player::PlaylistRef& list) override;
  /// -2 when the player made nothing.
  std::int32_t CreatePlayList(const std::string& name, player::PlaylistRef& list);
  /// Adds what was played last to a playlist, which is made if need be. Empty for success, or -1 no playlist,
  /// -2 no item, -3 refused by the player, -4 nothing played so far, -5 the current media has no name, -6 it
  /// isn't in the list that was played, -7 the address can't be added to the library.
  base::Value AddMediaToPlayList(const std::string& name);

 private:
  std::int32_t GetAllPlayLists(player::PlaylistArrayRef& all);
  std::int32_t attributeList(const std::string& category, base::TextListRef& list, ProgressShown& shown);
  std::int32_t readAttribute(const std::string& category, const base::TextListRef& list,
                             ProgressShown& shown);
  std::int32_t playLists(base::TextListRef& list, const std::string& filter, ProgressShown& shown);
  void readPlayLists(const player::PlaylistArray& all, const std::string& filter, ProgressShown& shown);
  void noteSlow(const player::Playlist& playlist, const std::string& name, float start);
  void registerTitles(const player::Playlist& group, ProgressShown& shown);
  std::int32_t itemToAdd(player::MediaRef& item);
  void debug(const std::string& text);
  void registerName(const std::string& category, const std::string& name, plugin::Unwaited& saves);
  void registerName(const std::string& category, const std::string& name);
  void yieldAt(std::int32_t index, plugin::Unwaited& saves);
  player::MediaCollection& media() { return in_.form.wmp9().mediaCollection(); }
  player::PlaylistCollection& playlists() { return in_.form.wmp9().playlistCollection(); }

  CatalogueParts in_;
  std::map<std::string, base::TextListRef, base::FoldedLess> CategoryLists_;
  base::TextListRef PlayListNames_ = std::make_shared<base::TextList>();
};

}  // namespace catalogue
