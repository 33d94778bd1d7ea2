// Steps that were under way when the player or this process ended: what is there tells how far they came.
#include "base/Failure.hpp"
#include "standin/playlists/Playlists.hpp"

namespace standin {

void Playlists::settle(PlayerLists& lists) {
  if (settled_) return;
  for (const PlaylistHistory::Entry& entry : history_.unsettled()) {
    const std::string words = WordsOf(entry.step);
    try {
      settle(lists, entry);
    } catch (const base::Failure& failure) {
      if (failure.number() == base::number::kHostGone) throw;
      // It keeps nobody from the other lists, and is looked at again by the next process.
      house_.log.write("Warning", "How far " + words + " has come can't be seen: " + failure.description());
    }
  }
  settled_ = true;
}

void Playlists::settle(PlayerLists& lists, const PlaylistHistory::Entry& entry) {
  const bool beginning = entry.state == PlaylistHistory::State::kBeginning;
  const bool taken = IsTaken(lists, entry.step, entry.list);
  if (beginning && taken) {
    history_.finish(entry.id, entry.step);
  } else if (beginning) {
    history_.drop(entry.id);
  } else if (!taken || entry.step.kind != StepKind::kDelete) {
    history_.turned(entry, !taken);
  }
}

}  // namespace standin
