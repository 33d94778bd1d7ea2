#pragma once
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/Loop.hpp"
#include "engine/Library.hpp"
#include "engine/Lists.hpp"
#include "player/WMP9.hpp"

namespace engine {

class StoredPlaylist;

/// The playlists of a folder, one file each. Every change is on the disk when its call returns; what others
/// change in the folder is noticed within seconds and at the next question.
class StoredPlaylists : public player::PlaylistCollection {
 public:
  struct Events {
    std::function<void()> changed;  ///< playlists have come, gone, or got another name
    std::function<void()> content;  ///< a playlist's items have changed
    std::function<void(const std::string&)> message;
  };

  StoredPlaylists(base::Loop& loop, std::string folder, const Library& library, Events events);
  ~StoredPlaylists() override;
  StoredPlaylists(const StoredPlaylists&) = delete;
  StoredPlaylists& operator=(const StoredPlaylists&) = delete;
  StoredPlaylists(StoredPlaylists&&) = delete;
  StoredPlaylists& operator=(StoredPlaylists&&) = delete;

  /// Items that the library has got to know since are its own from now on.
  void libraryChanged();

  player::PlaylistArrayRef getAll() override;
  player::PlaylistArrayRef getByName(const std::string& name) override;
  /// Throws 5 for an empty name, kNameInUse, 70 where the folder can't be written.
  player::PlaylistRef newPlaylist(const std::string& name) override;
  void remove(const player::PlaylistRef& playlist) override;

 private:
  friend class StoredPlaylist;

  /// Reads what has changed in the folder. True when playlists have come, gone, or got another name.
  bool refresh();
  bool read(const std::string& path, const FileStamp& stamp);
  void write(StoredPlaylist& playlist);
  /// Reads the playlist's file again if others have written it since, so that their change is not lost.
  void catchUp(StoredPlaylist& playlist);
  void rename(StoredPlaylist& playlist, const std::string& name);
  [[nodiscard]] std::string freePath(const std::string& name) const;
  [[nodiscard]] std::shared_ptr<StoredPlaylist> named(const std::string& name) const;
  void tellChanged();

  std::string folder_;
  const Library& library_;
  Events events_;
  std::map<std::string, std::shared_ptr<StoredPlaylist>> byPath_;
  std::map<std::string, FileStamp> unreadable_;
  std::unique_ptr<base::Timer> timer_;
};

}  // namespace engine
