#include "standin/rules/RuleStore.hpp"

#include <utility>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/house/EventRows.hpp"
#include "standin/rules/RuleJson.hpp"

namespace standin {
namespace {

[[noreturn]] void ThrowGone() { throw base::Failure(base::number::kFileNotFound, "The event is gone"); }

[[noreturn]] void ThrowChanged(const std::string& text) {
  throw base::Failure(base::number::kChangedMeanwhile, text);
}

/// What both have in common where they are the same: numbers and versions aside.
bool SameContent(const RuledEvent& left, const RuledEvent& right) {
  return left.name == right.name && left.group == right.group && left.rule == right.rule;
}

/// What a switch leaves behind; the rest of the rule is not its business.
RuledEvent SwitchOf(const RuledEvent& event) {
  RuledEvent bare = event;
  bare.rule = Rule();
  bare.rule.on = event.rule.on;
  return bare;
}

}  // namespace

RuleStore::RuleStore(House& house, RuleSteps::Limits limits) : house_(house), steps_(house.database, limits) {
  load();
  loadPlace();
  next_ = nextSteps();
  house_.events.onRename = [this](std::int32_t id) { renamed(id); };
}

RuleStore::~RuleStore() {
  house_.events.onRename = [](std::int32_t) {};
}

const RuledEvent* RuleStore::byId(std::int32_t id) const {
  const auto found = rules_.find(id);
  return found == rules_.end() ? nullptr : &found->second;
}

const RuledEvent& RuleStore::need(std::int32_t id) const {
  const RuledEvent* event = byId(id);
  if (event == nullptr) ThrowGone();
  return *event;
}

void RuleStore::mustBeFree(const std::string& name, std::int32_t except) const {
  const Event* other = house_.events.byName(name);
  // Of those with the same name only the first is found: an event may have its name in common with a later
  // one.
  if (other != nullptr && other->id != except)
    throw base::Failure(base::number::kKeyInUse, "Another event has the name " + InQuotes(other->name));
}

WholeEvent RuleStore::wholeOf(std::int32_t id) const { return {need(id), *house_.events.byId(id)}; }

std::int32_t RuleStore::insert(const WholeEvent& whole) {
  Event event = whole.event;
  event.id = whole.rule.id;
  event.name = whole.rule.name;
  event.group = whole.rule.group;
  house_.events.checkRoomFor(event);
  const std::int32_t id = InsertEvent(house_.database, event);
  database::Statement(house_.database,
                      "INSERT INTO event_rule (event, version, active, rule) VALUES (?, ?, ?, ?)")
      .with(id, whole.rule.version + 1, whole.rule.rule.on, TextOf(whole.rule.rule))
      .run();
  return id;
}

void RuleStore::rewrite(const RuledEvent& event, std::int64_t version) {
  RenameEvent(house_.database, event.id, event.name, event.group);
  database::Statement(house_.database,
                      "UPDATE event_rule SET version = ?, active = ?, rule = ? WHERE event = ?")
      .with(version, event.rule.on, TextOf(event.rule), event.id)
      .run();
}

const RuledEvent& RuleStore::make(const RuledEvent& event) {
  if (rules_.size() >= kMost) throw base::Failure(base::number::kOverflow, "There are too many events");
  mustBeFree(event.name, 0);
  RuledEvent made = event;
  made.id = 0;
  made.version = 0;
  database::Transaction whole(house_.database);
  made.id = insert({made, {}});
  steps_.add({.kind = RuleStep::Kind::kMake, .event = made.id, .after = WholeEvent{made, {}}});
  return *commit(whole, made.id);
}

const RuledEvent& RuleStore::change(const RuledEvent& event) {
  const RuledEvent& before = need(event.id);
  if (before.version != event.version) ThrowChanged(InQuotes(before.name) + " has been changed meanwhile");
  if (SameContent(before, event)) return before;
  if (!base::SameText(before.name, event.name)) mustBeFree(event.name, event.id);
  database::Transaction whole(house_.database);
  rewrite(event, before.version + 1);
  steps_.add({.kind = RuleStep::Kind::kChange,
              .event = event.id,
              .before = WholeEvent{before, {}},
              .after = WholeEvent{event, {}}});
  return *commit(whole, event.id);
}

const RuledEvent& RuleStore::turn(std::int32_t id, bool on) {
  const RuledEvent& before = need(id);
  if (before.rule.on == on) return before;
  RuledEvent after = SwitchOf(before);
  after.rule.on = on;
  database::Transaction whole(house_.database);
  database::Statement(house_.database,
                      "UPDATE event_rule SET version = version + 1, active = ? WHERE event = ?")
      .with(on, id)
      .run();
  steps_.add({.kind = RuleStep::Kind::kSwitch,
              .event = id,
              .before = WholeEvent{SwitchOf(before), {}},
              .after = WholeEvent{after, {}}});
  return *commit(whole, id);
}

void RuleStore::remove(std::int32_t id, std::int64_t version) {
  const RuledEvent& before = need(id);
  if (before.version != version) ThrowChanged(InQuotes(before.name) + " has been changed meanwhile");
  database::Transaction whole(house_.database);
  steps_.add({.kind = RuleStep::Kind::kDelete, .event = id, .before = wholeOf(id)});
  EraseEvent(house_.database, id);
  commit(whole, id);
}

RuleStore::Turned RuleStore::turnStep(bool undo) {
  std::optional<RuleStep> step = undo ? steps_.toUndo() : steps_.toRedo();
  if (!step) {
    throw base::Failure(base::number::kFileNotFound,
                        undo ? "There is nothing to undo" : "There is nothing to redo");
  }
  Turned turned{step->event, WordsOf(*step)};
  database::Transaction whole(house_.database);
  turnInto(*step, undo);
  steps_.turned(*step, undo);
  commit(whole, step->event);
  return turned;
}

void RuleStore::turnInto(RuleStep& step, bool undo) {
  std::optional<WholeEvent>& left = undo ? step.after : step.before;
  const std::optional<WholeEvent>& wanted = undo ? step.before : step.after;
  const RuledEvent* now = byId(step.event);
  if (left) {
    const std::string name = InQuotes(left->rule.name);
    if (now == nullptr) ThrowChanged(name + " is gone");
    const bool same = step.kind == RuleStep::Kind::kSwitch ? now->rule.on == left->rule.rule.on
                                                           : SameContent(*now, left->rule);
    if (!same) ThrowChanged(name + " has been changed since");
  } else if (house_.events.byId(step.event) != nullptr) {
    ThrowChanged(InQuotes(wanted->rule.name) + " is there already");
  }
  if (wanted && step.kind != RuleStep::Kind::kSwitch &&
      !(now != nullptr && base::SameText(now->name, wanted->rule.name))) {
    const Event* other = house_.events.byName(wanted->rule.name);
    if (other != nullptr && other->id != step.event)
      ThrowChanged("Another event has the name " + InQuotes(other->name) + " now");
  }
  if (!left) {
    insert(*wanted);
    return;
  }
  if (!wanted) {
    left = wholeOf(step.event);  // with what the plug-in has made of it meanwhile
    return EraseEvent(house_.database, step.event);
  }
  RuledEvent next = step.kind == RuleStep::Kind::kSwitch ? *now : wanted->rule;
  next.rule.on = wanted->rule.rule.on;
  rewrite(next, now->version + 1);
}

void RuleStore::skipUndo() { skip(steps_.toUndo()); }

void RuleStore::skipRedo() { skip(steps_.toRedo()); }

void RuleStore::skip(const std::optional<RuleStep>& step) {
  database::Transaction whole(house_.database);
  if (step) steps_.drop(step->id);
  NextSteps next = nextSteps();
  whole.commit();
  next_ = std::move(next);
}

RuleStore::NextSteps RuleStore::nextSteps() {
  const auto words = [](const std::optional<RuleStep>& step) {
    return step ? WordsOf(*step) : std::string();
  };
  return {words(steps_.toUndo()), words(steps_.toRedo())};
}

/// What is in memory follows what has been written. That is read before it counts: what can't be read back is
/// not done, rather than done and told as failed.
const RuledEvent* RuleStore::commit(database::Transaction& whole, std::int32_t id) {
  std::optional<Event> event = ReadEvent(house_.database, id);
  std::optional<RuledEvent> rule;
  if (event) rule = read(*event);
  NextSteps next = nextSteps();
  whole.commit();
  next_ = std::move(next);
  if (rule) {
    rules_.insert_or_assign(id, std::move(*rule));
  } else {
    rules_.erase(id);
  }
  house_.events.take(id, std::move(event));
  tell(id);
  return byId(id);
}

void RuleStore::renamed(std::int32_t id) {
  const auto found = rules_.find(id);
  if (found == rules_.end()) return;
  const Event& event = *house_.events.byId(id);
  found->second.name = base::RepairUtf8(event.name);
  found->second.group = base::RepairUtf8(event.group);
  ++found->second.version;  // as the database's trigger does
  tell(id);
}

void RuleStore::tell(std::int32_t id) {
  for (const Heard& heard : listeners_) heard(id);
}

}  // namespace standin
