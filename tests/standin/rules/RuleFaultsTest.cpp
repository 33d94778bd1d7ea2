// Rules and their history when the power plug is pulled, and on a disk without room.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <optional>
#include <set>

#include "base/Failure.hpp"
#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/RuleStore.hpp"
#include "standin/rules/Rules.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/InChild.hpp"
#include "support/faults/KilledWhile.hpp"
#include "support/faults/SmallDisk.hpp"

namespace standin {
namespace {

constexpr int kRounds = 200;

/// What the events are after some steps: which step has written each of them last.
using Written = std::map<std::string, int>;

std::string NameAt(int step) { return "Event " + std::to_string(step % 5); }
bool Removes(int step) { return step % 7 == 0; }

void Follow(Written& events, int step) {
  if (Removes(step) && events.count(NameAt(step)) > 0) {
    events.erase(NameAt(step));
  } else {
    events[NameAt(step)] = step;
  }
}

RuledEvent EventOf(const std::string& name, int step) {
  RuledEvent event;
  event.name = name;
  event.group = std::to_string(step);
  event.rule.on = step % 2 == 0;
  event.rule.actions = {SpeakAction{std::to_string(step)}, WaitAction{step + 1}};
  return event;
}

void Take(House& house, RuleStore& rules, int step) {
  RuledEvent event = EventOf(NameAt(step), step);
  const Event* there = house.events.byName(event.name);
  if (there == nullptr) {
    rules.make(event);
    return;
  }
  event.id = there->id;
  event.version = rules.byId(there->id)->version;
  Removes(step) ? rules.remove(event.id, event.version) : static_cast<void>(rules.change(event));
}

/// Whether the house has these events, whole, and no others.
bool Holds(const House& house, const RuleStore& rules, const Written& events) {
  if (house.events.all().size() != events.size() || rules.all().size() != events.size()) return false;
  for (const auto& [name, step] : events) {
    const Event* event = house.events.byName(name);
    if (event == nullptr || event->group != std::to_string(step)) return false;
    const RuledEvent* ruled = rules.byId(event->id);
    if (ruled == nullptr || ruled->name != name || ruled->rule != EventOf(name, step).rule) return false;
  }
  return true;
}

TEST(AKill, LosesNoChangeOfAnEventThatWasAcknowledgedAndLeavesNoHalf) {
  const support::TempFolder folder;
  Written events;
  int last = 0;
  for (int round = 0; round < kRounds; ++round) {
    const auto acknowledged =
        support::KilledWhile(1 + round % 11, [&](const support::Acknowledge& acknowledge) {
          House house(folder.path());
          RuleStore rules(house);
          for (int step = last + 1;; ++step) {
            Take(house, rules, step);
            acknowledge(step);
          }
        });
    ASSERT_TRUE(acknowledged.has_value());
    while (last < *acknowledged) Follow(events, ++last);
    House house(folder.path());
    RuleStore rules(house);
    if (!Holds(house, rules, events)) Follow(events, ++last);  // the one that nobody has heard of any more
    ASSERT_TRUE(Holds(house, rules, events)) << "round " << round << ", step " << last;
    // The step that undoes the last change is there with it.
    rules.undo();
    EXPECT_FALSE(Holds(house, rules, events));
    rules.redo();
    ASSERT_TRUE(Holds(house, rules, events)) << "round " << round << ", step " << last;
  }
}

/// The lines of a file, as numbers.
std::vector<int> NumbersIn(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::vector<int> numbers;
  for (int number = 0; file >> number;) numbers.push_back(number);
  return numbers;
}

TEST(AKill, LosesNoEvaluationThatWasAcknowledgedAndNothingRunsUnknownOrTwice) {
  const support::TempFolder folder;
  const std::filesystem::path carriedOut = folder.path() / "carried out";
  const EvaluationStore::Limits all{.ran = 1 << 20, .dull = 50, .bytes = 1 << 30};
  std::int32_t event = 0;
  {
    House house(folder.path() / "data");
    event = RuleStore(house).make(support::EventNamed("Good night")).id;
  }
  int next = 1;
  std::set<int> ended;
  for (int round = 0; round < kRounds; ++round) {
    const auto acknowledged =
        support::KilledWhile(1 + round % 11, [&](const support::Acknowledge& acknowledge) {
          House house(folder.path() / "data");
          EvaluationStore store(house, all);
          for (int number = next;; ++number) {
            Evaluation evaluation;
            evaluation.event = event;
            evaluation.time = number;
            evaluation.actions = {{.words = "Turn Lamp on", .begun = true}};
            evaluation.id = store.begin(evaluation);
            acknowledge(2 * number);
            std::ofstream(carriedOut, std::ios::app) << std::to_string(number) + "\n";
            evaluation.outcome = Outcome::kDone;
            store.end(evaluation);
            acknowledge(2 * number + 1);
          }
        });
    ASSERT_TRUE(acknowledged.has_value());
    for (int told = 2 * next + 1; told <= *acknowledged; told += 2) ended.insert(told / 2);
    House house(folder.path() / "data");
    EvaluationStore store(house, all);
    std::map<int, Outcome> outcomes;
    std::int64_t before = 0;
    for (bool more = true; more;) {
      const EvaluationStore::Page page = store.page(event, before, 200);
      for (const auto& each : page.evaluations) {
        const auto number = static_cast<int>(each.evaluation.time);
        EXPECT_TRUE(outcomes.emplace(number, each.evaluation.outcome).second) << number << " is there twice";
        before = each.evaluation.id;
      }
      more = page.more;
    }
    for (const int number : ended) ASSERT_EQ(outcomes[number], Outcome::kDone) << number;
    ASSERT_EQ(outcomes.count(*acknowledged / 2), 1U);
    for (const auto& [number, outcome] : outcomes)
      ASSERT_TRUE(outcome == Outcome::kDone || outcome == Outcome::kCut) << number;
    const std::vector<int> numbers = NumbersIn(carriedOut);
    EXPECT_EQ(std::set<int>(numbers.begin(), numbers.end()).size(), numbers.size());
    for (const int number : numbers) ASSERT_EQ(outcomes.count(number), 1U) << number << " ran unknown";
    next = outcomes.rbegin()->first + 1;
  }
}

TEST(AFullDisk, IsToldAndLosesNoEvent) {
  const support::TempFolder root;
  EXPECT_TRUE(support::InChild([&] {
    const std::filesystem::path disk = root.path() / "disk";
    std::filesystem::create_directory(disk);
    ASSERT_TRUE(support::MountSmallDisk(disk, std::size_t{8} << 20U)) << "no disk of its own";
    std::optional<House> house(disk / "data");
    std::optional<RuleStore> rules(*house);
    const RuledEvent first = rules->make(support::EventNamed("First"));
    const std::string undo = rules->toUndo();
    support::FillUp(disk / "filler");
    int made = 0;
    std::int32_t refusal = 0;
    for (int i = 0; i < 10'000 && refusal == 0; ++i) {
      try {
        rules->make(support::EventNamed("Event " + std::to_string(i)));
        ++made;
      } catch (const base::Failure& failure) {
        refusal = failure.number();
      }
    }
    EXPECT_EQ(refusal, base::number::kDiskFull);
    EXPECT_EQ(rules->all().size(), 1U + made);
    EXPECT_EQ(house->events.all().size(), 1U + made);
    EXPECT_THROW(rules->remove(first.id, first.version), base::Failure);
    EXPECT_NE(rules->byId(first.id), nullptr);
    const auto before = rules->all();

    rules.reset();
    house.reset();
    std::filesystem::remove(disk / "filler");
    house.emplace(disk / "data");
    rules.emplace(*house);
    EXPECT_EQ(rules->all(), before);
    rules->remove(first.id, first.version);
    rules->undo();
    EXPECT_EQ(rules->byId(first.id)->rule, first.rule);
  }));
}

TEST(AFullDisk, KeepsWhatHasRunUntilThereIsRoom) {
  const support::TempFolder root;
  EXPECT_TRUE(support::InChild([&] {
    const std::filesystem::path disk = root.path() / "disk";
    std::filesystem::create_directory(disk);
    ASSERT_TRUE(support::MountSmallDisk(disk, std::size_t{8} << 20U)) << "no disk of its own";
    House house(disk / "data");
    EvaluationStore store(house, {.ran = 1 << 20, .dull = 50, .bytes = 1 << 30});
    Evaluation evaluation;
    evaluation.event = house.events.create("Good night").id;
    evaluation.actions = {{std::string(280, 'x'), 0, 0, true, std::string(900, 'y')}};
    evaluation.id = store.begin(evaluation);
    support::FillUp(disk / "filler");
    bool refused = false;
    for (int i = 0; i < 10'000 && !refused; ++i) {
      try {
        store.begin(evaluation);
      } catch (const base::Failure& failure) {
        EXPECT_EQ(failure.number(), base::number::kDiskFull);
        refused = true;
      }
    }
    EXPECT_TRUE(refused);
    evaluation.outcome = Outcome::kDone;
    EXPECT_THROW(store.end(evaluation), base::Failure);
    std::filesystem::remove(disk / "filler");
    Evaluation next = evaluation;
    next.id = store.begin(next);
    database::Statement row(house.database, "SELECT outcome FROM evaluation WHERE id = ?");
    ASSERT_TRUE(row.with(evaluation.id).step());
    EXPECT_EQ(row.integer(0), static_cast<std::int64_t>(Outcome::kDone));
  }));
}

}  // namespace
}  // namespace standin
