#include "engine/scan/LibraryWatch.hpp"

#include <sys/inotify.h>
#include <sys/stat.h>

#include <array>
#include <cstring>

namespace engine {
namespace {

constexpr std::uint32_t kEvents = IN_CLOSE_WRITE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE | IN_CREATE |
                                  IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

/// A new file is usually still being written and is reported again when it is closed; a new link never is.
bool IsNewLink(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 && (S_ISLNK(info.st_mode) || info.st_nlink > 1);
}

}  // namespace

LibraryWatch::LibraryWatch() : inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

bool LibraryWatch::add(const std::string& folder) {
  if (byFolder_.contains(folder)) return true;
  const int watch = ::inotify_add_watch(inotify_.get(), folder.c_str(), kEvents);
  if (watch < 0) return false;
  const auto known = byWatch_.find(watch);
  if (known != byWatch_.end()) byFolder_.erase(known->second);  // one folder, moved or reached by two paths
  byWatch_[watch] = folder;
  byFolder_[folder] = watch;
  return true;
}

void LibraryWatch::forgetTree(const std::string& folder) {
  const std::string below = folder + '/';
  auto place = byFolder_.find(folder);
  if (place != byFolder_.end()) {
    ::inotify_rm_watch(inotify_.get(), place->second);
    byWatch_.erase(place->second);
    byFolder_.erase(place);
  }
  for (place = byFolder_.lower_bound(below);
       place != byFolder_.end() && place->first.compare(0, below.size(), below) == 0;) {
    ::inotify_rm_watch(inotify_.get(), place->second);
    byWatch_.erase(place->second);
    place = byFolder_.erase(place);
  }
}

bool LibraryWatch::read(std::set<std::string>& changed) {
  bool complete = true;
  alignas(inotify_event) std::array<char, std::size_t{64} * 1024> buffer{};
  while (true) {
    const ssize_t size = ::read(inotify_.get(), buffer.data(), buffer.size());
    if (size <= 0) return complete;
    for (ssize_t offset = 0; offset < size;) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + offset, sizeof event);
      const char* name = event.len > 0 ? buffer.data() + offset + sizeof event : "";
      offset += static_cast<ssize_t>(sizeof event + event.len);
      if ((event.mask & IN_Q_OVERFLOW) != 0) {
        complete = false;
        continue;
      }
      const auto watch = byWatch_.find(event.wd);
      if (watch == byWatch_.end()) continue;
      const std::string folder = watch->second;
      if ((event.mask & IN_IGNORED) != 0) {
        byFolder_.erase(folder);
        byWatch_.erase(watch);
      }
      const bool newFile = (event.mask & IN_CREATE) != 0 && (event.mask & IN_ISDIR) == 0;
      if (newFile && !IsNewLink(folder + '/' + name)) continue;
      changed.insert(folder);
    }
  }
}

}  // namespace engine
