#include "ui/popup/PopupLists.hpp"

#include <limits>

#include "base/Attempt.hpp"
#include "player/WMPPlay.hpp"
#include "web/UtilityModule.hpp"

namespace ui {

using base::Attempt;
using base::Failure;

namespace {

constexpr std::int32_t kLastElement = std::numeric_limits<std::int16_t>::max();

template <class T>
T& Existing(const std::shared_ptr<T>& object) {
  if (!object) throw Failure(base::number::kObjectMissing);
  return *object;
}

}  // namespace

void PopupLists::listClick(const std::string& category, std::int16_t index) {
  Attempt step;
  // Both texts are held as they are now: while the library is read, the window may open another list and the
  // names may be made anew.
  const std::string type = category;
  if (index == 0) {
    step([&] { in_.mediaEvents.UpdateMediaEvents(type); });
    return;
  }
  step([&] {
    const std::string name = in_.menus.list(type).caption(index);
    BuildMediaListMenu(type, name);
  });
  step([&] { in_.window.popUpMedia(PopupMenus::kHeading); });
}

void PopupLists::turnAt(std::int32_t round) {
  Attempt step;
  if (catalogue::YieldsAt(round)) step([&] { in_.host.WaitEvents(); });
}

base::TextListRef PopupLists::sortedNames(const player::PlaylistRef& group, std::int32_t count,
                                          catalogue::ProgressShown& shown) {
  auto names = std::make_shared<base::TextList>();
  Attempt step;
  for (std::int32_t round = 1; round <= count; ++round) {
    step([&] { names->add(Existing(Existing(group).item(round - 1)).name()); });
    shown.update(round, std::int64_t{count} * 2);
    turnAt(round);
  }
  web::SortCollection(names);
  return names;
}

void PopupLists::fill(const base::TextList& names, std::int32_t count, catalogue::ProgressShown& shown) {
  ElementArray& titles = in_.menus.list(PopupMenus::kMedia);
  Attempt step;
  auto name = names.begin();
  for (std::int32_t i = 0; i < count; ++i) {
    // Items whose names can't be read leave the last places empty.
    const std::string text = name != names.end() ? *name++ : std::string();
    const std::int32_t place = i + PopupMenus::kFirstTitle;
    // A menu's elements are counted in 16 bits: what is left of a larger group has no place in it.
    if (place <= kLastElement) {
      const auto element = static_cast<std::int16_t>(place);
      if (!titles.has(element)) step([&] { titles.load(element); });
      step([&] { titles.caption(element, text); });
    }
    shown.update(std::int64_t{count} + i + 1, std::int64_t{count} * 2);
    turnAt(i + 1);
  }
  const std::int64_t next = std::int64_t{count} + PopupMenus::kFirstTitle;
  for (std::int32_t place = titles.upperBound(); place >= next; --place)
    step([&] { titles.unload(static_cast<std::int16_t>(place)); });
}

void PopupLists::BuildMediaListMenu(const std::string& CategoryType, const std::string& CategoryName) {
  Attempt step;
  ElementArray& titles = in_.menus.list(PopupMenus::kMedia);
  titles.caption(PopupMenus::kType, CategoryType);
  titles.caption(PopupMenus::kName, CategoryName);
  titles.caption(PopupMenus::kHeading, CategoryType + ": " + CategoryName);
  titles.caption(PopupMenus::kPlayAll, player::PlayRequests::kEntireList);
  player::PlaylistRef group;
  step([&] { in_.catalogue.GetGroupItems(CategoryType, CategoryName, group); });
  catalogue::ProgressShown shown(in_.progress, "BuildMediaListMenu");
  std::int32_t count = 0;
  step([&] { count = Existing(group).count(); });
  fill(*sortedNames(group, count, shown), count, shown);
}

void PopupLists::mediaClick(std::int16_t index) {
  Attempt step;
  const ElementArray& titles = in_.menus.list(PopupMenus::kMedia);
  // The bound is that of a group of two titles: one of a single title is played by its name elsewhere. It has
  // always been so, and what a click does stays as users know it.
  if (titles.upperBound() <= PopupMenus::kFirstTitle) return;
  const std::string type = titles.caption(PopupMenus::kType);
  if (type == "Artist" || type == "Genre") in_.calls.SetShuffleMode(true);
  if (type == "PlayList" || type == "Album") in_.calls.SetShuffleMode(false);
  step([&] { in_.library.WMPPlay(type, titles.caption(PopupMenus::kName), titles.caption(index)); });
}

}  // namespace ui
