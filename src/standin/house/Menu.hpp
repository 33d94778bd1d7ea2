#pragma once
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "base/Object.hpp"
#include "standin/house/Quotas.hpp"

namespace standin {

struct MenuItem {
  std::string section;
  std::string item;
  bool operator==(const MenuItem&) const = default;
};

/// The host's menu: the items that the plug-in has registered, in their order.
class Menu {
 public:
  static constexpr std::size_t kMost = 1000;

  /// Throws 6 beyond `kMost`, and for a text that is too long.
  void add(const std::string& section, const std::string& item) {
    const MenuItem made{section, item};
    if (std::find(items_.begin(), items_.end(), made) != items_.end()) return;
    CheckLength("A text of the menu", section);
    CheckLength("A text of the menu", item);
    CheckRoom("items in the menu", items_.size(), kMost);
    items_.push_back(made);
  }
  [[nodiscard]] bool has(const std::string& item) const {
    return std::any_of(items_.begin(), items_.end(), [&](const MenuItem& each) { return each.item == item; });
  }
  void clear() { items_.clear(); }
  [[nodiscard]] const std::vector<MenuItem>& items() const { return items_; }

 private:
  std::vector<MenuItem> items_;
};

/// A web page that the plug-in answers for.
struct PageLink {
  std::string link;  ///< the path of the page, without the leading slash
  std::string text;  ///< its words in the navigation
  std::string title;
  base::ObjectRef page;
};

/// The object that wants to hear of the events of a mask.
struct EventSink {
  std::int16_t mask = 0;
  base::ObjectRef object;
};

}  // namespace standin
