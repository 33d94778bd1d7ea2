// The way back of a deleted playlist.
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/playlists/Playlists.hpp"

namespace standin {
namespace {

constexpr std::int32_t kRestoredAtOnce = 1000;  // titles, before others get their turn

}  // namespace

void Playlists::restoreSome(const std::shared_ptr<Restoring>& restoring) {
  const std::string& name = restoring->entry.step.oldName;
  const auto more = std::make_shared<bool>(false);
  ask(
      [this, restoring, more, name](PlayerLists& lists, Outcome& outcome) {
        outcome.name = name;
        const bool first = restoring->restore.done() < 0;
        try {
          if (first) history_.turning(restoring->entry.id, true);
          *more = restoring->restore.goOn(lists, kRestoredAtOnce);
        } catch (const base::Failure& failure) {
          outcome.stuck = failure.number() != base::number::kHostGone;
          if (failure.number() == base::number::kHostGone) {
            settled_ = false;
          } else if (restoring->restore.done() < 0 &&
                     restoring->entry.state != PlaylistHistory::State::kUndoing) {
            history_.turned(restoring->entry, false);  // nothing has been done
          }
          throw base::Failure(failure.number(), "Undoing " + WordsOf(restoring->entry.step) +
                                                    " isn’t possible: " + failure.description());
        }
        if (*more) return;
        history_.turned(restoring->entry, true);
        forget(name);
        outcome.said = WordsOf(restoring->entry.step) + " is undone";
      },
      [this, restoring, more, name](const Outcome& outcome) {
        Outcome told = outcome;
        const bool goesOn = outcome.failure == 0 && *more;
        if (goesOn) {
          told.restored = restoring->restore.done();
          told.restoring = restoring->restore.total();
        } else {
          restoring_.erase(base::LowerCase(restoring->entry.list));
        }
        tellSteps(told, {});
        nlohmann::json event{{"name", name}, {"restored", restoring->restore.done()}};
        event["of"] = restoring->restore.total();
        if (outcome.failure != 0) event["failed"] = outcome.error;
        if (!goesOn) {
          event["over"] = true;
          // Who has asked was answered long ago.
          if (!restoring->done && outcome.failure == 0) event["said"] = outcome.said;
        }
        house_.live.tell("playlist", Dump(event));
        if (!goesOn) tellCollection();
        // The first to hear of it is who has asked; a long way back is told on the live feed.
        if (const Done done = std::exchange(restoring->done, nullptr)) done(told);
        if (goesOn) restoreSome(restoring);
      });
}

}  // namespace standin
