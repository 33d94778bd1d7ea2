#pragma once
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Loop.hpp"
#include "engine/library/Library.hpp"
#include "engine/playlists/DiscThread.hpp"
#include "engine/playlists/FolderLook.hpp"
#include "engine/playlists/PlaylistLink.hpp"
#include "engine/playlists/StoredPlaylist.hpp"
#include "files/ReadFile.hpp"
#include "files/WriteFile.hpp"
#include "player/WMP9.hpp"

namespace engine {

/// What the folder of playlists lies on, as far as time goes.
struct PlaylistDisc {
  /// Called on the thread before it goes there, for as long as it takes to answer.
  std::function<void()> reach = [] {};
  /// How long to wait for it where so long is meant.
  std::function<base::Milliseconds(base::Milliseconds)> patience = [](base::Milliseconds limit) {
    return limit;
  };
};

/// The playlists of a folder, one file each. Every change is on the disk when its call returns; what others
/// change in the folder is noticed within seconds and at the next question. A link there is followed to a
/// file in the folder or the music's folders, and is told otherwise. While the folder is away with its disc
/// its playlists stay as they were, and none is changed, made or removed.
/// The disc may be slow, or hang as a network drive does whose server sleeps. A thread of its own looks at
/// the folder and reads what has changed there; a question waits for it half a second at most, and then
/// answers what is known. Whatever changes the folder (making, removing, renaming and editing a playlist)
/// asks the disc first, and throws 57, having done nothing, where it doesn't answer within five seconds, or
/// hasn't answered another who has waited for it in vain; once the change has begun it waits for as long as
/// the disc takes. The end waits for half a second, and leaves what hangs to itself.
class StoredPlaylists : public player::PlaylistCollection, private PlaylistKeeper {
 public:
  struct Events {
    std::function<void()> changed;  ///< playlists have come, gone, or got another name
    std::function<void()> content;  ///< a playlist's items have changed
    std::function<void(const std::string&)> message;
    /// The same as `changed` for what a call here has done. It is told as the call's last step, so that it
    /// may call back.
    std::function<void()> changedByCall = changed;
  };

  /// Of all playlists together.
  static constexpr std::size_t kMostItems = 1'000'000;

  /// Waits ten seconds at most for what lies in the folder; what comes later is told as a change.
  StoredPlaylists(base::Loop& loop, std::string folder, const Library& library, Events events,
                  files::WriteCall write = files::WriteBytes, std::size_t mostItems = kMostItems,
                  PlaylistDisc disc = PlaylistDisc());
  ~StoredPlaylists() override;
  StoredPlaylists(const StoredPlaylists&) = delete;
  StoredPlaylists& operator=(const StoredPlaylists&) = delete;
  StoredPlaylists(StoredPlaylists&&) = delete;
  StoredPlaylists& operator=(StoredPlaylists&&) = delete;

  /// The media that is told of: the library's own where it knows the address.
  [[nodiscard]] player::MediaRef mediaOf(const player::ToldMedia& told) const {
    return mediaOf(ItemOf(told));
  }
  /// Items that the library has got to know since are its own from now on.
  void libraryChanged();

  player::PlaylistArrayRef getAll() override;
  player::PlaylistArrayRef getByName(const std::string& name) override;
  /// Throws 5 for a name that is empty, no text or too long, kNameInUse, 70 where the folder can't be
  /// written, 61 when the disk is full, 76 while the folder is away, 57 where its disc doesn't answer.
  player::PlaylistRef newPlaylist(const std::string& name) override;
  /// Throws 5 for a playlist of elsewhere, 53 for one whose file has gone, 70 where the folder can't be
  /// written, 76 while it is away, 57 where its disc doesn't answer.
  void remove(const player::PlaylistRef& playlist) override;

 private:
  using Stored = std::shared_ptr<StoredPlaylist>;
  /// What a look has found.
  struct Changes {
    bool names = false;    ///< playlists have come, gone, or got another name
    bool content = false;  ///< the items of one that was known
  };

  /// A file that has been told as unreadable.
  struct Unreadable {
    files::FileStamp stamp;
    std::size_t items = 0;  ///< that it holds, where they are too many
  };

  static constexpr base::Milliseconds kPatience{500};  ///< of a question
  static constexpr base::Milliseconds kPatienceToChange{5000};
  /// What is not known by then would seem to be deleted.
  static constexpr base::Milliseconds kPatienceAtStart{10'000};

  M3uText open(StoredPlaylist& playlist) override;
  /// Throws 6 when all playlists together would have too many items with so many in the one at the path.
  void checkRoom(const std::string& path, std::size_t items) const;
  [[nodiscard]] bool fits(const std::string& path, std::size_t items) const {
    return items <= M3uText::kMostItems && itemsBeside(path) + items <= mostItems_;
  }
  [[nodiscard]] std::size_t itemsBeside(const std::string& path) const;
  void save(StoredPlaylist& playlist, const M3uText& text) override;
  [[nodiscard]] bool holds(const StoredPlaylist& playlist) const override;
  [[nodiscard]] player::MediaRef mediaOf(const M3uItem& item) const override;
  void tellContent() override { events_.content(); }
  void rename(StoredPlaylist& playlist, const std::string& name) override;

  /// Takes in what has changed in the folder, and tells it. False when the disc doesn't answer.
  bool refresh(base::Milliseconds limit = kPatience);
  /// The same without telling.
  bool lookAround(base::Milliseconds limit, Changes& changes);
  /// Has the thread look around. False when it is at work already.
  bool beginLook();
  /// Takes in what nobody has waited for.
  void takeLate();
  /// Takes in what the last look has found. True when it has left something for the next.
  bool take(Changes& changes);
  /// A file that may have changed. Notes what was found.
  void take(FolderLook::File& file, Changes& changes);
  void tell(const Changes& changes);
  /// The file to read and write; a link may lead to one in the folders of playlists and music. Throws as
  /// `FileBehind`.
  [[nodiscard]] std::string behind(const std::string& path) const {
    return FileBehind(path, folder_, library_.folders());
  }
  /// What stands in the file at the path. Throws as `behind`, the codes of `ReadFile`, and 5 for a text of
  /// which no line could be read.
  [[nodiscard]] files::FileText textAt(const std::string& path) const;
  [[nodiscard]] base::Failure silent() const;
  [[nodiscard]] base::Failure isAway() const;
  /// Refreshes. Throws 57 when the disc doesn't answer, 76 while the folder is away with it.
  void needFolder();
  /// Throws the same. Answers whether something lies at the path.
  bool needFile(const std::string& path);
  /// Files that are no longer among `present` are lost: whoever holds such a playlist can't change it until
  /// the file is back.
  void lose(const std::set<std::string>& present);
  void read(const std::string& path, const files::FileStamp& stamp, const M3uText& text, Changes& changes);
  Stored add(const std::string& path, const files::FileStamp& stamp, const std::string& name,
             std::vector<player::MediaRef> items);
  /// The lost playlist that is found again: the one that had lain in the very file, or else, if that is not
  /// asked for, the last one at the path.
  Stored found(const std::string& path, const files::FileStamp& stamp, bool veryFileOnly);
  /// A path for a playlist of that name: `own` if that fits, otherwise one where nothing lies.
  [[nodiscard]] std::string freePath(const std::string& name, const std::string& own) const;
  /// True if any playlist but `own` has the name.
  [[nodiscard]] bool taken(const std::string& name, const StoredPlaylist* own) const;
  void clearLeftovers();

  std::string folder_;
  const Library& library_;
  Events events_;
  files::WriteCall write_;
  std::size_t mostItems_;
  std::map<std::string, Stored> byPath_;
  std::vector<std::weak_ptr<StoredPlaylist>> lost_;  ///< in their order; several may have had one path
  std::map<std::string, Unreadable> unreadable_;
  std::set<std::string> cutTold_;  ///< files with a name too long that have been told
  bool folderTold_ = false;        ///< that it can't be read, or is away
  bool silentTold_ = false;        ///< that its disc doesn't answer
  bool away_ = false;              ///< at the last look
  PlaylistDisc disc_;
  std::shared_ptr<FolderOnDisc> onDisc_;                        ///< the thread's while it is at work
  std::shared_ptr<std::optional<FolderLook>> pending_;          ///< what the thread finds
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  ///< as long as this
  std::unique_ptr<base::Timer> timer_;
  DiscThread thread_;
};

}  // namespace engine
