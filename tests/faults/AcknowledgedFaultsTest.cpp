// What is looked up in the database each time it is asked for, and the scripts' files, on a disk whose
// operations fail one after the other: the next start finds what was acknowledged, and nothing else.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "standin/house/House.hpp"
#include "standin/playlists/Adding.hpp"
#include "standin/playlists/PlaylistHistory.hpp"
#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/StoredAlarms.hpp"
#include "standin/scripts/ScriptStore.hpp"
#include "support/faults/FailingFiles.hpp"

namespace standin {
namespace {

using support::Adding;

/// Whether the house ends while the disk fails, which it does as it brings what was committed into its file.
class AcknowledgedFaults : public ::testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Ending, AcknowledgedFaults, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "OnTheFailingDisk" : "Behind"; });

/// True when it was done, false when it was told that it is not.
bool Done(const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const base::Failure&) {
    return false;
  }
}

int SessionsIn(House& house) {
  database::Statement rows(house.database, "SELECT COUNT(*) FROM session");
  return rows.step() ? static_cast<int>(rows.integer(0)) : -1;
}

TEST_P(AcknowledgedFaults, SessionsAndPasswordsAreThoseThatWereTold) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    std::optional<House> house(std::in_place, folder);
    std::map<std::string, std::string> alive;  // by token, the user
    std::string hash = kAdmitted;
    house->users.setHash(kGuest, hash);
    const std::string first = house->users.begin(kGuest);
    const std::string owner = house->users.begin(kFirstUser);
    alive = {{first, kGuest}, {owner, kFirstUser}};
    const auto begin = [&](const char* user) {
      std::string token;
      if (Done([&] { token = house->users.begin(user); })) alive[token] = user;
    };
    run.onTheFailingDisk([&] {
      begin(kGuest);
      begin(kFirstUser);
      if (Done([&] { house->users.end(first); })) alive.erase(first);
      if (Done([&] { house->users.setHash(kGuest, kBarred); })) {
        hash = kBarred;
        std::erase_if(alive, [](const auto& each) { return each.second == kGuest; });
      }
      begin(kGuest);
      if (GetParam()) house.reset();
    });
    for (const bool restarted : {false, true}) {
      if (restarted || !house) {
        house.reset();
        house.emplace(folder);
      }
      EXPECT_EQ(house->users.hashOf(kGuest), hash);
      EXPECT_EQ(SessionsIn(*house), static_cast<int>(alive.size()));
      for (const auto& [token, user] : alive) {
        const std::optional<User> found = house->users.ofSession(token);
        EXPECT_EQ(found ? found->name : "nobody", user) << (restarted ? "in the next" : "");
      }
    }
  });
  EXPECT_GT(failed, 20);
}

TEST_P(AcknowledgedFaults, APasswordComesWithItsFirstSessionOrNotAtAll) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    std::optional<House> house(std::in_place, folder);
    const std::string before = house->users.begin(kFirstUser);
    std::string token;
    run.onTheFailingDisk([&] {
      Done([&] { token = house->users.setHashAndBegin(kFirstUser, "hash"); });
      if (GetParam()) house.reset();
    });
    const bool changed = !token.empty();
    for (const bool restarted : {false, true}) {
      if (restarted || !house) {
        house.reset();
        house.emplace(folder);
      }
      EXPECT_EQ(house->users.hashOf(kFirstUser), changed ? "hash" : "");
      EXPECT_EQ(house->users.ofSession(before).has_value(), !changed);
      EXPECT_EQ(house->users.ofSession(token).has_value(), changed);
      EXPECT_EQ(SessionsIn(*house), 1);
    }
  });
  EXPECT_GT(failed, 5);
}

TEST_P(AcknowledgedFaults, StepsOfPlaylistsAreThoseThatWereTold) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    std::optional<House> house(std::in_place, folder);
    std::optional<PlaylistHistory> history(std::in_place, house->database);
    history->finish(history->begin("Mine", Adding("One")), Adding("One"));
    std::vector<std::string> done{"One"};
    std::optional<std::string> undone;
    const auto turn = [&] {
      const auto last = history->toUndo("Mine");
      if (last) history->turned(*last, true);
    };
    run.onTheFailingDisk([&] {
      for (const char* title : {"Two", "Three"}) {
        const auto take = [&] { history->finish(history->begin("Mine", Adding(title)), Adding(title)); };
        if (Done(take)) done.emplace_back(title);
      }
      if (Done(turn)) {
        undone = done.back();
        done.pop_back();
      }
      if (GetParam()) {
        history.reset();
        house.reset();
      }
    });
    const auto wordsOf = [](const std::optional<PlaylistHistory::Entry>& entry) {
      return entry ? WordsOf(entry->step) : "nothing";
    };
    const std::string undo = done.empty() ? "nothing" : WordsOf(Adding(done.back()));
    const std::string redo = undone ? WordsOf(Adding(*undone)) : "nothing";
    for (const bool restarted : {false, true}) {
      if (restarted || !house) {
        history.reset();
        house.reset();
        house.emplace(folder);
        history.emplace(house->database);
      }
      EXPECT_EQ(wordsOf(history->toUndo("Mine")), undo) << (restarted ? "in the next" : "");
      EXPECT_EQ(wordsOf(history->toRedo("Mine")), redo) << (restarted ? "in the next" : "");
    }
  });
  EXPECT_GT(failed, 20);
}

TEST(KeptFaults, TheMomentsOfAlarmsAreNeverOlderThanTheyWereNorBroken) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    std::optional<House> house(std::in_place, folder);
    std::optional<EvaluationStore> evaluations(std::in_place, *house);
    std::optional<StoredAlarms> alarms(std::in_place, *house, *evaluations);
    alarms->keep(100);
    run.onTheFailingDisk([&] {
      for (const std::int64_t moment : {200, 300}) alarms->keep(moment);
    });
    const std::optional<std::int64_t> seen = alarms->seen();
    EXPECT_TRUE(seen == 100 || seen == 200 || seen == 300) << seen.value_or(-1);
    alarms.reset();
    evaluations.reset();
    house.reset();
    house.emplace(folder);
    evaluations.emplace(*house);
    alarms.emplace(*house, *evaluations);
    EXPECT_EQ(alarms->seen(), seen);
    alarms->keep(400);
    EXPECT_EQ(alarms->seen(), 400);
  });
  EXPECT_GT(failed, 5);
}

TEST(KeptFaults, ScriptsAreThoseThatWereTold) {
  using Scripts = std::map<std::string, std::string>;
  const auto scriptsIn = [](const ScriptStore& store) {
    Scripts found;
    for (const std::string& name : store.names()) found[name] = store.read(name).value_or("unreadable");
    return found;
  };
  const int failed = support::WithEachFileFault([&](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/scripts";
    const ScriptStore store(folder);
    Scripts known = scriptsIn(store);
    run.onTheFailingDisk([&] {
      for (const char* name : {"new", "new", "other"}) {
        const std::string text(5000 + known.size(), 'x');
        if (Done([&] { store.write(name, text); })) known[name] = text;
      }
      bool removed = false;
      if (Done([&] { removed = store.remove("new"); })) {
        EXPECT_EQ(removed, known.contains("new"));
        known.erase("new");
      }
    });
    EXPECT_EQ(scriptsIn(store), known);
    EXPECT_EQ(scriptsIn(ScriptStore(folder)), known);
  });
  EXPECT_GT(failed, 10);
}

}  // namespace
}  // namespace standin
