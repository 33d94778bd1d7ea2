#include "standin/house/Schema.hpp"

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr int kSchemaVersion = 4;

constexpr const char* kTables = R"(
CREATE TABLE device (ref INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL, location TEXT NOT NULL,
  hc TEXT NOT NULL, dc TEXT NOT NULL, interface TEXT NOT NULL, dev_type TEXT NOT NULL, iotype INTEGER NOT NULL,
  status INTEGER NOT NULL, misc INTEGER NOT NULL, value INTEGER NOT NULL, text TEXT NOT NULL,
  changed INTEGER NOT NULL);
CREATE TABLE device_values (ref INTEGER PRIMARY KEY REFERENCES device ON DELETE CASCADE, list TEXT NOT NULL);
CREATE TABLE device_button (id INTEGER PRIMARY KEY, ref INTEGER NOT NULL REFERENCES device ON DELETE CASCADE,
  interface TEXT NOT NULL, caption TEXT NOT NULL);
CREATE INDEX device_button_ref ON device_button (ref);
CREATE TABLE event (id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL, vcmd TEXT NOT NULL,
  misc INTEGER NOT NULL, misc2 INTEGER NOT NULL, abs_time INTEGER NOT NULL, grp TEXT NOT NULL);
CREATE TABLE event_device (id INTEGER PRIMARY KEY AUTOINCREMENT,
  event INTEGER NOT NULL REFERENCES event ON DELETE CASCADE, devid INTEGER NOT NULL, func INTEGER NOT NULL);
CREATE INDEX event_device_event ON event_device (event);
CREATE TABLE user (name TEXT PRIMARY KEY COLLATE NOCASE, hash TEXT NOT NULL, guest INTEGER NOT NULL);
CREATE TABLE session (token TEXT PRIMARY KEY, user TEXT NOT NULL COLLATE NOCASE
  REFERENCES user ON DELETE CASCADE, expires INTEGER NOT NULL);
CREATE TABLE log (id INTEGER PRIMARY KEY AUTOINCREMENT, time INTEGER NOT NULL, type TEXT NOT NULL,
  text TEXT NOT NULL);
)";

/// Since version 2: what has been done to the player's playlists.
constexpr const char* kPlaylistTables = R"(
CREATE TABLE playlist (id INTEGER PRIMARY KEY, name TEXT NOT NULL, folded TEXT NOT NULL, gone INTEGER NOT NULL);
CREATE INDEX playlist_folded ON playlist (folded);
CREATE TABLE playlist_step (id INTEGER PRIMARY KEY AUTOINCREMENT,
  list INTEGER NOT NULL REFERENCES playlist ON DELETE CASCADE, state INTEGER NOT NULL,
  collection INTEGER NOT NULL, turn INTEGER NOT NULL, size INTEGER NOT NULL, data TEXT NOT NULL);
CREATE INDEX playlist_step_list ON playlist_step (list);
CREATE INDEX playlist_step_turn ON playlist_step (turn);
)";

/// Since version 3: what events do by themselves, what has been changed of that, and what came of it. A name
/// or group that is changed by another way than the rule's makes a new version of the rule too. Evaluations
/// outlive their event, which may come back.
constexpr const char* kRuleTables = R"(
CREATE TABLE event_rule (event INTEGER PRIMARY KEY REFERENCES event ON DELETE CASCADE, version INTEGER NOT NULL,
  active INTEGER NOT NULL, rule TEXT NOT NULL);
CREATE TRIGGER event_renamed AFTER UPDATE OF name, grp ON event
  BEGIN UPDATE event_rule SET version = version + 1 WHERE event = NEW.id; END;
CREATE TABLE event_step (id INTEGER PRIMARY KEY AUTOINCREMENT, event INTEGER NOT NULL, undone INTEGER NOT NULL,
  size INTEGER NOT NULL, data TEXT NOT NULL);
CREATE TABLE evaluation (id INTEGER PRIMARY KEY AUTOINCREMENT, event INTEGER NOT NULL, time INTEGER NOT NULL,
  outcome INTEGER NOT NULL, dull INTEGER NOT NULL, size INTEGER NOT NULL, data TEXT NOT NULL);
CREATE INDEX evaluation_event ON evaluation (event, dull);
CREATE INDEX evaluation_running ON evaluation (outcome) WHERE outcome = 0;
CREATE TABLE place (id INTEGER PRIMARY KEY, latitude TEXT NOT NULL, longitude TEXT NOT NULL);
)";

/// Since version 4: up to when the triggers of time have been seen to, of an event, or of all with number 0.
constexpr const char* kAlarmTables =
    "CREATE TABLE alarm_seen (event INTEGER PRIMARY KEY, moment INTEGER NOT NULL)";

}  // namespace

void PrepareSchema(database::Database& database) {
  database::Statement ask(database, "PRAGMA user_version");
  ask.step();
  const auto version = static_cast<int>(ask.integer(0));
  ask.with();
  if (version == kSchemaVersion) return;
  if (version > kSchemaVersion) {
    throw base::Failure(base::number::kDeviceIo, "The house's database was written by a newer server");
  }
  database::Transaction whole(database);
  if (version < 1) database.run(kTables);
  if (version < 2) database.run(kPlaylistTables);
  if (version < 3) database.run(kRuleTables);
  if (version < 4) database.run(kAlarmTables);
  database.run("PRAGMA user_version = " + std::to_string(kSchemaVersion));
  whole.commit();
}

}  // namespace standin
