#include "standin/playlists/PlaylistHistory.hpp"

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

constexpr const char* kColumns =
    "SELECT s.id, p.name, s.state, s.data FROM playlist_step s JOIN playlist p ON p.id = s.list ";
constexpr const char* kNextTurn = "(SELECT COALESCE(MAX(turn), 0) + 1 FROM playlist_step)";

PlaylistHistory::Entry EntryOf(const database::Statement& row) {
  return {row.integer(0), row.text(1), static_cast<PlaylistHistory::State>(row.integer(2)),
          StepOf(row.text(3))};
}

std::int64_t SizeOf(const std::string& data) { return static_cast<std::int64_t>(data.size()); }
std::int64_t NumberOf(PlaylistHistory::State state) { return static_cast<std::int64_t>(state); }

}  // namespace

std::int64_t PlaylistHistory::listId(const std::string& list, bool fresh) {
  const std::string folded = base::LowerCase(list);
  // What is left of a list that others have taken away is nothing to a new one of that name.
  if (fresh)
    database::Statement(database_, "DELETE FROM playlist WHERE folded = ? AND NOT gone").with(folded).run();
  database::Statement known(database_, "SELECT id FROM playlist WHERE folded = ? AND NOT gone");
  if (known.with(folded).step()) return known.integer(0);
  database::Statement(database_, "INSERT INTO playlist (name, folded, gone) VALUES (?, ?, 0)")
      .with(list, folded)
      .run();
  return database_.lastId();
}

std::int64_t PlaylistHistory::begin(const std::string& list, const PlaylistStep& step) {
  const std::string data = TextOf(step);
  database::Transaction whole(database_);
  const std::int64_t id = listId(list, step.kind == StepKind::kCreate);
  database::Statement(
      database_, std::string("INSERT INTO playlist_step (list, state, collection, turn, size, data) VALUES "
                             "(?, ?, ?, ") +
                     kNextTurn + ", ?, ?)")
      .with(id, NumberOf(State::kBeginning), IsOfCollection(step.kind), SizeOf(data), data)
      .run();
  const std::int64_t made = database_.lastId();
  whole.commit();
  return made;
}

// What a step means for the list's own entry.
void PlaylistHistory::take(std::int64_t list, const PlaylistStep& step, bool undone) {
  if (step.kind == StepKind::kRename) {
    const std::string& name = undone ? step.oldName : step.newName;
    const std::string folded = base::LowerCase(name);
    database::Statement(database_, "DELETE FROM playlist WHERE folded = ? AND NOT gone AND id <> ?")
        .with(folded, list)
        .run();
    database::Statement(database_, "UPDATE playlist SET name = ?, folded = ? WHERE id = ?")
        .with(name, folded, list)
        .run();
  } else if (IsOfCollection(step.kind)) {
    const bool gone = (step.kind == StepKind::kDelete) != undone;
    if (!gone) {
      database::Statement(database_,
                          "DELETE FROM playlist WHERE NOT gone AND id <> ?1 AND "
                          "folded = (SELECT folded FROM playlist WHERE id = ?1)")
          .with(list)
          .run();
    }
    database::Statement(database_, "UPDATE playlist SET gone = ? WHERE id = ?").with(gone, list).run();
  }
}

void PlaylistHistory::finish(std::int64_t id, const PlaylistStep& step) {
  const std::string data = TextOf(step);
  database::Transaction whole(database_);
  database::Statement find(database_, "SELECT list FROM playlist_step WHERE id = ?");
  if (!find.with(id).step()) return;
  const std::int64_t list = find.integer(0);
  find.with(std::int64_t{0});
  database::Statement(database_, "DELETE FROM playlist_step WHERE list = ? AND state = ?")
      .with(list, NumberOf(State::kUndone))
      .run();
  database::Statement(database_, "UPDATE playlist_step SET state = ?, size = ?, data = ? WHERE id = ?")
      .with(NumberOf(State::kDone), SizeOf(data), data, id)
      .run();
  take(list, step, false);
  trim(list);
  whole.commit();
}

void PlaylistHistory::turning(std::int64_t id, bool undo) {
  database::Statement(database_, "UPDATE playlist_step SET state = ? WHERE id = ?")
      .with(NumberOf(undo ? State::kUndoing : State::kRedoing), id)
      .run();
}

void PlaylistHistory::turned(const Entry& entry, bool undone) {
  const std::string data = TextOf(entry.step);
  database::Transaction whole(database_);
  database::Statement(
      database_, std::string("UPDATE playlist_step SET state = ?, size = ?, data = ?, turn = ") + kNextTurn +
                     " WHERE id = ?")
      .with(NumberOf(undone ? State::kUndone : State::kDone), SizeOf(data), data, entry.id)
      .run();
  database::Statement find(database_, "SELECT list FROM playlist_step WHERE id = ?");
  if (find.with(entry.id).step()) {
    const std::int64_t list = find.integer(0);
    find.with(std::int64_t{0});
    take(list, entry.step, undone);
  }
  whole.commit();
}

void PlaylistHistory::drop(std::int64_t id) {
  database::Transaction whole(database_);
  database::Statement(database_, "DELETE FROM playlist_step WHERE id = ?").with(id).run();
  database_.run("DELETE FROM playlist WHERE id NOT IN (SELECT list FROM playlist_step)");
  whole.commit();
}

void PlaylistHistory::forgetOthers(const std::string& beginning, const std::string& list) {
  database::Transaction whole(database_);
  database::Statement(database_,
                      "DELETE FROM playlist_step WHERE list IN "
                      "(SELECT id FROM playlist WHERE substr(folded, 1, length(?1)) = ?1 AND folded <> ?2)")
      .with(base::LowerCase(beginning), base::LowerCase(list))
      .run();
  database_.run("DELETE FROM playlist WHERE id NOT IN (SELECT list FROM playlist_step)");
  whole.commit();
}

std::optional<PlaylistHistory::Entry> PlaylistHistory::one(const std::string& condition,
                                                           const std::string& list) {
  database::Statement rows(database_, kColumns + condition + " LIMIT 1");
  if (list.empty() ? !rows.step() : !rows.with(base::LowerCase(list)).step()) return std::nullopt;
  return EntryOf(rows);
}

std::optional<PlaylistHistory::Entry> PlaylistHistory::toUndo(const std::string& list) {
  return one("WHERE p.folded = ? AND s.state IN (0, 3) AND (s.state = 3 OR NOT p.gone) ORDER BY s.id DESC",
             list);
}

std::optional<PlaylistHistory::Entry> PlaylistHistory::toRedo(const std::string& list) {
  return one("WHERE p.folded = ? AND NOT p.gone AND s.state = 1 ORDER BY s.id", list);
}

std::optional<PlaylistHistory::Entry> PlaylistHistory::toUndoOfAll() {
  return one(
      "WHERE s.collection AND s.state IN (0, 3) AND NOT EXISTS (SELECT 1 FROM playlist_step l WHERE l.list = "
      "s.list "
      "AND l.id > s.id AND l.state IN (0, 3)) ORDER BY s.turn DESC",
      {});
}

std::optional<PlaylistHistory::Entry> PlaylistHistory::toRedoOfAll() {
  return one(
      "WHERE s.collection AND s.state = 1 AND NOT EXISTS (SELECT 1 FROM playlist_step l WHERE l.list = "
      "s.list "
      "AND l.id < s.id AND l.state = 1) ORDER BY s.turn DESC",
      {});
}

std::vector<PlaylistHistory::Entry> PlaylistHistory::unsettled() {
  std::vector<Entry> entries;
  std::vector<std::int64_t> unreadable;
  database::Statement rows(database_, std::string(kColumns) + "WHERE s.state > 1 ORDER BY s.id");
  while (rows.step()) {
    try {
      entries.push_back(EntryOf(rows));
    } catch (const base::Failure&) {
      unreadable.push_back(rows.integer(0));
    }
  }
  for (const std::int64_t id : unreadable) drop(id);
  return entries;
}

void PlaylistHistory::trim(std::int64_t list) {
  database::Statement(database_,
                      "DELETE FROM playlist_step WHERE list = ?1 AND id NOT IN "
                      "(SELECT id FROM playlist_step WHERE list = ?1 ORDER BY id DESC LIMIT ?2)")
      .with(list, limits_.steps)
      .run();
  database::Statement(database_,
                      "DELETE FROM playlist WHERE id NOT IN (SELECT list FROM playlist_step GROUP BY list "
                      "ORDER BY MAX(turn) DESC LIMIT ?)")
      .with(limits_.lists)
      .run();
  // From the newest on, as many as there is room for.
  database::Statement(database_,
                      "DELETE FROM playlist_step WHERE id IN (SELECT id FROM (SELECT id, "
                      "SUM(size) OVER (ORDER BY turn DESC, id DESC) AS sum, "
                      "ROW_NUMBER() OVER (ORDER BY turn DESC, id DESC) AS place FROM playlist_step) "
                      "WHERE sum > ? AND place > 1)")
      .with(limits_.bytes)
      .run();
}

}  // namespace standin
