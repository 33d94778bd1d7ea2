#pragma once
#include <cstdint>
#include <string>

#include "base/Value.hpp"
#include "catalogue/MediaCatalogue.hpp"
#include "catalogue/Progress.hpp"
#include "player/WMPCalls.hpp"
#include "plugin/host/HostServices.hpp"
#include "plugin/host/Neighbours.hpp"
#include "ui/popup/PopupMenus.hpp"
#include "ui/popup/PopupWindow.hpp"

namespace ui {

/// What the library's menus are built on.
struct PopupListParts {
  PopupWindow& window;
  PopupMenus& menus;
  catalogue::MediaCatalogue& catalogue;
  catalogue::Progress& progress;
  player::WMPCalls& calls;
  plugin::LibraryCalls& library;
  plugin::MediaEvents& mediaEvents;
  plugin::HostServices& host;
};

/// The library in the popup window's menus: a click on a name opens the titles behind it, a click on a title
/// plays it. Failures are skipped, and nothing throws. The host gets turns while titles are read, so that
/// another click may come in the middle; nothing guards against that, the last one to end wins.
class PopupLists {
 public:
  explicit PopupLists(const PopupListParts& parts) : in_(parts) {}

  /// Element 0 reads the category's names anew, any other opens its titles.
  void listClick(const std::string& category, std::int16_t index);
  /// Fills the menu of titles with those of a group, sorted without regard to case.
  void BuildMediaListMenu(const std::string& CategoryType, const std::string& CategoryName);
  void mediaClick(std::int16_t index);

 private:
  base::TextListRef sortedNames(const player::PlaylistRef& group, std::int32_t count,
                                catalogue::ProgressShown& shown);
  void fill(const base::TextList& names, std::int32_t count, catalogue::ProgressShown& shown);
  void turnAt(std::int32_t round);

  PopupListParts in_;
};

}  // namespace ui
