#pragma once
#include <functional>
#include <memory>
#include <string>

#include "base/Loop.hpp"
#include "engine/common/Config.hpp"
#include "engine/common/Poster.hpp"
#include "engine/library/Media.hpp"
#include "engine/scan/LibraryStore.hpp"
#include "engine/scan/Scanner.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// The library on the loop's thread: what the index knew is there at once, what the scanner finds follows.
class Library : public player::MediaCollection {
 public:
  /// Told on the loop's thread.
  struct Events {
    std::function<void()> changed;                    ///< some time after changes, many of them at once
    std::function<void(const std::string&)> message;  ///< a line for people
    std::function<void()> scanned;                    ///< a scan of all folders has ended
    std::function<void()> known = [] {};  ///< with each change at once, for the engine's own parts
  };

  Library(base::Loop& loop, const Config& config, Events events);

  [[nodiscard]] const ShelfRef& shelf() const { return shelf_; }
  /// The music folders.
  [[nodiscard]] const std::vector<std::string>& folders() const { return folders_; }
  /// Whether it has never held any media.
  [[nodiscard]] bool empty() const { return shelf_->table.rows() == 0; }
  /// The media at a path or address: the library's own if it has it, otherwise loose with what can be learnt
  /// without opening it.
  [[nodiscard]] player::MediaRef mediaAt(const std::string& url) const;
  /// The library's own at a path or address, with slashes or backslashes; nothing without one. It asks
  /// the table and no disk, as long as there is no doubt: it is asked for every item of every playlist.
  [[nodiscard]] player::MediaRef trackAt(const std::string& path) const;

  /// How loud the media there is; of a file that the library does not have, its tags are read at once.
  [[nodiscard]] Loudness loudnessAt(const std::string& location) const;

  /// Whether the second is the track behind the first on their album.
  [[nodiscard]] bool followsOnAlbum(const std::string& first, const std::string& second) const;

  player::MediaRef add(const std::string& url) override;
  player::PlaylistRef getAll() override;
  player::PlaylistRef getByName(const std::string& name) override;
  player::PlaylistRef getByAttribute(const std::string& attribute, const std::string& value) override;
  player::StringCollectionRef getAttributeStringCollection(const std::string& attribute,
                                                           const std::string& mediaType) override;

 private:
  void take(const LibraryChange& change);
  /// The table's track at a path, if it is in the library.
  [[nodiscard]] player::MediaRef known(const std::string& path) const;
  void noteChange();
  void tellChange();

  ShelfRef shelf_;
  std::vector<std::string> folders_;
  Events events_;
  std::unique_ptr<base::Timer> changeTimer_;
  Poster post_;
  std::unique_ptr<Scanner> scanner_;  // last: its thread posts
};

}  // namespace engine
