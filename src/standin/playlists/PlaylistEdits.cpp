#include "standin/playlists/PlaylistEdits.hpp"

#include <algorithm>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

using base::Failure;

/// One call puts them in, and the player does nothing else meanwhile: for less than a second.
constexpr std::size_t kMostAdded = 10'000;
/// Each is looked for in the group.
constexpr std::size_t kMostChosen = 500;

[[noreturn]] void Collided(const std::string& why) {
  throw Failure(base::number::kChangedMeanwhile, why + ". Nothing was changed");
}

std::string Quoted(const std::string& name) { return "“" + name + "”"; }

/// The list as it would be without the title at one place.
class Reduced {
 public:
  Reduced(const PlayerList& list, std::int32_t without)
      : list_(list), without_(without), count_(list.count() - 1) {}
  [[nodiscard]] std::int32_t count() const { return count_; }
  [[nodiscard]] std::string sourceAt(std::int32_t at) const {
    return list_.sourceAt(at < without_ ? at : at + 1);
  }

 private:
  const PlayerList& list_;
  std::int32_t without_;
  std::int32_t count_;
};

/// `List` has count() and sourceAt().
template <class List>
std::string SourceOrNone(const List& list, std::int32_t at, std::int32_t count) {
  return at < 0 || at >= count ? std::string() : list.sourceAt(at);
}

template <class List>
ListPlace PlaceIn(const List& list, std::int32_t at) {
  const std::int32_t count = list.count();
  return {at, SourceOrNone(list, at - 1, count), SourceOrNone(list, at, count)};
}

/// Something put there would have the same neighbour as before, on one side at least.
template <class List>
bool Fits(const List& list, const ListPlace& place) {
  const std::int32_t count = list.count();
  if (place.at > count) return false;
  return SourceOrNone(list, place.at - 1, count) == place.before ||
         SourceOrNone(list, place.at, count) == place.after;
}

std::vector<std::string> MarksOf(const PlayerList& list, std::int32_t from, std::int32_t count) {
  std::vector<std::string> marks;
  for (const Title& title : list.titles(from, count)) marks.push_back(MarkOf(title));
  return marks;
}

std::size_t OnlyPlaceOf(const std::vector<std::string>& marks, const std::string& mark,
                        const std::string& title) {
  const auto found = std::find(marks.begin(), marks.end(), mark);
  if (found == marks.end()) Collided(Quoted(title) + " is no longer in the list");
  if (std::find(found + 1, marks.end(), mark) != marks.end())
    Collided("The list has changed meanwhile, and there are several " + Quoted(title));
  return static_cast<std::size_t>(found - marks.begin());
}

bool IsAt(const PlayerList& list, std::int32_t at, const std::string& mark) {
  return at >= 0 && MarksOf(list, at, 1) == std::vector{mark};
}

/// The place between the titles that the user has seen on either side; `marks` are without the title itself.
std::size_t TargetNow(const std::vector<std::string>& marks, const MoveOrder& order) {
  const auto before = [&](std::size_t at) { return at == 0 ? !order.before : marks[at - 1] == order.before; };
  const auto after = [&](std::size_t at) {
    return at == marks.size() ? !order.after : marks[at] == order.after;
  };
  std::vector<std::size_t> both;
  std::vector<std::size_t> one;
  for (std::size_t at = 0; at <= marks.size(); ++at) {
    const int sides = (before(at) ? 1 : 0) + (after(at) ? 1 : 0);
    if (sides == 2) both.push_back(at);
    if (sides == 1) one.push_back(at);
  }
  const std::vector<std::size_t>& known = both.empty() ? one : both;
  const auto wanted = static_cast<std::size_t>(std::max(order.to, 0));
  if (std::find(known.begin(), known.end(), wanted) != known.end()) return wanted;
  if (known.size() == 1) return known.front();
  Collided("The list has changed meanwhile, and " + Quoted(order.title) + " has no clear place in it");
}

std::vector<std::string> SourcesOf(const PlayerList& list, std::int32_t from, std::int32_t count) {
  std::vector<std::string> sources;
  for (Title& title : list.titles(from, count)) sources.push_back(std::move(title.source));
  return sources;
}

void TakeOut(PlayerList list, const ListPlace& place, const std::vector<ListedItem>& items) {
  const std::vector<std::string> there = SourcesOf(list, place.at, static_cast<std::int32_t>(items.size()));
  std::vector<std::int32_t> places;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i >= there.size() || there[i] != items[i].source)
      Collided(Quoted(items[i].name) + " is no longer where it was put");
    places.push_back(place.at + static_cast<std::int32_t>(i));
  }
  list.removeAll(places);
}

std::vector<ListedItem> AllOf(const PlayerList& list) {
  const std::int32_t count = list.count();
  std::vector<ListedItem> items;
  for (const Title& title : list.titles(0, count)) items.emplace_back(title);
  if (static_cast<std::int32_t>(items.size()) != count) Collided("The list has changed meanwhile");
  return items;
}

void PutBack(PlayerList list, const ListPlace& place, const std::vector<ListedItem>& items) {
  if (!Fits(list, place)) Collided("The list has changed since around place " + std::to_string(place.at + 1));
  list.insert(place.at, items);
}

void MoveBack(PlayerList list, const ListedItem& item, std::int32_t from, const ListPlace& to) {
  if (from >= list.count() || list.sourceAt(from) != item.source)
    Collided(Quoted(item.name) + " is no longer where it was moved to");
  if (!Fits(Reduced(list, from), to))
    Collided("The list has changed since around place " + std::to_string(to.at + 1));
  list.move(from, to.at);
}

void RenameTo(PlayerLists& lists, const std::string& from, const std::string& to) {
  std::optional<PlayerList> list = lists.find(from);
  if (!list || list->name() != from) Collided("There is no playlist " + Quoted(from) + " any longer");
  if (!base::SameText(from, to) && lists.find(to)) Collided("There is another playlist named " + Quoted(to));
  list->rename(to);
}

/// The list's titles are those of the step.
bool HoldsStill(const PlayerList& list, const PlaylistStep& step) {
  const std::vector<std::string> sources = SourcesOf(list, 0, list.count());
  return std::equal(step.items.begin(), step.items.end(), sources.begin(), sources.end(),
                    [](const ListedItem& item, const std::string& source) { return item.source == source; });
}

void MayBeNamed(const PlayerList& list) {
  if (IsQueue(list.name())) throw Failure(base::number::kInvalidArgument, "The queue is no playlist");
}

void Make(PlayerLists& lists, const PlaylistStep& step) {
  PlayerList made = lists.make(step.newName);
  if (!step.items.empty()) made.insert(0, step.items);
}

void RemoveAsItWas(PlayerLists& lists, const PlaylistStep& step) {
  const PlayerList list = Existing(lists, step.oldName);
  if (!HoldsStill(list, step)) Collided(Quoted(step.oldName) + " holds other titles now");
  lists.remove(list);
}

}  // namespace

PlayerList Existing(PlayerLists& lists, const std::string& name) {
  std::optional<PlayerList> list = lists.find(name);
  if (!list && IsQueue(name))
    throw Failure(base::number::kElementNotFound, "Something else has been chosen to be played since");
  if (!list) throw Failure(base::number::kElementNotFound, "There is no playlist " + Quoted(name));
  return *list;
}

PlaylistStep PlanMove(const PlayerList& list, const MoveOrder& order) {
  PlaylistStep step;
  step.kind = StepKind::kMove;
  step.count = list.count();
  std::int32_t from = order.from;
  std::int32_t to = order.to;
  const auto isAround = [&](std::int32_t at, const std::optional<std::string>& mark) {
    if (at < 0 || at >= step.count - 1) return !mark;  // without the title itself
    return mark && IsAt(list, at < from ? at : at + 1, *mark);
  };
  const bool asSeen = from >= 0 && from < step.count && to >= 0 && to < step.count &&
                      IsAt(list, from, order.mark) && isAround(to - 1, order.before) &&
                      isAround(to, order.after);
  if (!asSeen) {
    std::vector<std::string> marks = MarksOf(list, 0, step.count);
    const auto seen = static_cast<std::size_t>(std::max(from, 0));
    const std::size_t found =
        seen < marks.size() && marks[seen] == order.mark ? seen : OnlyPlaceOf(marks, order.mark, order.title);
    marks.erase(marks.begin() + static_cast<std::ptrdiff_t>(found));
    from = static_cast<std::int32_t>(found);
    to = static_cast<std::int32_t>(TargetNow(marks, order));
  }
  step.items = {list.at(from)};
  const Reduced reduced(list, from);
  step.from = PlaceIn(reduced, from);
  step.to = PlaceIn(reduced, to);
  return step;
}

PlaylistStep PlanRemove(const PlayerList& list, const TitleAddress& title) {
  PlaylistStep step;
  step.kind = StepKind::kRemove;
  step.count = list.count();
  const std::int32_t from =
      IsAt(list, title.at, title.mark)
          ? title.at
          : static_cast<std::int32_t>(OnlyPlaceOf(MarksOf(list, 0, step.count), title.mark, title.name));
  step.items = {list.at(from)};
  step.from = PlaceIn(Reduced(list, from), from);
  return step;
}

PlaylistStep PlanClear(const PlayerList& list) {
  PlaylistStep step;
  step.kind = StepKind::kRemove;
  step.items = AllOf(list);
  step.count = static_cast<std::int32_t>(step.items.size());
  if (step.items.empty()) throw Failure(base::number::kInvalidArgument, "There is nothing to take out");
  return step;
}

PlaylistStep PlanAdd(const PlayerList& list, const PlayerList& group, const TitleChoice& choice,
                     std::int32_t to) {
  PlaylistStep step;
  step.kind = StepKind::kAdd;
  step.count = list.count();
  const std::size_t most = choice.all ? kMostAdded : kMostChosen;
  const auto mayBe = [&](std::size_t wanted) {
    if (wanted > most)
      throw Failure(base::number::kInvalidArgument,
                    "At most " + std::to_string(most) + " titles can be added at once");
    if (wanted == 0) throw Failure(base::number::kInvalidArgument, "There is nothing to add");
  };
  if (choice.all) {
    for (const Title& title : group.titles(0, group.count()))
      if (choice.by.empty() || IsBy(title, choice.by)) step.items.emplace_back(title);
    mayBe(step.items.size());
  } else {
    mayBe(choice.titles.size());
    for (const TitleAddress& one : choice.titles) step.items.push_back(group.at(group.placeOf(one)));
  }
  step.to = PlaceIn(list, std::clamp(to, 0, step.count));
  return step;
}

PlaylistStep PlanRename(PlayerLists& lists, const PlayerList& list, const std::string& name) {
  MayBeNamed(list);
  PlaylistStep step;
  step.kind = StepKind::kRename;
  step.oldName = list.name();
  step.newName = name;
  if (!base::SameText(step.oldName, name) && lists.find(name))
    throw Failure(base::number::kNameInUse, "There is already a playlist named " + Quoted(name));
  return step;
}

PlaylistStep PlanCreate(PlayerLists& lists, const std::string& name) {
  PlaylistStep step;
  step.kind = StepKind::kCreate;
  step.newName = name;
  if (lists.find(name))
    throw Failure(base::number::kNameInUse, "There is already a playlist named " + Quoted(name));
  return step;
}

PlaylistStep PlanCopy(PlayerLists& lists, const PlayerList& from, const std::string& name) {
  PlaylistStep step = PlanCreate(lists, name);
  step.items = AllOf(from);
  if (step.items.size() > kMostAdded)
    throw Failure(base::number::kInvalidArgument,
                  "At most " + std::to_string(kMostAdded) + " titles can be saved at once");
  return step;
}

PlaylistStep PlanDelete(const PlayerList& list) {
  MayBeNamed(list);
  PlaylistStep step;
  step.kind = StepKind::kDelete;
  step.oldName = list.name();
  step.items = AllOf(list);
  step.count = static_cast<std::int32_t>(step.items.size());
  return step;
}

void Take(PlayerLists& lists, const PlaylistStep& step, const std::string& list) {
  switch (step.kind) {
    case StepKind::kAdd: Existing(lists, list).insert(step.to.at, step.items); return;
    case StepKind::kRemove: TakeOut(Existing(lists, list), step.from, step.items); return;
    case StepKind::kMove: Existing(lists, list).move(step.from.at, step.to.at); return;
    case StepKind::kRename: Existing(lists, list).rename(step.newName); return;
    case StepKind::kCreate: Make(lists, step); return;
    case StepKind::kDelete: lists.remove(Existing(lists, list)); return;
  }
}

void Undo(PlayerLists& lists, const PlaylistStep& step, const std::string& list) {
  switch (step.kind) {
    case StepKind::kAdd: TakeOut(Existing(lists, list), step.to, step.items); return;
    case StepKind::kRemove: PutBack(Existing(lists, list), step.from, step.items); return;
    case StepKind::kMove: MoveBack(Existing(lists, list), step.items.front(), step.to.at, step.from); return;
    case StepKind::kRename: RenameTo(lists, step.newName, step.oldName); return;
    case StepKind::kCreate: {
      const PlayerList made = Existing(lists, step.newName);
      if (made.count() > 0 && !HoldsStill(made, step))
        Collided(Quoted(step.newName) +
                 (step.items.empty() ? " holds titles now" : " holds other titles now"));
      lists.remove(made);
      return;
    }
    case StepKind::kDelete: {
      PlaylistRestore restore(step, false);
      while (restore.goOn(lists, restore.total())) {
      }
      return;
    }
  }
}

void Redo(PlayerLists& lists, const PlaylistStep& step, const std::string& list) {
  switch (step.kind) {
    case StepKind::kAdd: PutBack(Existing(lists, list), step.to, step.items); return;
    case StepKind::kRemove: TakeOut(Existing(lists, list), step.from, step.items); return;
    case StepKind::kMove: MoveBack(Existing(lists, list), step.items.front(), step.from.at, step.to); return;
    case StepKind::kRename: RenameTo(lists, step.oldName, step.newName); return;
    case StepKind::kCreate:
      if (lists.find(step.newName)) Collided("There is another playlist named " + Quoted(step.newName));
      Make(lists, step);
      return;
    case StepKind::kDelete: RemoveAsItWas(lists, step); return;
  }
}

bool IsTaken(PlayerLists& lists, const PlaylistStep& step, const std::string& list) {
  if (step.kind == StepKind::kRename) {
    const std::optional<PlayerList> found = lists.find(step.newName);
    return found && found->name() == step.newName;
  }
  if (step.kind == StepKind::kCreate) return lists.find(step.newName).has_value();
  const std::optional<PlayerList> found = lists.find(list);
  if (step.kind == StepKind::kDelete)
    return !found || found->count() < static_cast<std::int32_t>(step.items.size());
  if (!found) return false;
  const std::int32_t count = found->count();
  if (step.kind == StepKind::kRemove)
    return count == step.count - static_cast<std::int32_t>(step.items.size());
  if (step.kind == StepKind::kAdd) {
    const auto added = static_cast<std::int32_t>(step.items.size());
    const std::vector<std::string> there = SourcesOf(*found, step.to.at, added);
    return count == step.count + added &&
           std::equal(
               there.begin(), there.end(), step.items.begin(), step.items.end(),
               [](const std::string& source, const ListedItem& item) { return source == item.source; });
  }
  return step.to.at < count && found->sourceAt(step.to.at) == step.items.front().source &&
         PlaceIn(Reduced(*found, step.to.at), step.to.at) == step.to;
}

PlayerList PlaylistRestore::open(PlayerLists& lists) {
  std::optional<PlayerList> list = lists.find(step_.oldName);
  if (done_ >= 0) {
    if (!list || list->count() != done_) Collided("Somebody else has changed " + Quoted(step_.oldName));
    return *list;
  }
  there_.assign(step_.items.size(), false);
  if (!list) {
    PlayerList made = lists.make(step_.oldName);
    done_ = 0;
    return made;
  }
  // What an interrupted return has left are some of the titles in their order.
  std::size_t at = 0;
  const std::vector<std::string> sources =
      resumed_ ? SourcesOf(*list, 0, list->count()) : std::vector<std::string>();
  for (std::size_t i = 0; i < step_.items.size() && at < sources.size(); ++i) {
    there_[i] = sources[at] == step_.items[i].source;
    if (there_[i]) ++at;
  }
  if (!resumed_ || at != sources.size()) Collided("There is another playlist named " + Quoted(step_.oldName));
  done_ = static_cast<std::int32_t>(at);
  return *list;
}

bool PlaylistRestore::goOn(PlayerLists& lists, std::int32_t most) {
  PlayerList list = open(lists);
  while (most > 0 && next_ < step_.items.size()) {
    std::vector<ListedItem> missing;
    for (std::size_t i = next_; i < step_.items.size() && !there_[i] && most > 0; ++i, --most)
      missing.push_back(step_.items[i]);
    // All before it are there, and so its place in the list is that in the step.
    if (!missing.empty()) list.insert(static_cast<std::int32_t>(next_), missing);
    done_ += static_cast<std::int32_t>(missing.size());
    next_ += std::max<std::size_t>(missing.size(), 1);
  }
  return next_ < step_.items.size();
}

}  // namespace standin
