// What came of the events' triggers: kept, bounded, cut by the end of the house.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <optional>

#include "standin/rules/EvaluationStore.hpp"
#include "standin/rules/RuleStore.hpp"
#include "standin/rules/Rules.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

using testing::ElementsAre;

class History : public testing::Test {
 protected:
  History() { start({}); }
  void start(EvaluationStore::Limits limits) {
    store.reset();
    rules.reset();
    house.reset();
    house.emplace(folder.path());
    rules.emplace(*house);
    store.emplace(*house, limits);
  }
  std::int32_t make(const std::string& name) { return rules->make(support::EventNamed(name)).id; }
  static Evaluation of(std::int32_t event, Outcome outcome, std::int64_t time = 0) {
    Evaluation evaluation;
    evaluation.event = event;
    evaluation.outcome = outcome;
    evaluation.time = time;
    evaluation.trigger = "22:00";
    return evaluation;
  }
  /// One that runs to its end.
  void ran(std::int32_t event, Outcome outcome = Outcome::kDone, std::int64_t time = 0) {
    Evaluation evaluation = of(event, outcome, time);
    evaluation.id = store->begin(evaluation);
    evaluation.actions = {{.words = "Turn Lamp on", .begun = true}};
    store->end(evaluation);
  }
  std::vector<Outcome> outcomes(std::int32_t event) {
    std::vector<Outcome> all;
    for (const auto& each : store->page(event, 0, 200).evaluations) all.push_back(each.evaluation.outcome);
    return all;
  }

  support::TempFolder folder;
  std::optional<House> house;
  std::optional<RuleStore> rules;
  std::optional<EvaluationStore> store;
};

TEST_F(History, KeepsAllOfAnEvaluationOverARestart) {
  const std::int32_t event = make("Good night");
  Evaluation evaluation = of(event, Outcome::kFailed, 1'700'000'000'000);
  evaluation.why = "1 action failed";
  evaluation.conditions = {{"It is Sat", "Sun", false}, {"Lamp is on", "off", true}};
  evaluation.actions = {{"Turn Lamp on", 1'700'000'000'001, 5, true, "The lamp is gone"},
                        {"Wait 90 seconds", 0, 0, false, ""}};
  evaluation.id = store->begin(evaluation);
  store->end(evaluation);
  start({});
  const auto page = store->page(event, 0, 10);
  ASSERT_EQ(page.evaluations.size(), 1U);
  const Evaluation& kept = page.evaluations[0].evaluation;
  EXPECT_EQ(page.evaluations[0].name, "Good night");
  EXPECT_EQ(kept.id, evaluation.id);
  EXPECT_EQ(kept.time, evaluation.time);
  EXPECT_EQ(kept.outcome, Outcome::kFailed);
  EXPECT_EQ(kept.why, "1 action failed");
  ASSERT_EQ(kept.conditions.size(), 2U);
  EXPECT_EQ(kept.conditions[1].saw, "off");
  ASSERT_EQ(kept.actions.size(), 2U);
  EXPECT_EQ(kept.actions[0].failure, "The lamp is gone");
  EXPECT_EQ(kept.actions[0].spent, 5);
  EXPECT_FALSE(kept.actions[1].begun);
}

TEST_F(History, WhatRanWhenTheHouseEndedIsCutAndNothingElse) {
  const std::int32_t event = make("Good night");
  ran(event);
  store->begin(of(event, Outcome::kRunning, 5));
  EXPECT_THAT(outcomes(event), ElementsAre(Outcome::kRunning, Outcome::kDone));
  EXPECT_EQ(store->last(event)->outcome, Outcome::kRunning);
  for (int i = 0; i < 2; ++i) {
    start({});
    EXPECT_THAT(outcomes(event), ElementsAre(Outcome::kCut, Outcome::kDone));
    EXPECT_EQ(store->last(event)->outcome, Outcome::kCut);
    EXPECT_EQ(store->last(event)->why, "The house ended before the last action");
    EXPECT_EQ(store->last(event)->time, 5);
  }
}

TEST_F(History, DullOnesNeverPushOutThoseThatRanOrFailed) {
  const std::int32_t event = make("Good night");
  for (int i = 0; i < 25; ++i) {
    ran(event, Outcome::kDone);
    ran(event, Outcome::kFailed);
  }
  constexpr std::array kDull{Outcome::kRefused, Outcome::kLeft,    Outcome::kMissed,
                             Outcome::kCircle,  Outcome::kStopped, Outcome::kCut};
  for (int i = 0; i < 400; ++i)
    store->end(of(event, kDull.at(static_cast<std::size_t>(i) % kDull.size()), i));
  std::size_t ranOrFailed = 0;
  for (const Outcome each : outcomes(event))
    if (each == Outcome::kDone || each == Outcome::kFailed) ++ranOrFailed;
  EXPECT_EQ(ranOrFailed, 50U);
  EXPECT_EQ(outcomes(event).size(), 100U);
  EXPECT_EQ(store->last(event)->time, 399);
}

TEST_F(History, OneThatWasStoppedIsDullOnlyIfNoActionOfItWasBegun) {
  const std::int32_t event = make("Good night");
  ran(event, Outcome::kStopped, 7);
  Evaluation early = of(event, Outcome::kStopped, 8);
  early.id = store->begin(early);
  early.actions = {{.words = "Turn Lamp on"}};
  store->end(early);
  for (int i = 0; i < 50; ++i) store->end(of(event, Outcome::kCircle, 100 + i));
  const auto page = store->page(event, 0, 200);
  ASSERT_EQ(page.evaluations.size(), 51U);
  EXPECT_EQ(page.evaluations.back().evaluation.time, 7);
}

TEST_F(History, TheLastFiftyOfEachEventAreKeptWhateverOthersDo) {
  const std::int32_t quiet = make("Quiet");
  const std::int32_t busy = make("Busy");
  for (int i = 0; i < 60; ++i) ran(quiet, Outcome::kDone, i);
  for (int i = 0; i < 300; ++i) ran(busy);
  const auto page = store->page(quiet, 0, 200);
  ASSERT_EQ(page.evaluations.size(), 50U);
  EXPECT_EQ(page.evaluations.back().evaluation.time, 10);
  EXPECT_EQ(outcomes(busy).size(), 50U);
}

TEST_F(History, IsReadPageByPage) {
  const std::int32_t one = make("One");
  const std::int32_t two = make("Two");
  for (int i = 0; i < 30; ++i) ran(i % 2 == 0 ? one : two, Outcome::kDone, i);
  std::vector<std::int64_t> times;
  std::int64_t before = 0;
  for (;;) {
    const auto page = store->page(0, before, 7);
    for (const auto& each : page.evaluations) times.push_back(each.evaluation.time);
    if (!page.more) break;
    ASSERT_EQ(page.evaluations.size(), 7U);
    before = page.evaluations.back().evaluation.id;
  }
  ASSERT_EQ(times.size(), 30U);
  for (std::size_t i = 0; i < times.size(); ++i) EXPECT_EQ(times[i], 29 - static_cast<std::int64_t>(i));
  const auto odd = store->page(two, 0, 15);
  EXPECT_FALSE(odd.more);
  for (const auto& each : odd.evaluations) EXPECT_EQ(each.evaluation.time % 2, 1);
}

TEST_F(History, AllTogetherIsBoundedAndTheDullGoFirst) {
  start({.ran = 50, .dull = 50, .bytes = 20'000});
  const std::int32_t event = make("Good night");
  const std::int32_t other = make("Other");
  for (int i = 0; i < 20; ++i) ran(event);
  for (int i = 0; i < 500; ++i) {
    Evaluation dull = of(i % 2 == 0 ? event : other, Outcome::kRefused);
    dull.why = std::string(400, 'x');
    store->end(dull);
    database::Statement sum(house->database, "SELECT SUM(size) FROM evaluation");
    sum.step();
    ASSERT_LE(sum.integer(0), 20'000);
  }
  std::size_t done = 0;
  for (const Outcome each : outcomes(event)) done += each == Outcome::kDone ? 1 : 0;
  EXPECT_EQ(done, 20U);
}

TEST_F(History, OfADeletedEventComesBackWithIt) {
  const std::int32_t event = make("Good night");
  ran(event);
  rules->remove(event, 1);
  start({});
  const auto page = store->page(0, 0, 10);
  ASSERT_EQ(page.evaluations.size(), 1U);
  EXPECT_EQ(page.evaluations[0].name, "Good night");
  rules->undo();
  EXPECT_THAT(outcomes(event), ElementsAre(Outcome::kDone));
}

TEST_F(History, OfAnEventThatCanNotComeBackIsForgottenAtTheNextStart) {
  const std::int32_t event = make("Good night");
  ran(event);
  rules->remove(event, 1);
  rules->skipUndo();
  rules->skipUndo();
  start({});
  EXPECT_TRUE(outcomes(0).empty());
}

TEST_F(History, LongTextsAreCutAndBytesThatAreNoTextReplaced) {
  const std::int32_t event = make("Good night");
  Evaluation evaluation = of(event, Outcome::kDone);
  evaluation.why = std::string(100'000, 'w');
  evaluation.actions = {{std::string(100'000, 'a') + "\xFF", 0, 0, true, "broken \xFF"}};
  evaluation.id = store->begin(evaluation);
  store->end(evaluation);
  const Evaluation kept = store->page(event, 0, 1).evaluations.at(0).evaluation;
  EXPECT_LT(kept.why.size(), 1100U);
  EXPECT_LT(kept.actions[0].words.size(), 400U);
  EXPECT_EQ(kept.actions[0].failure, "broken \xEF\xBF\xBD");
}

TEST_F(History, AnEndThatCouldNotBeStoredIsStoredWithTheNext) {
  const std::int32_t event = make("Good night");
  Evaluation evaluation = of(event, Outcome::kDone);
  evaluation.id = store->begin(evaluation);
  house->database.run(
      "CREATE TRIGGER full BEFORE UPDATE ON evaluation BEGIN SELECT RAISE(ABORT, 'full'); END");
  EXPECT_THROW(store->end(evaluation), base::Failure);
  EXPECT_THAT(outcomes(event), ElementsAre(Outcome::kDone)) << "what is shown is what happened";
  house->database.run("DROP TRIGGER full");
  ran(event, Outcome::kFailed);
  start({});
  EXPECT_THAT(outcomes(event), ElementsAre(Outcome::kFailed, Outcome::kDone));
}

TEST_F(History, ARowThatCanNotBeReadIsNotShown) {
  const std::int32_t event = make("Good night");
  ran(event);
  ran(event);
  house->database.run("UPDATE evaluation SET data = '{' WHERE id = 1");
  start({});
  EXPECT_THAT(outcomes(event), ElementsAre(Outcome::kDone));
}

}  // namespace
}  // namespace standin
