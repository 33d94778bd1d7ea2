#pragma once
#include <string>
#include <vector>

#include "standin/player/PlayerLists.hpp"

namespace standin {

enum class StepKind { kAdd, kRemove, kMove, kRename, kCreate, kDelete };

/// A place in a playlist, told by its number and by the sources on either side of it; empty at an end.
struct ListPlace {
  std::int32_t at = 0;
  std::string before;
  std::string after;

  bool operator==(const ListPlace&) const = default;
};

/// One change of a playlist, with all that it takes to undo it and to see whether it still can be undone.
struct PlaylistStep {
  StepKind kind = StepKind::kAdd;
  ListPlace from;                 ///< of a removal or move: where the items were
  ListPlace to;                   ///< of an addition or move: where they have come to
  std::vector<ListedItem> items;  ///< those added, removed or moved; all of a deleted list
  std::int32_t count = 0;         ///< the list's length before the step
  std::string oldName;            ///< of a renamed or deleted list
  std::string newName;            ///< of a renamed or created list
};

/// For storing. `StepOf` throws number 57 for a text that is none of these.
std::string TextOf(const PlaylistStep& step);
PlaylistStep StepOf(const std::string& text);
/// "moving “River”".
std::string WordsOf(const PlaylistStep& step);
/// True for a step that changes the collection of lists and not what is in one.
bool IsOfCollection(StepKind kind);

}  // namespace standin
