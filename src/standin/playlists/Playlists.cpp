#include "standin/playlists/Playlists.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/playlists/PlaylistDiff.hpp"

namespace standin {
namespace {

/// The titles after the step, or after its undoing. `told` makes one of them of an item of the step.
template <class Told, class Tell>
std::vector<Told> After(std::vector<Told> titles, const PlaylistStep& step, bool undone, Tell told) {
  const auto place = [&](std::int32_t at) {
    return titles.begin() + std::clamp<std::ptrdiff_t>(at, 0, static_cast<std::ptrdiff_t>(titles.size()));
  };
  const auto takeOut = [&](std::int32_t at) {
    titles.erase(place(at), place(at + static_cast<std::int32_t>(step.items.size())));
  };
  const auto putIn = [&](std::int32_t at) {
    std::vector<Told> added;
    for (const ListedItem& item : step.items) added.push_back(told(item));
    titles.insert(place(at), added.begin(), added.end());
  };
  if (step.kind == StepKind::kRemove || step.kind == StepKind::kMove) {
    if (!undone) takeOut(step.from.at);
  }
  if ((step.kind == StepKind::kAdd || step.kind == StepKind::kMove) && undone) takeOut(step.to.at);
  if ((step.kind == StepKind::kAdd || step.kind == StepKind::kMove) && !undone) putIn(step.to.at);
  if ((step.kind == StepKind::kRemove || step.kind == StepKind::kMove) && undone) putIn(step.from.at);
  return titles;
}

/// Where the step, or its undoing, has put titles in; nowhere if it has only taken some out.
std::optional<std::int32_t> PutAt(const PlaylistStep& step, bool undone) {
  if (undone ? step.kind == StepKind::kAdd : step.kind == StepKind::kRemove) return std::nullopt;
  return undone ? step.from.at : step.to.at;
}

const std::string& NameAfter(const PlaylistStep& step, bool undone, const std::string& list) {
  if (step.kind != StepKind::kRename) return list;
  return undone ? step.oldName : step.newName;
}

/// The list is there after the step.
bool StaysAfter(const PlaylistStep& step, bool undone) {
  if (step.kind == StepKind::kCreate) return !undone;
  return step.kind != StepKind::kDelete || undone;
}

std::int64_t FirstVersion() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace

Playlists::Playlists(bus::PollLoop& loop, bus::Connection& connection, PluginKeeper& plugin, House& house,
                     PlayerLibrary& library, PluginKeeper::Address address)
    : loop_(loop),
      connection_(connection),
      plugin_(plugin),
      house_(house),
      library_(library),
      address_(std::move(address)),
      history_(house.database),
      lastVersion_(FirstVersion()),
      timer_(loop.makeTimer(kLookInterval, [this] { look(); })) {}

void Playlists::ask(Work work, Done done) {
  const auto outcome = std::make_shared<Outcome>();
  plugin_.command(
      [this, outcome, work = std::move(work)](base::Object&) {
        try {
          PlayerLists lists(connection_.proxy(address_.name, "/scriptclass"));
          settle(lists);
          work(lists, *outcome);
        } catch (...) {
          const base::Failure failure = base::CurrentFailure();
          outcome->failure = failure.number();
          const bool gone = failure.number() == base::number::kHostGone;
          outcome->error = gone ? "The plug-in has gone" : failure.description();
        }
      },
      [outcome, done = std::move(done)](const std::string& failure) {
        if (!failure.empty()) {
          outcome->failure = base::number::kHostGone;
          outcome->error = failure;
        }
        done(*outcome);
      });
}

void Playlists::tellSteps(Outcome& outcome, const std::string& list) {
  const auto words = [](const std::optional<PlaylistHistory::Entry>& entry) {
    return entry ? WordsOf(entry->step) : std::string();
  };
  try {
    outcome.undo = words(list.empty() ? history_.toUndoOfAll() : history_.toUndo(list));
    outcome.redo = words(list.empty() ? history_.toRedoOfAll() : history_.toRedo(list));
  } catch (const base::Failure& failure) {  // the list is there all the same
    house_.log.write("Warning", "The playlists' history can't be read: " + failure.description());
  }
}

Playlists::Kept* Playlists::kept(const std::string& name) {
  const auto found = std::find_if(kept_.begin(), kept_.end(),
                                  [&](const Kept& each) { return base::SameText(each.name, name); });
  if (found == kept_.end()) return nullptr;
  kept_.splice(kept_.begin(), kept_, found);
  return &kept_.front();
}

bool Playlists::watched(const std::string& name) const {
  return std::any_of(watchers_.begin(), watchers_.end(),
                     [&](const auto& each) { return base::SameText(each.second.name, name); });
}

Playlists::Kept& Playlists::keepAsItIs(const PlayerList& list) {
  // Asked for first: should somebody change the list while it is read, the number is an older one than what
  // is there, and the next look reads it anew.
  const std::int64_t revision = list.revision();
  Content content = ContentOf(list);
  const std::string name = list.name();
  takeDownOthers(name, content);
  return keep(name, std::move(content), revision);
}

Playlists::Kept& Playlists::keep(const std::string& name, Content content, std::int64_t revision) {
  Kept* known = kept(name);
  if (known == nullptr) {
    std::size_t idle = 0;
    for (auto each = kept_.begin(); each != kept_.end();)
      each = !watched(each->name) && ++idle >= kListsKept ? kept_.erase(each) : std::next(each);
    kept_.push_front({name, nullptr});
    known = &kept_.front();
  }
  known->seen = loop_.now();
  known->revision = revision;
  const Items before = std::exchange(known->items, std::move(content.items));
  forgetOldItems();
  const bool same = !before || !known->items || StepsBetween(*before, *known->items).empty();
  if (same && known->names && known->name == name && known->names->all() == content.names) return *known;
  known->name = name;
  known->names = std::make_shared<NameList>(std::move(content.names));
  known->version = ++lastVersion_;
  return *known;
}

void Playlists::forget(const std::string& name) {
  kept_.remove_if([&](const Kept& each) { return base::SameText(each.name, name); });
}

void Playlists::tellChanged(const Kept& kept) {
  house_.live.tell("playlist",
                   Dump({{"name", kept.name}, {"version", kept.version}, {"total", kept.names->size()}}));
}

void Playlists::tellCollection() {
  library_.forget("PlayList");
  house_.live.tell("playlist", Dump({{"lists", true}}));
}

void Playlists::fill(PlayerLists& lists, Outcome& outcome, const std::string& name) {
  Kept* known = kept(name);
  if (known == nullptr) {
    known = &keepAsItIs(Existing(lists, name));
  }
  outcome.name = known->name;
  outcome.names = known->names;
  outcome.version = known->version;
  tellSteps(outcome, known->name);
}

void Playlists::show(const std::string& name, bool fresh, Done done) {
  Kept* known = kept(name);
  if (known != nullptr && settled_ && !fresh && loop_.now() - known->seen < kGood) {
    Outcome outcome;
    outcome.name = known->name;
    outcome.names = known->names;
    outcome.version = known->version;
    tellSteps(outcome, known->name);
    done(outcome);
    return;
  }
  ask(
      [this, name](PlayerLists& lists, Outcome& outcome) {
        if (kept(name) != nullptr && !lists.find(name)) followMissing(lists, name);
        const PlayerList list = Existing(lists, name);
        const Kept* before = kept(name);
        const std::int64_t version = before != nullptr ? before->version : 0;
        const Kept& now = keepAsItIs(list);
        if (version != 0 && version != now.version) tellChanged(now);
        fill(lists, outcome, now.name);
      },
      std::move(done));
}

void Playlists::collection(Done done) {
  ask([this](PlayerLists&, Outcome& outcome) { tellSteps(outcome, {}); }, std::move(done));
}

/// What is kept of the list, and the pages, follow a step of this server's own.
void Playlists::follow(PlayerLists& lists, const PlaylistStep& step, bool undone, const std::string& list,
                       std::int64_t before) {
  const std::string& name = NameAfter(step, undone, list);
  if (!StaysAfter(step, undone)) {
    forget(list);
    house_.live.tell("playlist", Dump({{"name", list}, {"gone", true}}));
    tellCollection();
    return;
  }
  if (name != list) {
    if (Kept* known = kept(list)) known->name = name;
    house_.live.tell("playlist", Dump({{"name", list}, {"renamed", name}}));
  }
  if (IsOfCollection(step.kind)) {
    tellCollection();
    return;
  }
  if (kept(list) == nullptr) return;
  const std::optional<PlayerList> found = lists.find(list);
  if (!found) return;
  const std::int64_t now = found->revision();
  Kept* known = kept(list);  // looked for again: calls may let in whoever forgets it
  if (known == nullptr) return;
  // What was kept was what the player had, and nobody has come in between.
  const bool alone =
      known->revision == before && now == before + static_cast<std::int64_t>(step.items.size());
  if (!alone) {
    known->items.reset();  // what is whose can't be told
    return tellChanged(keepAsItIs(*found));
  }
  Content content{After(known->names->all(), step, undone, [](const ListedItem& item) { return item.name; })};
  if (known->items)
    content.items = std::make_shared<const std::vector<ListedItem>>(
        After(*known->items, step, undone, [](const ListedItem& item) { return item; }));
  known->items.reset();
  if (const auto at = PutAt(step, undone)) {  // a title may be called otherwise than when it was taken out
    std::vector<std::string> put = found->names(*at, static_cast<std::int32_t>(step.items.size()));
    if (*at + put.size() > content.names.size()) return tellChanged(keepAsItIs(*found));
    std::move(put.begin(), put.end(), content.names.begin() + *at);
  }
  tellChanged(keep(list, std::move(content), now));
}

void Playlists::change(const std::string& name, Plan plan, Done done) {
  ask(
      [this, name, plan = std::move(plan)](PlayerLists& lists, Outcome& outcome) {
        const PlayerList list = Existing(lists, name);
        const std::string known = list.name();
        if (restoring_.contains(base::LowerCase(known)))
          throw base::Failure(base::number::kChangedMeanwhile, "The playlist is still on its way back");
        catchUp(list, known);
        const std::int64_t before = list.revision();
        const PlaylistStep step = plan(lists, list);
        if (IsQueue(known)) history_.forgetOthers(QueueName(), known);
        const std::int64_t id = history_.begin(known, step);
        try {
          Take(lists, step, known);
        } catch (...) {
          // Whether a call that was never answered was carried out is seen when the player is back.
          if (base::CurrentFailure().number() == base::number::kHostGone) {
            settled_ = false;
            forget(known);
          } else {
            history_.drop(id);
          }
          throw;
        }
        history_.finish(id, step);
        follow(lists, step, false, known, before);
        const std::string& now = NameAfter(step, false, known);
        if (step.kind == StepKind::kDelete) {
          outcome.name = known;
          tellSteps(outcome, {});
        } else {
          fill(lists, outcome, now);
        }
        outcome.said = WordsOf(step);
      },
      std::move(done));
}

void Playlists::create(const std::string& name, const std::string& from, Done done) {
  ask(
      [this, name, from](PlayerLists& lists, Outcome& outcome) {
        const PlaylistStep step =
            from.empty() ? PlanCreate(lists, name) : PlanCopy(lists, Existing(lists, from), name);
        forget(name);  // one that others have taken away
        const std::int64_t id = history_.begin(name, step);
        try {
          Take(lists, step, name);
        } catch (const base::Failure& failure) {
          if (failure.number() == base::number::kHostGone) {
            settled_ = false;
          } else {
            history_.drop(id);
          }
          throw;
        }
        history_.finish(id, step);
        follow(lists, step, false, name, 0);
        fill(lists, outcome, name);
        outcome.said = WordsOf(step);
      },
      std::move(done));
}

void Playlists::turnEntry(PlayerLists& lists, Outcome& outcome, const PlaylistHistory::Entry& entry,
                          bool undo) {
  const bool resumed = entry.state == PlaylistHistory::State::kUndoing;
  history_.turning(entry.id, undo);
  std::int64_t before = 0;
  try {
    const std::optional<PlayerList> list =
        IsOfCollection(entry.step.kind) ? std::nullopt : lists.find(entry.list);
    if (list) before = list->revision();
    if (undo) {
      Undo(lists, entry.step, entry.list);
    } else {
      Redo(lists, entry.step, entry.list);
    }
  } catch (...) {
    const base::Failure failure = base::CurrentFailure();
    outcome.stuck = failure.number() != base::number::kHostGone;
    if (!outcome.stuck) {
      settled_ = false;
      forget(entry.list);
    } else if (!resumed) {
      history_.turned(entry, !undo);
    }
    throw base::Failure(failure.number(), (undo ? "Undoing " : "Redoing ") + WordsOf(entry.step) +
                                              " isn’t possible: " + failure.description());
  }
  history_.turned(entry, undo);
  follow(lists, entry.step, undo, entry.list, before);
}

void Playlists::turn(const std::string& name, Turn turn, Done done) {
  const bool undo = turn == Turn::kUndo || turn == Turn::kSkipUndo;
  const auto restoring = std::make_shared<std::shared_ptr<Restoring>>();
  ask(
      [this, name, turn, undo, restoring](PlayerLists& lists, Outcome& outcome) {
        const auto next = [&] {
          if (name.empty()) return undo ? history_.toUndoOfAll() : history_.toRedoOfAll();
          return undo ? history_.toUndo(name) : history_.toRedo(name);
        };
        const std::optional<PlaylistHistory::Entry> entry = next();
        outcome.name = name;
        if (!entry) throw base::Failure(base::number::kElementNotFound, "There is nothing to take back");
        if (restoring_.contains(base::LowerCase(entry->list)))
          throw base::Failure(base::number::kChangedMeanwhile, "The playlist is still on its way back");
        if (turn == Turn::kSkipUndo || turn == Turn::kSkipRedo) {
          history_.drop(entry->id);
          outcome.said = WordsOf(entry->step) + " is forgotten";
        } else if (undo && entry->step.kind == StepKind::kDelete) {
          const bool resumed = entry->state == PlaylistHistory::State::kUndoing;
          *restoring =
              std::make_shared<Restoring>(Restoring{*entry, PlaylistRestore(entry->step, resumed), {}});
          restoring_.insert(base::LowerCase(entry->list));
          return;
        } else {
          turnEntry(lists, outcome, *entry, undo);
          outcome.said = WordsOf(entry->step) + (undo ? " is undone" : " is done again");
        }
        if (name.empty()) {
          outcome.name = StaysAfter(entry->step, undo) ? NameAfter(entry->step, undo, entry->list) : "";
          tellSteps(outcome, {});
        } else if (StaysAfter(entry->step, undo)) {
          fill(lists, outcome, NameAfter(entry->step, undo, name));
        }
      },
      [this, name, restoring, done = std::move(done)](const Outcome& outcome) {
        if (*restoring) {
          (*restoring)->done = done;
          restoreSome(*restoring);
          return;
        }
        if (!outcome.stuck) return done(outcome);
        Outcome told = outcome;
        tellSteps(told, name);
        done(told);
      });
}

}  // namespace standin
