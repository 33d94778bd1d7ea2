#pragma once
#include <map>
#include <string>

namespace player {

/// Which of the library's lists must be read anew.
struct StaleMarks {
  std::map<std::string, bool> CategoryStale;
  bool PlayListsStale = false;

  /// Makes `CategoryStale` anew with true under its three categories.
  void markCategories() { CategoryStale = {{"Album", true}, {"Artist", true}, {"Genre", true}}; }
};

}  // namespace player
