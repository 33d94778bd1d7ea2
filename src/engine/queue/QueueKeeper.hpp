#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/Loop.hpp"
#include "engine/common/Poster.hpp"
#include "engine/library/Library.hpp"
#include "engine/library/Lists.hpp"
#include "engine/playback/Playback.hpp"
#include "engine/playlists/StoredPlaylists.hpp"
#include "engine/queue/QueueJournal.hpp"

namespace engine {

/// Keeps what is played for the next start: the list and the item with each of their changes, the position
/// with each change of state and every few seconds between. What can't be kept is told once, and tried again
/// with the next change; nothing of the player waits for it or fails by it.
class QueueKeeper : private ListWatch {
 public:
  struct Parts {
    base::Loop& loop;
    Playback& playback;
    const Library& library;
    StoredPlaylists& playlists;
    std::function<bool()> chosen;                     ///< false while the whole library is the list
    std::function<std::int64_t()> mark;               ///< what others know the queue by
    std::function<void(const std::string&)> message;  ///< lines for people, on any thread
  };
  /// What was taken up again.
  struct TakenUp {
    bool chosen = false;
    std::int64_t mark = 0;
  };

  QueueKeeper(Parts parts, const std::string& folder, files::WriteCall write = files::WriteBytes);
  ~QueueKeeper() override;
  QueueKeeper(const QueueKeeper&) = delete;
  QueueKeeper& operator=(const QueueKeeper&) = delete;
  QueueKeeper(QueueKeeper&&) = delete;
  QueueKeeper& operator=(QueueKeeper&&) = delete;

  /// Gives the playback what was kept, stopped, without a word. None when nothing was. Titles that have gone
  /// stay in the list.
  std::optional<TakenUp> takeUp();
  /// Keeps from now on what is played, once `chosen` and `mark` know of what was taken up.
  void begin();
  /// Another list, item, position or state may be there now.
  void note();

 private:
  void edited(const std::vector<ListStep>& steps) override;
  /// Other changes of the list are heard of from now on.
  void watch(const player::PlaylistRef& list);
  /// These two throw as the journal.
  void writeWhole();
  void writePlace(const KeptPlace& place);
  [[nodiscard]] KeptPlace place() const;
  [[nodiscard]] KeptName name() const;
  [[nodiscard]] player::PlaylistRef listOf(const KeptQueue& queue) const;
  [[nodiscard]] player::MediaRef mediaOf(const DecodedItem& item) const;
  /// Failures are told, once until something can be written again.
  void keep(const std::function<void()>& write);
  void look();

  Parts parts_;
  QueueJournal journal_;
  std::unique_ptr<base::Timer> timer_;
  bool ready_ = false;
  bool told_ = false;      ///< that nothing can be kept
  bool stale_ = false;     ///< the items of a stored playlist are others than the kept ones
  bool zeroing_ = false;   ///< the position of what was stopped has its turn
  bool settling_ = false;  ///< the playback is told soon of what was changed in its list
  KeptPlace kept_;
  bool keptLibrary_ = true;
  std::int64_t keptMark_ = 0;
  std::int64_t revision_ = 0;
  player::PlaylistRef list_;
  std::shared_ptr<ListPlaylist> watched_;
  Poster post_;
};

}  // namespace engine
