#pragma once
#include <string>

#include "base/Members.hpp"
#include "catalogue/MediaCatalogue.hpp"
#include "player/PlayStateTracker.hpp"
#include "player/WMPCalls.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Neighbours.hpp"
#include "plugin/host/PluginState.hpp"

namespace script {

/// What the script object drives.
struct ScriptParts {
  const plugin::PluginState& state;
  plugin::HostServices& host;
  player::WMPPlayer& form;
  player::WMPCalls& calls;
  player::PlayStateTracker& playState;
  catalogue::MediaCatalogue& catalogue;
  plugin::LibraryCalls& library;
  plugin::MediaEvents& mediaEvents;
};

/// `ScriptClass`, the plug-in's second public object, with which the house's scripts drive the player and
/// read the library. All operations run with failures skipped and report nothing; before start-up is over,
/// all but `Version` and `GetAlbumsByCategory` give the empty value of their type.
class ScriptClass : public base::TableObject {
 public:
  /// The name under which it is created.
  static constexpr const char* kRegisteredName = "vxif_WMP9.scriptclass";

  explicit ScriptClass(const ScriptParts& parts);

 private:
  base::MemberTable table();

  std::int32_t Play(const std::string& CategoryType, const std::string& CategoryName,
                    const std::string& Title);
  base::Value GetCategoryList(const std::string& CatType);
  base::Value GetByCategory(const std::string& CatType, const std::string& CategoryName);
  base::Record GetMediaInfo(const std::string& CategoryType, const std::string& CategoryName,
                            std::string Title);
  /// The record of an item; what can't be read of it, as of nothing, is an empty text.
  static base::Record MediaInfoOf(const player::MediaRef& item);
  bool RefreshLists(const std::string& CatType);
  base::Value GetAlbumsByCategory(const std::string& CatType, const std::string& CategoryName);
  base::Value AddToPlayList(const std::string& sPlayListName);
  base::Value CurrentPlaylist();
  /// An attribute of what plays, empty while nothing does.
  std::string currentInfo(const char* attribute);

  ScriptParts in_;
  base::ObjectRef wmpObject_;  // the one that was handed out
};

}  // namespace script
