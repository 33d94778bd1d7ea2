#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "plugin/host/Neighbours.hpp"

namespace ui {

inline constexpr std::int32_t kNoSuchElement = 340;
inline constexpr std::int32_t kElementExists = 360;
inline constexpr std::int32_t kElementOfDesign = 362;  // it can't be unloaded

/// A menu's elements, numbered from 0 by 16 bits. There may be gaps. Those of the design stay.
class ElementArray {
 public:
  explicit ElementArray(std::vector<std::string> design);

  [[nodiscard]] bool has(std::int32_t element) const;
  /// Makes an element, which can be seen and chosen. Throws 360 for one that is there, 9 below 0.
  void load(std::int16_t element);
  /// Throws 340 for one that is not there, 362 for one of the design.
  void unload(std::int16_t element);
  /// Throw 340 for an element that is not there.
  [[nodiscard]] const std::string& caption(std::int16_t element) const;
  void caption(std::int16_t element, const std::string& text);
  /// The highest number of an element.
  [[nodiscard]] std::int16_t upperBound() const { return static_cast<std::int16_t>(elements_.size() - 1); }

 private:
  std::size_t design_;
  std::vector<std::optional<std::string>> elements_;  // the last one is always there
};

/// A fixed item of the popup window's menus.
struct PopupMenuItem {
  const char* name;
  const char* caption;  ///< with "&" before the letter that chooses it; empty for a separator
  const char* parent;   ///< another item's name, empty for one of the bar
  const char* list;     ///< the category whose names stand below it, if any
  bool checkable;

  [[nodiscard]] bool separator() const { return *caption == '\0'; }
};

/// The popup window's menus as they are now: the fixed items and their check marks, the names of each
/// category, and the titles of one group.
class PopupMenus : public plugin::MediaMenus {
 public:
  static constexpr const char* kMedia = "Media";
  // The elements of `kMedia` that stand before the titles. The first two are the menu's memory of what it
  // shows.
  static constexpr std::int16_t kType = 0;
  static constexpr std::int16_t kName = 1;
  static constexpr std::int16_t kHeading = 2;
  static constexpr std::int16_t kPlayAll = 3;
  static constexpr std::int16_t kFirstTitle = 4;

  /// In the order in which they stand.
  static const std::vector<PopupMenuItem>& items();

  [[nodiscard]] bool checked(const std::string& item) const { return checked_.count(item) > 0; }
  /// Throws 5 for what has no check mark.
  void check(const std::string& item, bool value);

  /// The names of "Album", "Artist", "Genre" or "PlayList", or the titles under `kMedia`. Throws 5 for
  /// anything else.
  [[nodiscard]] ElementArray& list(const std::string& category);
  [[nodiscard]] const ElementArray& list(const std::string& category) const;

  void load(const std::string& category, std::int16_t element) override { list(category).load(element); }
  void caption(const std::string& category, std::int16_t element, const std::string& text) override {
    list(category).caption(element, text);
  }

 private:
  std::set<std::string> checked_;
  std::map<std::string, ElementArray> lists_{
      {"Album", ElementArray({"(none)"})},
      {"Artist", ElementArray({"(none)"})},
      {"Genre", ElementArray({"(none)"})},
      {"PlayList", ElementArray({"(none)"})},
      {kMedia, ElementArray({"Type", "Name", "Heading", "Play All"})},
  };
};

}  // namespace ui
