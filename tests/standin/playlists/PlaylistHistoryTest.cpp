// What the house remembers of the changes to playlists.
#include <gtest/gtest.h>

#include "base/Failure.hpp"
#include "database/Database.hpp"
#include "standin/house/Schema.hpp"
#include "standin/playlists/Adding.hpp"
#include "standin/playlists/PlaylistHistory.hpp"
#include "support/TempFolder.hpp"

namespace {

using database::Database;
using database::Statement;
using standin::PlaylistHistory;
using standin::PlaylistStep;
using standin::StepKind;
using support::Adding;

PlaylistStep Naming(StepKind kind, const std::string& oldName, const std::string& newName) {
  PlaylistStep step;
  step.kind = kind;
  step.oldName = oldName;
  step.newName = newName;
  return step;
}

class History : public testing::Test {
 protected:
  static Database& prepared(Database& database) {
    standin::PrepareSchema(database);
    return database;
  }
  void take(const std::string& list, const PlaylistStep& step) {
    history.finish(history.begin(list, step), step);
  }
  std::string undo(const std::string& list) {
    const auto entry = history.toUndo(list);
    return entry ? WordsOf(entry->step) : "";
  }
  std::string redo(const std::string& list) {
    const auto entry = history.toRedo(list);
    return entry ? WordsOf(entry->step) : "";
  }
  std::int64_t count(const std::string& table) {
    Statement rows(database, "SELECT COUNT(*) FROM " + table);
    rows.step();
    return rows.integer(0);
  }

  support::TempFolder folder;
  Database database{folder.path() / "house.db", "The house"};
  PlaylistHistory history{prepared(database), {.steps = 5, .lists = 3, .bytes = 4000}};
};

}  // namespace

TEST_F(History, AStepIsStoredWhole) {
  PlaylistStep step = Adding("“Quotes”, \"quotes\" and\na line");
  step.from = {3, "a", ""};
  step.items.push_back({"", "bytes \xC3\xA9"});
  EXPECT_EQ(TextOf(standin::StepOf(TextOf(step))), TextOf(step));
  EXPECT_EQ(standin::StepOf(TextOf(step)).items, step.items);
  EXPECT_EQ(standin::StepOf(TextOf(step)).from, step.from);
  EXPECT_THROW(standin::StepOf("{}"), base::Failure);
}

TEST_F(History, TheLastStepIsUndoneFirstAndRedoneLast) {
  take("Mine", Adding("One"));
  take("Mine", Adding("Two"));
  EXPECT_EQ(undo("mine"), "adding “Two”");
  history.turned(*history.toUndo("Mine"), true);
  history.turned(*history.toUndo("Mine"), true);
  EXPECT_EQ(undo("Mine"), "");
  EXPECT_EQ(redo("Mine"), "adding “One”");
  history.turned(*history.toRedo("Mine"), false);
  EXPECT_EQ(redo("Mine"), "adding “Two”");
  EXPECT_EQ(undo("Mine"), "adding “One”");
}

TEST_F(History, ANewStepEndsWhatCouldBeRedone) {
  take("Mine", Adding("One"));
  history.turned(*history.toUndo("Mine"), true);
  const auto id = history.begin("Mine", Adding("Two"));
  EXPECT_EQ(redo("Mine"), "adding “One”");  // the step may still fail
  history.finish(id, Adding("Two"));
  EXPECT_EQ(redo("Mine"), "");
}

TEST_F(History, EachListHasItsOwn) {
  take("Mine", Adding("One"));
  take("Yours", Adding("Two"));
  EXPECT_EQ(undo("Mine"), "adding “One”");
  EXPECT_EQ(undo("Yours"), "adding “Two”");
  EXPECT_EQ(undo("Nobody’s"), "");
}

TEST_F(History, FollowsARenamedListAndItsUndoing) {
  take("Mine", Adding("One"));
  take("Mine", Naming(StepKind::kRename, "Mine", "Ours"));
  EXPECT_EQ(undo("Mine"), "");
  EXPECT_EQ(undo("Ours"), "renaming “Mine” to “Ours”");
  history.turned(*history.toUndo("Ours"), true);
  EXPECT_EQ(undo("Mine"), "adding “One”");
  EXPECT_EQ(redo("Mine"), "renaming “Mine” to “Ours”");
}

TEST_F(History, KeepsADeletedListApartFromANewOneOfItsName) {
  take("Mine", Adding("One"));
  take("Mine", Naming(StepKind::kDelete, "Mine", ""));
  EXPECT_EQ(undo("Mine"), "");
  take("Mine", Naming(StepKind::kCreate, "", "Mine"));
  EXPECT_EQ(undo("Mine"), "creating “Mine”");
  EXPECT_EQ(WordsOf(history.toUndoOfAll()->step), "creating “Mine”");
  history.turned(*history.toUndoOfAll(), true);
  EXPECT_EQ(WordsOf(history.toUndoOfAll()->step), "deleting “Mine”");
  EXPECT_EQ(WordsOf(history.toRedoOfAll()->step), "creating “Mine”");
  history.turned(*history.toUndoOfAll(), true);
  EXPECT_EQ(undo("Mine"), "adding “One”");
}

TEST_F(History, IsOfBoundedLength) {
  for (int i = 0; i < 20; ++i) take("Mine", Adding(std::to_string(i)));
  EXPECT_EQ(count("playlist_step"), 5);
  EXPECT_EQ(undo("Mine"), "adding “19”");
  for (int i = 0; i < 10; ++i) take("List " + std::to_string(i), Adding("One"));
  EXPECT_EQ(count("playlist"), 3);
  EXPECT_EQ(undo("List 9"), "adding “One”");
  EXPECT_EQ(undo("Mine"), "");
  const PlaylistStep large = Adding(std::string(1500, 'x'));
  for (int i = 0; i < 4; ++i) take("Large", large);
  EXPECT_EQ(count("playlist_step"), 1);  // each takes more than half of the room
  PlaylistStep huge = Adding(std::string(9000, 'x'));
  take("Large", huge);
  EXPECT_EQ(history.toUndo("Large")->step.items, huge.items);
}

TEST_F(History, AStepUnderWayIsKnownAfterAKill) {
  take("Mine", Adding("One"));
  history.begin("Mine", Adding("Two"));
  history.turning(history.toUndo("Mine")->id, true);
  PlaylistHistory later(database);
  const auto entries = later.unsettled();
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].state, PlaylistHistory::State::kUndoing);
  EXPECT_EQ(entries[1].state, PlaylistHistory::State::kBeginning);
  later.drop(entries[1].id);
  later.turned(entries[0], false);
  EXPECT_TRUE(later.unsettled().empty());
  EXPECT_EQ(undo("Mine"), "adding “One”");
}

TEST_F(History, AStepUnderWayThatCannotBeReadHidesNoOther) {
  history.begin("Mine", Adding("One"));
  database.run("UPDATE playlist_step SET data = '{}'");
  history.begin("Mine", Adding("Two"));
  const auto entries = history.unsettled();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(WordsOf(entries[0].step), "adding “Two”");
  EXPECT_EQ(count("playlist_step"), 1);
}

TEST_F(History, AStepThatHasComeHalfWayIsKeptAsFarAsItCame) {
  PlaylistStep step = Adding("One");
  step.items.push_back({"Two", "/music/Two"});
  take("Mine", step);
  auto entry = *history.toUndo("Mine");
  history.turning(entry.id, true);
  entry.step.items.resize(1);
  history.turned(entry, false);
  EXPECT_EQ(undo("Mine"), "adding “One”");
}

TEST(Schema, AHouseOfTheFirstVersionIsTakenOver) {
  const support::TempFolder folder;
  {
    Database first(folder.path() / "house.db", "The house");
    standin::PrepareSchema(first);
    for (const char* later :
         {"playlist_step", "playlist", "event_rule", "event_step", "evaluation", "place", "alarm_seen"})
      first.run("DROP TABLE " + std::string(later));
    first.run("DROP TRIGGER event_renamed");
    first.run("INSERT INTO log (time, type, text) VALUES (1, 'Info', 'kept')");
    first.run("PRAGMA user_version = 1");
  }
  Database now(folder.path() / "house.db", "The house");
  standin::PrepareSchema(now);
  PlaylistHistory history(now);
  history.begin("Mine", Adding("One"));
  Statement rows(now, "SELECT text FROM log");
  ASSERT_TRUE(rows.step());
  EXPECT_EQ(rows.text(0), "kept");
}
