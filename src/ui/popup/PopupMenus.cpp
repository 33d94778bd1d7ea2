#include "ui/popup/PopupMenus.hpp"

#include <algorithm>
#include <utility>

#include "base/Failure.hpp"

namespace ui {

using base::Failure;

ElementArray::ElementArray(std::vector<std::string> design)
    : design_(design.size()), elements_(design.begin(), design.end()) {}

bool ElementArray::has(std::int32_t element) const {
  const auto place = static_cast<std::size_t>(element);
  return element >= 0 && place < elements_.size() && elements_[place];
}

void ElementArray::load(std::int16_t element) {
  if (element < 0) throw Failure(base::number::kIndex);
  if (has(element)) throw Failure(kElementExists, "The menu element is already there");
  const auto place = static_cast<std::size_t>(element);
  if (place >= elements_.size()) elements_.resize(place + 1);
  elements_[place] = std::string();
}

void ElementArray::unload(std::int16_t element) {
  if (!has(element)) throw Failure(kNoSuchElement, "The menu has no such element");
  const auto place = static_cast<std::size_t>(element);
  if (place < design_) throw Failure(kElementOfDesign, "The menu element can't be taken away");
  elements_[place].reset();
  while (!elements_.back()) elements_.pop_back();
}

const std::string& ElementArray::caption(std::int16_t element) const {
  if (!has(element)) throw Failure(kNoSuchElement, "The menu has no such element");
  return *elements_[static_cast<std::size_t>(element)];
}

void ElementArray::caption(std::int16_t element, const std::string& text) {
  if (!has(element)) throw Failure(kNoSuchElement, "The menu has no such element");
  *elements_[static_cast<std::size_t>(element)] = text;
}

const std::vector<PopupMenuItem>& PopupMenus::items() {
  static const std::vector<PopupMenuItem> kItems = {
      {"Play", "&Play...", "", "", false},
      {"AlbumMenu", "Album", "Play", "Album", false},
      {"ArtistMenu", "Artist", "Play", "Artist", false},
      {"GenreMenu", "Genre", "Play", "Genre", false},
      {"PlayListMenu", "PlayList", "Play", "PlayList", false},
      {"Settings", "&Settings", "", "", false},
      {"ShowCoverArt", "Show Cover &Art", "Settings", "", true},
      {"ShowVisualizations", "Show &Visualizations (CPU Intensive)", "Settings", "", true},
      {"ShowFullScreenVideo", "Show Full &Screen Video", "Settings", "", true},
      {"Sep1", "", "Settings", "", false},
      {"LoopMode", "&Loop Mode", "Settings", "", true},
      {"ShuffleMode", "&Shuffle Mode", "Settings", "", true},
      {"Eject", "&Eject", "Settings", "", false},
      {"Sep2", "", "Settings", "", false},
      {"AlwaysOnTop", "Always &On Top", "Settings", "", true},
      {"About", "A&bout Vantorix Media Player", "", "", false},
  };
  return kItems;
}

void PopupMenus::check(const std::string& item, bool value) {
  const bool known = std::any_of(items().begin(), items().end(), [&](const PopupMenuItem& each) {
    return each.checkable && item == each.name;
  });
  if (!known) throw Failure(base::number::kInvalidArgument);
  if (value)
    checked_.insert(item);
  else
    checked_.erase(item);
}

const ElementArray& PopupMenus::list(const std::string& category) const {
  const auto found = lists_.find(category);
  if (found == lists_.end()) throw Failure(base::number::kInvalidArgument);
  return found->second;
}

ElementArray& PopupMenus::list(const std::string& category) {
  return const_cast<ElementArray&>(std::as_const(*this).list(category));
}

}  // namespace ui
