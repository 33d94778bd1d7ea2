#pragma once
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/PollLoop.hpp"
#include "engine/library/Library.hpp"
#include "engine/playlists/StoredPlaylists.hpp"

namespace engine::testing {

/// A text of a file's bytes; empty if it can't be read.
std::string FileContent(const std::string& path);
void WriteText(const std::string& path, const std::string& text);

/// The items of a playlist file.
std::vector<M3uItem> ItemsOf(const std::string& text);
std::vector<std::string> Addresses(player::Playlist& list);

/// A disc that is waited for however slow this machine is.
PlaylistDisc PatientDisc();

/// The stored playlists of a folder beside a library that has no folders of its own. Made anew, it is what a
/// restart finds.
class PlaylistFolder {
 public:
  /// `root` also takes the library's data; the playlists lie in `root`/playlists.
  explicit PlaylistFolder(const std::string& root, files::WriteCall write = files::WriteBytes,
                          std::vector<std::string> musicFolders = {},
                          std::size_t mostItems = StoredPlaylists::kMostItems,
                          PlaylistDisc disc = PatientDisc());

  [[nodiscard]] player::MediaRef media(const std::string& address) const { return library.mediaAt(address); }
  /// The playlist of that name; nothing without one.
  player::PlaylistRef named(const std::string& name);
  /// A new playlist with these addresses.
  player::PlaylistRef make(const std::string& name, const std::vector<std::string>& addresses);
  std::vector<std::string> names();
  [[nodiscard]] std::string path(const std::string& file) const { return folder + '/' + file; }
  [[nodiscard]] std::string content(const std::string& file) const { return FileContent(path(file)); }

  int changes = 0;
  int contents = 0;
  std::vector<std::string> messages;
  std::string folder;
  bus::PollLoop loop;
  Library library;
  StoredPlaylists lists;
};

/// The number of the failure that a step ends in, 0 without one.
int FailureOf(const std::function<void()>& step);

}  // namespace engine::testing
