#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "database/Database.hpp"
#include "standin/playlists/PlaylistStep.hpp"

namespace standin {

/// What has been done to the playlists, list by list, for undo and redo. A step is written down before it is
/// taken, so that a process that ends at any moment leaves no step behind that the history doesn't know. The
/// oldest steps are forgotten when there are too many. It knows nothing of the lists themselves.
class PlaylistHistory {
 public:
  struct Limits {
    std::int64_t steps = 100;  ///< of one list
    std::int64_t lists = 200;
    std::int64_t bytes = std::int64_t{32} << 20U;  ///< of all steps; the newest is kept in any case
  };
  explicit PlaylistHistory(database::Database& database) : PlaylistHistory(database, Limits()) {}
  PlaylistHistory(database::Database& database, Limits limits) : database_(database), limits_(limits) {}

  enum class State { kDone, kUndone, kBeginning, kUndoing, kRedoing };
  struct Entry {
    std::int64_t id = 0;
    std::string list;  ///< the name of the list as the history knows it now
    State state = State::kDone;
    PlaylistStep step;
  };

  /// A new step, about to be taken.
  std::int64_t begin(const std::string& list, const PlaylistStep& step);
  /// It has been taken, in the form given; what had been undone before it can't be redone any longer.
  void finish(std::int64_t id, const PlaylistStep& step);
  /// A step that is about to be undone or redone.
  void turning(std::int64_t id, bool undo);
  /// It is undone now, or done, in the form given.
  void turned(const Entry& entry, bool undone);
  /// Forgets the step.
  void drop(std::int64_t id);
  /// Forgets all lists whose name begins so, but for one.
  void forgetOthers(const std::string& beginning, const std::string& list);

  /// The step that would be undone or redone next in a list that exists. One whose undoing was interrupted
  /// can be undone again.
  std::optional<Entry> toUndo(const std::string& list);
  std::optional<Entry> toRedo(const std::string& list);
  /// The same of the collection: creations, deletions and renames of any list, the latest first.
  std::optional<Entry> toUndoOfAll();
  std::optional<Entry> toRedoOfAll();
  /// Steps that were on their way when a process ended. Those that can't be read any longer are forgotten.
  std::vector<Entry> unsettled();

 private:
  std::optional<Entry> one(const std::string& condition, const std::string& list);
  std::int64_t listId(const std::string& list, bool fresh);
  void take(std::int64_t list, const PlaylistStep& step, bool undone);
  void trim(std::int64_t list);

  database::Database& database_;
  Limits limits_;
};

}  // namespace standin
