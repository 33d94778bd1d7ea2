// Devices, events with their rules and their history, users and the playlists' history, on a disk whose
// operations fail one after the other.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "standin/playlists/Adding.hpp"
#include "standin/playlists/PlaylistHistory.hpp"
#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/RuleStore.hpp"
#include "standin/rules/Rules.hpp"
#include "support/faults/FailingFiles.hpp"

namespace standin {
namespace {

using support::Adding;

/// A house and what it keeps. Made anew in the same folder it is what the next start finds.
struct KeptHouse {
  explicit KeptHouse(const std::string& folder) : house(folder) {}

  House house;
  RuleStore rules{house};
  EvaluationStore evaluations{house};
  PlaylistHistory playlists{house.database};
};

/// The devices and events as the house tells of them.
std::string DevicesOf(const KeptHouse& kept) {
  std::ostringstream text;
  for (const auto& [ref, device] : kept.house.devices.all()) {
    text << ref << '|' << device.name << '|' << device.text.size() << '|' << device.value << '|'
         << device.values;
    for (const DeviceButton& button : device.buttons) text << '|' << button.caption;
    text << '\n';
  }
  for (const auto& [id, event] : kept.house.events.all()) {
    text << id << '|' << event.name << '|' << event.group << '|' << event.vcmd;
    for (const EventDevice& device : event.devices) text << '|' << device.devid;
    text << '\n';
  }
  return text.str();
}

/// The steps and evaluations that are kept.
std::string HistoryOf(KeptHouse& kept) {
  std::ostringstream text;
  text << kept.rules.toUndo() << '|' << kept.rules.toRedo() << '\n';
  for (const auto& each : kept.evaluations.page(0, 0, 200).evaluations) {
    text << each.evaluation.id << '|' << each.name << '|' << static_cast<int>(each.evaluation.outcome)
         << '\n';
  }
  for (const auto& entry : {kept.playlists.toUndo("Mine"), kept.playlists.toRedo("Mine")})
    text << (entry ? WordsOf(entry->step) : "nothing") << '\n';
  text << kept.house.users.hashOf(kGuest) << '\n';
  return text.str();
}

/// What is asked for, and whether devices, events, rules or their steps are something else afterwards. What
/// isn't seen there is in the database alone, and found in the tests of what was acknowledged.
struct Change {
  std::function<void(KeptHouse&)> make;
  bool seen = true;
};

const RuledEvent& FirstOf(const KeptHouse& kept) { return kept.rules.all().begin()->second; }

/// Each is all done, or tells that it is not.
const std::vector<Change>& Changes() {
  static const std::vector<Change> changes{
      {[](KeptHouse& kept) { kept.house.devices.create("Lamp"); }},
      {[](KeptHouse& kept) { kept.house.devices.put(1, &Device::text, std::string(6000, 'x')); }},
      {[](KeptHouse& kept) { kept.house.devices.putValue(1, 7); }},
      {[](KeptHouse& kept) {
        kept.house.devices.putValues(1,
                                     "a\2"
                                     "1");
      }},
      {[](KeptHouse& kept) { kept.house.devices.addButton(1, "i", "Press"); }},
      {[](KeptHouse& kept) { kept.house.devices.remove(2); }},
      {[](KeptHouse& kept) { kept.house.devices.removeInterface("gone"); }},
      {[](KeptHouse& kept) { kept.house.users.setHash(kGuest, kAdmitted); }, false},
      {[](KeptHouse& kept) { kept.rules.make(support::EventNamed("Good morning")); }},
      {[](KeptHouse& kept) {
        RuledEvent event = FirstOf(kept);
        event.name = "Good evening";
        kept.rules.change(event);
      }},
      {[](KeptHouse& kept) { kept.rules.turn(FirstOf(kept).id, true); }},
      {[](KeptHouse& kept) { kept.house.events.addDevice(FirstOf(kept).id, 3, 13); }},
      {[](KeptHouse& kept) { kept.rules.undo(); }},
      {[](KeptHouse& kept) { kept.rules.remove(FirstOf(kept).id, FirstOf(kept).version); }},
      {[](KeptHouse& kept) { kept.rules.undo(); }},
      {[](KeptHouse& kept) {
         kept.playlists.finish(kept.playlists.begin("Mine", Adding("Two")), Adding("Two"));
       },
       false},
      {[](KeptHouse& kept) { kept.playlists.turned(*kept.playlists.toUndo("Mine"), true); }, false},
  };
  return changes;
}

/// A house with something of everything.
void Furnish(const std::string& folder) {
  KeptHouse kept(folder);
  kept.house.devices.create("Media Player");
  kept.house.devices.create("Radio");
  kept.house.devices.addButton(2, "i", "Next");
  for (const char* name : {"Old lamp", "Old radio"})
    kept.house.devices.put(kept.house.devices.create(name).ref, &Device::interface, "gone");
  kept.rules.make(support::EventNamed("Good night"));
  Evaluation evaluation;
  evaluation.event = FirstOf(kept).id;
  evaluation.id = kept.evaluations.begin(evaluation);
  evaluation.outcome = Outcome::kDone;
  kept.evaluations.end(evaluation);
  kept.playlists.finish(kept.playlists.begin("Mine", Adding("One")), Adding("One"));
}

/// What the house tells without a look at its disk.
struct Told {
  explicit Told(const KeptHouse& kept)
      : devices(DevicesOf(kept)),
        rules(kept.rules.all()),
        undo(kept.rules.toUndo()),
        redo(kept.rules.toRedo()) {}
  bool operator==(const Told&) const = default;

  std::string devices;
  std::map<std::int32_t, RuledEvent> rules;
  std::string undo;
  std::string redo;
};

void ExpectToldIn(const KeptHouse& kept, const Told& told) {
  const Told now(kept);
  EXPECT_EQ(now.devices, told.devices);
  EXPECT_EQ(now.rules, told.rules);
  EXPECT_EQ(now.undo, told.undo);
  EXPECT_EQ(now.redo, told.redo);
}

/// Makes a change, which changes nothing if it fails, and something if it doesn't.
void Make(KeptHouse& kept, const Change& change, int number) {
  SCOPED_TRACE("change " + std::to_string(number));
  const Told before(kept);
  try {
    change.make(kept);
    EXPECT_TRUE(!change.seen || Told(kept) != before) << "told as done";
  } catch (const base::Failure&) {
    ExpectToldIn(kept, before);
  }
}

/// What a house tells is what its next start finds.
void ExpectTheSameInTheNext(std::optional<KeptHouse>& kept, const std::string& folder) {
  const Told told(*kept);
  const std::string history = HistoryOf(*kept);
  kept.reset();
  kept.emplace(folder);
  ExpectToldIn(*kept, told);
  EXPECT_EQ(HistoryOf(*kept), history);
}

TEST(HouseFaults, WhereAnyOperationFailsAChangeIsKeptOrToldAndWhatStoodStands) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    Furnish(folder);
    std::optional<KeptHouse> kept(std::in_place, folder);
    run.onTheFailingDisk([&] {
      int number = 0;
      for (const Change& change : Changes()) Make(*kept, change, ++number);
    });
    ExpectTheSameInTheNext(kept, folder);
    kept->house.devices.create("After");
    kept->rules.make(support::EventNamed("After"));
    ExpectTheSameInTheNext(kept, folder);
  });
  EXPECT_GT(failed, 60);
}

// As it runs and when it ends the house brings what was committed from the log of the database into its file.
TEST(HouseFaults, WhatWasAcknowledgedOutlastsAnEndOnAFailingDisk) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    Furnish(folder);
    std::optional<KeptHouse> kept(std::in_place, folder);
    kept->house.database.run("PRAGMA wal_autocheckpoint=8");  // pages, where a house gathers a thousand
    std::optional<Told> told;
    run.onTheFailingDisk([&] {
      int number = 0;
      for (const Change& change : Changes())
        if (number < 6) Make(*kept, change, ++number);
      told.emplace(*kept);
      kept.reset();
    });
    kept.emplace(folder);
    ExpectToldIn(*kept, *told);
    kept->house.devices.create("After");
    ExpectTheSameInTheNext(kept, folder);
  });
  EXPECT_GT(failed, 60);
}

TEST(HouseFaults, WhatAnEventHasDoneIsKeptOrTold) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    Furnish(folder);
    std::optional<KeptHouse> kept(std::in_place, folder);
    std::vector<std::int64_t> done;
    std::vector<std::int64_t> begun;
    run.onTheFailingDisk([&] {
      for (int i = 0; i < 4; ++i) {
        Evaluation evaluation;
        evaluation.event = FirstOf(*kept).id;
        try {
          evaluation.id = kept->evaluations.begin(evaluation);
          begun.push_back(evaluation.id);
          evaluation.outcome = Outcome::kDone;
          kept->evaluations.end(evaluation);
          done.push_back(evaluation.id);
        } catch (const base::Failure&) {  // told
        }
      }
    });
    kept.reset();
    kept.emplace(folder);
    std::map<std::int64_t, Outcome> found;
    for (const auto& each : kept->evaluations.page(0, 0, 200).evaluations)
      found[each.evaluation.id] = each.evaluation.outcome;
    EXPECT_EQ(found.size(), begun.size() + 1);
    for (const std::int64_t id : begun) EXPECT_TRUE(found.contains(id)) << id;
    for (const std::int64_t id : done) EXPECT_EQ(found[id], Outcome::kDone) << id;
  });
  EXPECT_GT(failed, 10);
}

TEST(HouseFaults, AStartOnAFailingDiskLosesNothing) {
  const int failed = support::WithEachFileFault([](support::FaultyRun& run) {
    const std::string folder = run.folder() + "/house";
    Furnish(folder);
    std::optional<KeptHouse> kept(std::in_place, folder);
    const Told told(*kept);
    const std::string history = HistoryOf(*kept);
    kept.reset();
    run.onTheFailingDisk([&] {
      try {
        kept.emplace(folder);
      } catch (const std::exception&) {  // the house says so and doesn't start
      }
    });
    if (!kept) kept.emplace(folder);
    ExpectToldIn(*kept, told);
    EXPECT_EQ(HistoryOf(*kept), history);
  });
  EXPECT_GT(failed, 20);
}

}  // namespace
}  // namespace standin
