// The rules of the house's events: kept, changed, undone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "base/Failure.hpp"
#include "standin/rules/RuleStore.hpp"
#include "standin/rules/Rules.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

using support::EventNamed;

class Rules : public testing::Test {
 protected:
  Rules() { start(); }
  void start() {
    rules.reset();
    house.reset();
    house.emplace(folder.path());
    rules.emplace(*house);
    rules->onChange([this](std::int32_t id) { heard.push_back(id); });
  }
  RuledEvent make(const std::string& name) { return rules->make(EventNamed(name)); }
  RuledEvent rename(const std::string& from, const std::string& to) {
    RuledEvent event = *rules->byId(house->events.byName(from)->id);
    event.name = to;
    return rules->change(event);
  }
  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (const auto& [id, event] : rules->all()) all.push_back(event.name);
    return all;
  }
  /// The number of the failure, 0 for none.
  template <class Work>
  std::int32_t failureOf(Work work) {
    why.clear();
    try {
      work();
      return 0;
    } catch (const base::Failure& failure) {
      why = failure.description();
      return failure.number();
    }
  }

  support::TempFolder folder;
  std::optional<House> house;
  std::optional<RuleStore> rules;
  std::vector<std::int32_t> heard;
  std::string why;
};

TEST_F(Rules, AreThereAfterARestart) {
  const RuledEvent made = make("Good night");
  EXPECT_EQ(made.version, 1);
  start();
  ASSERT_NE(rules->byId(made.id), nullptr);
  EXPECT_EQ(*rules->byId(made.id), made);
  EXPECT_EQ(made.rule, support::RuleOfEveryKind());
  EXPECT_EQ(house->events.byId(made.id)->group, "Evening");
}

TEST_F(Rules, AreTheHousesEventsAndNoneOfThoseThatThePluginMakes) {
  const std::int32_t voice = house->events.create("Album VR").id;
  const RuledEvent made = make("Good night");
  EXPECT_EQ(rules->byId(voice), nullptr);
  EXPECT_EQ(names(), std::vector<std::string>{"Good night"});
  EXPECT_EQ(house->events.byId(made.id)->name, "Good night");
  start();
  EXPECT_EQ(rules->all().size(), 1U);
}

TEST_F(Rules, EachChangeIsANewVersionAndTold) {
  const RuledEvent made = make("Good night");
  RuledEvent changed = made;
  changed.rule.actions.clear();
  changed = rules->change(changed);
  EXPECT_EQ(changed.version, 2);
  EXPECT_EQ(rules->turn(made.id, true).version, 3);
  rules->remove(made.id, 3);
  EXPECT_EQ(heard, (std::vector<std::int32_t>(4, made.id)));
  EXPECT_EQ(rules->byId(made.id), nullptr);
  EXPECT_EQ(house->events.byId(made.id), nullptr);
}

TEST_F(Rules, WhatIsTheSameAlreadyIsNoChange) {
  const RuledEvent made = make("Good night");
  EXPECT_EQ(rules->change(made).version, 1);
  EXPECT_EQ(rules->turn(made.id, made.rule.on).version, 1);
  EXPECT_EQ(heard.size(), 1U);
  EXPECT_EQ(rules->toUndo(), "Making of “Good night”");
}

TEST_F(Rules, AChangeOfAnOldVersionIsRefused) {
  const RuledEvent made = make("Good night");
  rules->turn(made.id, true);
  RuledEvent late = made;
  late.name = "Late";
  EXPECT_EQ(failureOf([&] { rules->change(late); }), base::number::kChangedMeanwhile);
  EXPECT_EQ(why, "“Good night” has been changed meanwhile");
  EXPECT_EQ(failureOf([&] { rules->remove(made.id, 1); }), base::number::kChangedMeanwhile);
  EXPECT_EQ(names(), std::vector<std::string>{"Good night"});
}

TEST_F(Rules, WhatIsGoneCanNotBeChanged) {
  const RuledEvent made = make("Good night");
  rules->remove(made.id, 1);
  EXPECT_EQ(failureOf([&] { rules->change(made); }), base::number::kFileNotFound);
  EXPECT_EQ(failureOf([&] { rules->turn(made.id, true); }), base::number::kFileNotFound);
  EXPECT_EQ(failureOf([&] { rules->remove(made.id, 1); }), base::number::kFileNotFound);
}

TEST_F(Rules, NamesAreUniqueWithoutRegardToCaseAmongAllEvents) {
  house->events.create("Album VR");
  make("Größe");
  EXPECT_EQ(failureOf([&] { make("GRÖßE"); }), base::number::kKeyInUse);
  EXPECT_EQ(why, "Another event has the name “Größe”");
  EXPECT_EQ(failureOf([&] { make("album vr"); }), base::number::kKeyInUse);
  EXPECT_EQ(failureOf([&] { rename("Größe", "ALBUM VR"); }), base::number::kKeyInUse);
  EXPECT_EQ(rename("Größe", "GRÖßE").name, "GRÖßE");
}

TEST_F(Rules, ANameThatThePluginGivesIsTheRulesNameToo) {
  const RuledEvent made = make("Good night");
  heard.clear();
  house->events.put(made.id, &Event::name, "Sleep well");
  house->events.put(made.id, &Event::group, "Night");
  EXPECT_EQ(rules->byId(made.id)->name, "Sleep well");
  EXPECT_EQ(rules->byId(made.id)->group, "Night");
  EXPECT_EQ(rules->byId(made.id)->version, 3);
  EXPECT_EQ(heard, (std::vector<std::int32_t>(2, made.id)));
  EXPECT_EQ(house->events.byName("good night"), nullptr);
  start();
  EXPECT_EQ(rules->byId(made.id)->name, "Sleep well");
  EXPECT_EQ(rules->byId(made.id)->version, 3);
}

TEST_F(Rules, EveryKindOfChangeIsUndoneAndRedoneAlsoAfterARestart) {
  const RuledEvent made = make("Good night");
  rename("Good night", "Sleep well");
  rules->turn(made.id, true);
  rules->remove(made.id, 3);
  start();
  EXPECT_EQ(rules->toUndo(), "Deletion of “Sleep well”");
  EXPECT_EQ(rules->undo().words, "Deletion of “Sleep well”");
  EXPECT_TRUE(rules->byId(made.id)->rule.on);
  start();
  EXPECT_EQ(rules->toUndo(), "Switching “Sleep well” on");
  EXPECT_EQ(rules->undo().event, made.id);
  EXPECT_FALSE(rules->byId(made.id)->rule.on);
  start();
  EXPECT_EQ(rules->toUndo(), "Change of “Good night”, now “Sleep well”");
  rules->undo();
  EXPECT_EQ(rules->byId(made.id)->name, "Good night");
  EXPECT_EQ(rules->byId(made.id)->rule, made.rule);
  start();
  EXPECT_EQ(rules->toUndo(), "Making of “Good night”");
  rules->undo();
  EXPECT_EQ(rules->byId(made.id), nullptr);
  EXPECT_EQ(rules->toUndo(), "");
  EXPECT_EQ(failureOf([&] { rules->undo(); }), base::number::kFileNotFound);
  for (int i = 0; i < 4; ++i) {
    start();
    rules->redo();
  }
  EXPECT_EQ(rules->toRedo(), "");
  EXPECT_EQ(failureOf([&] { rules->redo(); }), base::number::kFileNotFound);
  EXPECT_EQ(house->events.byId(made.id), nullptr);
  rules->undo();
  EXPECT_EQ(rules->byId(made.id)->name, "Sleep well");
}

TEST_F(Rules, ADeletedEventComesBackWithItsNumberAndWhatThePluginHasMadeOfIt) {
  const RuledEvent made = make("Good night");
  house->events.put(made.id, &Event::vcmd, "good (night|bye)\xFF");
  house->events.put(made.id, &Event::misc, 8 | 64);
  house->events.put(made.id, &Event::misc2, 1);
  house->events.putAbsTime(made.id, 7);
  house->events.addDevice(made.id, 31, kFuncVoice);
  const std::int64_t entry = house->events.addDevice(made.id, 32, kFuncVoice);
  rules->remove(made.id, made.version);
  make("Another");
  rules->undo();
  start();
  rules->undo();
  const Event* event = house->events.byId(made.id);
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->vcmd, "good (night|bye)\xFF");
  EXPECT_EQ(event->misc, 8 | 64);
  EXPECT_EQ(event->misc2, 1);
  EXPECT_EQ(event->absTime, 7);
  ASSERT_EQ(event->devices.size(), 2U);
  EXPECT_EQ(event->devices[0].devid, 31);
  EXPECT_EQ(event->devices[1].id, entry);
  EXPECT_EQ(rules->byId(made.id)->rule, made.rule);
  EXPECT_GT(rules->byId(made.id)->version, made.version);
}

TEST_F(Rules, WhatIsMadeAgainHasWhatThePluginHadMadeOfItMeanwhile) {
  const RuledEvent made = make("Good night");
  house->events.put(made.id, &Event::vcmd, "good night");
  rules->undo();
  EXPECT_EQ(house->events.byId(made.id), nullptr);
  start();
  rules->redo();
  EXPECT_EQ(house->events.byId(made.id)->vcmd, "good night");
}

TEST_F(Rules, ANewChangeLeavesNothingToRedo) {
  make("One");
  make("Two");
  rules->undo();
  EXPECT_EQ(rules->toRedo(), "Making of “Two”");
  make("Three");
  EXPECT_EQ(rules->toRedo(), "");
  start();
  EXPECT_EQ(rules->toRedo(), "");
}

TEST_F(Rules, AStepIsNotUndoneOverSomebodyElsesChange) {
  const RuledEvent made = make("Good night");
  rename("Good night", "Sleep well");
  house->events.put(made.id, &Event::name, "The plug-in's");
  EXPECT_EQ(failureOf([&] { rules->undo(); }), base::number::kChangedMeanwhile);
  EXPECT_EQ(why, "“Sleep well” has been changed since");
  EXPECT_EQ(rules->byId(made.id)->name, "The plug-in's");
  house->events.put(made.id, &Event::name, "Sleep well");
  rules->undo();
  EXPECT_EQ(rules->byId(made.id)->name, "Good night");
}

TEST_F(Rules, ADeletionIsNotUndoneWhileAnotherEventHasTheName) {
  const RuledEvent made = make("Good night");
  rules->remove(made.id, 1);
  const std::int32_t other = house->events.create("GOOD NIGHT").id;
  EXPECT_EQ(failureOf([&] { rules->undo(); }), base::number::kChangedMeanwhile);
  EXPECT_EQ(why, "Another event has the name “GOOD NIGHT” now");
  house->events.put(other, &Event::name, "Elsewhere");
  rules->undo();
  EXPECT_EQ(rules->byId(made.id)->name, "Good night");
}

TEST_F(Rules, ADeletionIsNotUndoneWhereThereIsNoRoomForIt) {
  const std::string pattern(EventStore::kLongestPattern, 'x');
  const RuledEvent made = make("Good night");
  house->events.put(made.id, &Event::vcmd, pattern);
  rules->remove(made.id, 1);
  std::int32_t other = 0;
  for (std::size_t i = 1; i < EventStore::kMostBytes / pattern.size(); ++i) {
    other = house->events.create("Event " + std::to_string(i)).id;
    house->events.put(other, &Event::vcmd, pattern);
  }
  EXPECT_EQ(failureOf([&] { rules->undo(); }), base::number::kOverflow);
  EXPECT_EQ(house->events.byId(made.id), nullptr);
  house->events.put(other, &Event::vcmd, "short");
  rules->undo();
  EXPECT_EQ(house->events.byId(made.id)->vcmd, pattern);
}

TEST_F(Rules, AStepThatStandsInTheWayCanBeSkipped) {
  make("One");
  const RuledEvent two = make("Two");
  house->events.put(two.id, &Event::name, "Three");
  EXPECT_EQ(failureOf([&] { rules->undo(); }), base::number::kChangedMeanwhile);
  rules->skipUndo();
  EXPECT_EQ(rules->undo().words, "Making of “One”");
  EXPECT_EQ(names(), std::vector<std::string>{"Three"});
}

TEST_F(Rules, OldStepsAreForgottenAndTheNewestIsNot) {
  rules.reset();
  rules.emplace(*house, RuleSteps::Limits{.steps = 2, .bytes = 1 << 20});
  make("One");
  make("Two");
  make("Three");
  rules->undo();
  rules->undo();
  EXPECT_EQ(rules->toUndo(), "");
  rules.reset();
  rules.emplace(*house, RuleSteps::Limits{.steps = 2, .bytes = 1});
  make("Two");
  make("Three");
  rules->undo();
  EXPECT_EQ(rules->toUndo(), "");
  EXPECT_EQ(names(), (std::vector<std::string>{"One", "Two"}));
}

TEST_F(Rules, AStepThatCanNotBeReadIsForgotten) {
  make("One");
  make("Two");
  house->database.run("UPDATE event_step SET data = '{\"kind\":' WHERE id = 2");
  start();
  EXPECT_EQ(rules->toUndo(), "Making of “One”");
}

TEST_F(Rules, ARuleThatCanNotBeReadIsToldAndTheOthersStand) {
  make("One");
  const RuledEvent two = make("Two");
  house->database.run("UPDATE event_rule SET rule = '{}x' WHERE event = " + std::to_string(two.id));
  start();
  EXPECT_EQ(names(), std::vector<std::string>{"One"});
  const auto line = house->log.newest(1, "Warning");
  ASSERT_EQ(line.size(), 1U);
  EXPECT_THAT(line[0].text, testing::HasSubstr("“Two”"));
}

TEST_F(Rules, ThePlaceIsKeptToTheLastDigitAndTold) {
  EXPECT_EQ(rules->place(), std::nullopt);
  const Place place{52.123456789012345, -0.1};
  rules->setPlace(place);
  EXPECT_EQ(heard, std::vector<std::int32_t>{0});
  start();
  EXPECT_EQ(rules->place(), place);
  rules->setPlace(std::nullopt);
  start();
  EXPECT_EQ(rules->place(), std::nullopt);
}

TEST(AHouseFromBefore, TakesRulesInAsWell) {
  const support::TempFolder folder;
  std::int32_t id = 0;
  {
    House house(folder.path());
    id = house.events.create("Album VR").id;
    house.database.run(
        "DROP TRIGGER event_renamed; DROP TABLE event_rule; DROP TABLE event_step; DROP TABLE evaluation; "
        "DROP TABLE place; DROP TABLE alarm_seen; PRAGMA user_version = 2");
  }
  House house(folder.path());
  RuleStore rules(house);
  EXPECT_EQ(house.events.byId(id)->name, "Album VR");
  EXPECT_EQ(rules.make(EventNamed("Good night")).version, 1);
}

}  // namespace
}  // namespace standin
