#pragma once
#include <optional>
#include <string>
#include <utility>

#include "standin/playlists/PlaylistStep.hpp"

namespace standin {

/// Where a user wants a title to go, as his page showed the list: if the list has changed since, the title
/// and the place are found again by what stood there, as long as that leaves no doubt.
struct MoveOrder {
  std::int32_t from = 0;
  std::int32_t to = 0;
  std::string title;  ///< for messages; the mark says which it is
  std::string mark;
  std::optional<std::string>
      before;  ///< the marks of the titles on either side afterwards; nothing at an end
  std::optional<std::string> after;
};

/// Which of a group's titles: these, or all that an artist has in it, or all.
struct TitleChoice {
  bool all = false;
  std::string by{};  ///< of all; empty for anybody's
  std::vector<TitleAddress> titles{};
};

// The changes of a list, each as a step that knows how to be undone. `Plan…` reads what is there and changes
// nothing; `Take` does it; `Undo` and `Redo` first compare what is there with what the step has left behind
// and throw number 3197 (kChangedMeanwhile), without having changed anything, where somebody else's change is
// in the way.

PlaylistStep PlanMove(const PlayerList& list, const MoveOrder& order);
PlaylistStep PlanRemove(const PlayerList& list, const TitleAddress& title);
/// All that is in it.
PlaylistStep PlanClear(const PlayerList& list);
/// `to` may be beyond the end.
PlaylistStep PlanAdd(const PlayerList& list, const PlayerList& group, const TitleChoice& choice,
                     std::int32_t to);
PlaylistStep PlanRename(PlayerLists& lists, const PlayerList& list, const std::string& name);
PlaylistStep PlanCreate(PlayerLists& lists, const std::string& name);
/// A new list of that name with what is in another one.
PlaylistStep PlanCopy(PlayerLists& lists, const PlayerList& from, const std::string& name);
PlaylistStep PlanDelete(const PlayerList& list);

/// The list of that name, the queue under its own. Throws number 35601 (kElementNotFound) where there is
/// none.
PlayerList Existing(PlayerLists& lists, const std::string& name);

/// Each is one change of the player's: what fails has not been done.
void Take(PlayerLists& lists, const PlaylistStep& step, const std::string& list);
/// All but the undoing of a deletion, which takes its time; see PlaylistRestore.
void Undo(PlayerLists& lists, const PlaylistStep& step, const std::string& list);
void Redo(PlayerLists& lists, const PlaylistStep& step, const std::string& list);
/// Whether the step's effect is there, as far as that can be told after the process that took it has ended.
bool IsTaken(PlayerLists& lists, const PlaylistStep& step, const std::string& list);

/// The undoing of a deletion, some titles at a time. All of them come back, those too whose files can't be
/// found at the moment. One that was interrupted is taken up, whichever titles it has left.
class PlaylistRestore {
 public:
  /// `resumed`: a list of that name may be what an undoing that was interrupted has left.
  PlaylistRestore(PlaylistStep step, bool resumed) : step_(std::move(step)), resumed_(resumed) {}
  /// Puts back up to `most` titles; false when there are no more. Throws as `Undo`.
  bool goOn(PlayerLists& lists, std::int32_t most);
  [[nodiscard]] std::int32_t done() const { return done_; }
  [[nodiscard]] std::int32_t total() const { return static_cast<std::int32_t>(step_.items.size()); }

 private:
  PlayerList open(PlayerLists& lists);
  PlaylistStep step_;
  bool resumed_;
  std::int32_t done_ = -1;   ///< before the first look
  std::vector<bool> there_;  ///< of each title
  std::size_t next_ = 0;     ///< all titles before it are there
};

}  // namespace standin
