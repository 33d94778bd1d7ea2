#pragma once
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/common/Track.hpp"
#include "engine/library/Lists.hpp"
#include "engine/playlists/M3u.hpp"

namespace engine {

class StoredPlaylist;

/// Where the files of stored playlists are looked after.
class PlaylistKeeper {
 public:
  PlaylistKeeper() = default;
  virtual ~PlaylistKeeper() = default;
  PlaylistKeeper(const PlaylistKeeper&) = delete;
  PlaylistKeeper& operator=(const PlaylistKeeper&) = delete;
  PlaylistKeeper(PlaylistKeeper&&) = delete;
  PlaylistKeeper& operator=(PlaylistKeeper&&) = delete;

  /// The file's text as it is now. If others have written it, the playlist has their items first. Throws 53
  /// when the file has gone, 76 when the folder has, 57 where its disc doesn't answer.
  virtual M3uText open(StoredPlaylist& playlist) = 0;
  /// Writes the file, and waits for its disc as long as that takes. Throws as `WriteFile`, and 6 where there
  /// is no room for so many items with those of all other lists; then the old file stays.
  virtual void save(StoredPlaylist& playlist, const M3uText& text) = 0;
  /// False for one whose file has gone.
  [[nodiscard]] virtual bool holds(const StoredPlaylist& playlist) const = 0;
  /// The media that an item of a file means.
  [[nodiscard]] virtual player::MediaRef mediaOf(const M3uItem& item) const = 0;
  /// The playlist's items have changed.
  virtual void tellContent() = 0;
  /// Gives the playlist another name, in memory and on the disk or in neither.
  virtual void rename(StoredPlaylist& playlist, const std::string& name) = 0;
};

/// A playlist with a file behind it: each change is in both or in neither. Once it has been removed it is a
/// list like any other.
class StoredPlaylist : public ListPlaylist {
 public:
  StoredPlaylist(PlaylistKeeper& keeper, std::string name, std::vector<player::MediaRef> items)
      : ListPlaylist(std::move(name), std::move(items)), keeper_(&keeper) {}

  using ListPlaylist::name;
  void name(const std::string& value) override;
  void appendItem(const player::MediaRef& media) override;
  void insertItem(std::int32_t index, const player::MediaRef& media) override;
  void removeItem(const player::MediaRef& media) override;
  void removeItems(const std::vector<std::int32_t>& places) override;
  void moveItem(std::int32_t oldIndex, std::int32_t newIndex) override;
  void insertItems(std::int32_t index, const std::vector<player::ToldMedia>& items) override;
  /// 0 once it has been removed, and while its file has gone.
  [[nodiscard]] std::int64_t revision() const override {
    return keeper_ != nullptr && keeper_->holds(*this) ? revision_ : 0;
  }

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] const files::FileStamp& stamp() const { return stamp_; }
  /// Where the file lies now, and what it is like.
  void stored(std::string path, const files::FileStamp& stamp) {
    path_ = std::move(path);
    stamp_ = stamp;
  }
  [[nodiscard]] bool keptBy(const PlaylistKeeper& keeper) const { return keeper_ == &keeper; }
  /// No file is behind it from now on.
  void disown() { keeper_ = nullptr; }
  /// Takes what the file says now. Items that have stayed are the same objects as before, and whoever holds
  /// one whose title or length is another now still means it.
  void take(const std::string& name, std::vector<player::MediaRef> items);
  void rename(const std::string& name) { ListPlaylist::name(name); }
  const std::vector<player::MediaRef>& items() { return own(); }
  /// The library has changed: its own items may show other titles now. Puts what `newer` answers, another
  /// object for the same location or nothing, in the place of each item.
  void renew(const std::function<player::MediaRef(const player::MediaRef&)>& newer);

 private:
  struct Swap {
    std::weak_ptr<player::Media> held;
    player::MediaRef now;
  };

  void forgetSwaps();
  void noteSwap(const player::MediaRef& before, const player::MediaRef& now);
  /// The list's own item that a held one has become.
  [[nodiscard]] player::MediaRef standsFor(player::MediaRef media) const;

  static std::int64_t firstRevision();

  PlaylistKeeper* keeper_;
  std::int64_t revision_ = firstRevision();
  std::string path_;
  files::FileStamp stamp_;
  std::unordered_map<const player::Media*, Swap> swaps_;  ///< of items that are held somewhere
};

/// An item as it is written to a file.
M3uItem ItemOf(const player::Media& media);
/// The same of a title that is only told of.
M3uItem ItemOf(const player::ToldMedia& told);

}  // namespace engine
