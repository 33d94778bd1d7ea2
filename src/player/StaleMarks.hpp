#pragma once
#include <map>
#include <string>

#include "base/Collection.hpp"

namespace player {

/// Which of the library's lists must be read anew.
struct StaleMarks {
  std::map<std::string, bool, base::FoldedLess> CategoryStale;
  bool PlayListsStale = false;

  /// Makes `CategoryStale` anew with true under its three categories.
  void markCategories() { CategoryStale = {{"Album", true}, {"Artist", true}, {"Genre", true}}; }
};

}  // namespace player
