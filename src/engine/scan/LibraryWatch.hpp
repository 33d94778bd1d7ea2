#pragma once
#include <map>
#include <set>
#include <string>
#include <unordered_map>

#include "files/Descriptor.hpp"

namespace engine {

/// Tells which folders have changed. Where the system has no watches left, folders go unwatched.
class LibraryWatch {
 public:
  LibraryWatch();

  /// Readable when something has changed; -1 where nothing can be watched.
  [[nodiscard]] int descriptor() const { return inotify_.get(); }
  /// Watches one folder, not what is below it. False when no watch can be had.
  bool add(const std::string& folder);
  [[nodiscard]] bool covers(const std::string& folder) const { return byFolder_.contains(folder); }
  /// Ends the watch of the folder and of all below it.
  void forgetTree(const std::string& folder);
  /// Adds the folders that have changed to `changed`. False when events were lost, so that anything may have
  /// changed.
  bool read(std::set<std::string>& changed);

 private:
  files::Descriptor inotify_;
  std::unordered_map<int, std::string> byWatch_;
  std::map<std::string, int> byFolder_;
};

}  // namespace engine
