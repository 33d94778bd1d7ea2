// Events of time, whatever the clock does.
#include "standin/eventrun/EventStage.hpp"

namespace {

using namespace standin;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using support::Day;
using support::EventStage;
using support::Utc;
using testing::ElementsAre;
using testing::IsEmpty;

/// It is noon when a test begins.
class Alarm : public EventStage {
 protected:
  void at(int hour, int minute = 0, Weekdays days = 0) {
    rules.put(1, when(TimeTrigger{hour * 60 + minute, days}));
  }
  std::vector<std::string> outcomes() const {
    std::vector<std::string> all;
    for (const Evaluation& each : history.ended) {
      const LocalTime time = LocalTimeAt(clock, each.time);
      all.push_back(NameOf(each.outcome) + " " + std::to_string(time.minute / 60) + ":" +
                    std::to_string(time.minute % 60));
    }
    return all;
  }
};

TEST_F(Alarm, RingsAtItsMinuteEachDay) {
  at(13);
  loop.leap(minutes(60) - seconds(1));
  EXPECT_THAT(outcomes(), IsEmpty());
  loop.leap(seconds(2));
  EXPECT_THAT(outcomes(), ElementsAre("done 13:0"));
  EXPECT_EQ(last().trigger, "at 780");
  EXPECT_EQ(engine.next(1), Utc(2026, 1, 2, 13));
  loop.leap(hours(48));
  EXPECT_THAT(outcomes(), ElementsAre("done 13:0", "done 13:0", "done 13:0"));
}

TEST_F(Alarm, RingsOnItsWeekdaysOnly) {
  at(13, 0, 0b0010000);  // Fridays
  loop.leap(hours(24 * 9));
  EXPECT_EQ(count(Outcome::kDone), 2);
}

TEST_F(Alarm, RingsLateWhereTheClockWasSetForwardOverIt) {
  at(13);
  clock.setBy(minutes(65));
  loop.leap(minutes(1));
  EXPECT_THAT(outcomes(), ElementsAre("done 13:5"));
  EXPECT_EQ(last().trigger, "at 780, 5 minutes late");
  loop.leap(hours(2));
  EXPECT_EQ(history.ended.size(), 1U);
}

TEST_F(Alarm, IsToldAsMissedWhereTheMachineSleptThroughIt) {
  at(13);
  clock.setBy(hours(3));
  loop.leap(minutes(1));
  EXPECT_THAT(outcomes(), ElementsAre("missed 13:0"));
  EXPECT_THAT(done(), IsEmpty());
  EXPECT_EQ(last().why, "The clock was set over it, or the house was asleep or off");
  EXPECT_EQ(world.notes.size(), 1U);
  loop.leap(hours(23));
  EXPECT_EQ(count(Outcome::kDone), 1) << "the next one is in time again";
}

TEST_F(Alarm, OfManyDaysOfSleepIsToldOnce) {
  at(13);
  clock.setBy(hours(24 * 5));
  loop.leap(minutes(1));
  EXPECT_EQ(count(Outcome::kMissed), 1);
  EXPECT_EQ(last().why, "The clock was set over it, or the house was asleep or off: 5 times");
}

TEST_F(Alarm, OfEveryMinuteRingsOnceForWhatWasSleptThroughWithinTheTolerance) {
  rules.put(1, when(EveryTrigger{1}));
  clock.setBy(minutes(5));
  loop.leap(seconds(30));
  EXPECT_EQ(count(Outcome::kDone), 1);
  EXPECT_EQ(count(Outcome::kMissed), 1);
  EXPECT_EQ(history.ended.front().why, "The clock was set over it, or the house was asleep or off: 4 times");
}

TEST_F(Alarm, OfEveryMinuteSurvivesAYearOfSleep) {
  rules.put(1, when(EveryTrigger{1}));
  clock.setBy(hours(24 * 365));
  loop.leap(minutes(2));
  EXPECT_EQ(count(Outcome::kMissed), 1);
  EXPECT_GE(count(Outcome::kDone), 1);
  EXPECT_LE(count(Outcome::kDone), 3);
}

TEST_F(Alarm, ThatHasRungDoesNotRingAgainWhereTheClockIsSetBackOverIt) {
  at(13);
  loop.leap(minutes(65));
  EXPECT_EQ(count(Outcome::kDone), 1);
  clock.setBy(-minutes(30));
  loop.leap(hours(3));
  EXPECT_EQ(count(Outcome::kDone), 1);
  loop.leap(hours(22));
  EXPECT_EQ(count(Outcome::kDone), 2);
}

TEST_F(Alarm, ThatWasMissedByAWrongClockRingsWhenTheClockIsRight) {
  at(13);
  clock.setBy(hours(5));
  loop.leap(minutes(1));
  EXPECT_EQ(count(Outcome::kMissed), 1);
  clock.setBy(-hours(5));
  loop.leap(hours(2));
  EXPECT_EQ(count(Outcome::kDone), 1);
}

TEST_F(Alarm, IsPlannedAnewAfterAClockThatWasDaysAhead) {
  at(13);
  clock.setBy(hours(24 * 30) + minutes(59));
  loop.leap(minutes(2));
  EXPECT_EQ(count(Outcome::kDone), 1) << "it believed the clock";
  clock.setBy(-hours(24 * 30) - minutes(59));
  loop.leap(hours(2));
  EXPECT_EQ(count(Outcome::kDone), 2);
}

TEST_F(Alarm, ThatIsMadeAfterTheClockWasSetBackRingsToday) {
  loop.leap(hours(2));
  clock.setBy(-hours(1));
  at(13, 5);
  loop.leap(minutes(10));
  EXPECT_THAT(outcomes(), ElementsAre("done 13:5"));
}

TEST_F(Alarm, OfATimeThatThisDayLacksRingsOnceAtTheChange) {
  clock.likeBerlin();
  clock.setBy(base::Milliseconds(Utc(2026, 3, 28, 23) - clock.now()));
  at(2, 30);
  loop.leap(hours(24));
  EXPECT_THAT(outcomes(), ElementsAre("done 3:0"));
}

TEST_F(Alarm, OfATimeThatThisDayHasTwiceRingsOnce) {
  clock.likeBerlin();
  clock.setBy(base::Milliseconds(Utc(2026, 10, 24, 22) - clock.now()));
  at(2, 30);
  loop.leap(hours(25));
  EXPECT_THAT(outcomes(), ElementsAre("done 2:30"));
}

TEST_F(Alarm, OfTheSunWaitsUntilThePlaceIsKnown) {
  rules.put(1, when(SunTrigger{false, -30, 0}));
  EXPECT_EQ(engine.next(1), std::nullopt);
  EXPECT_EQ(engine.sun(), std::nullopt);
  rules.standAt({52.52, 13.405});
  ASSERT_TRUE(engine.next(1));
  EXPECT_NEAR(double(*engine.next(1)), double(Utc(2026, 1, 1, 14, 33)), 4 * 60000.0);
  ASSERT_TRUE(engine.sun() && engine.sun()->set);
  EXPECT_NEAR(*engine.sun()->set, 15 * 60 + 3, 4);
  loop.leap(hours(24));
  EXPECT_EQ(count(Outcome::kDone), 1);
}

TEST_F(Alarm, BeginsAndEndsWithItsEvent) {
  at(13);
  Rule off = when(TimeTrigger{13 * 60});
  off.on = false;
  rules.put(1, off);
  EXPECT_EQ(engine.next(1), std::nullopt);
  loop.leap(hours(2));
  EXPECT_THAT(outcomes(), IsEmpty());
  at(15);
  rules.remove(1);
  loop.leap(hours(24));
  EXPECT_THAT(outcomes(), IsEmpty());
}

TEST_F(Alarm, IsNotLostByAChangeOfItsEventInItsLastMoment) {
  at(13);
  loop.leap(minutes(59));
  clock.setBy(minutes(2));  // due, and not yet seen
  Rule rule = when(TimeTrigger{13 * 60}, {"other"});
  rules.put(1, rule);
  loop.leap(minutes(1));
  EXPECT_THAT(done(), ElementsAre("do other"));
}

TEST_F(Alarm, OfAThousandEventsEachRingsOnceInADay) {
  for (int i = 1; i <= 1000; ++i) rules.put(i, when(TimeTrigger{(i * 7919) % 1440}));
  loop.leap(hours(24));
  EXPECT_EQ(history.ended.size(), 1000U);
  std::map<std::int32_t, int> times;
  for (const Evaluation& each : history.ended) {
    ++times[each.event];
    EXPECT_EQ(LocalTimeAt(clock, each.time).minute, (each.event * 7919) % 1440);
  }
  EXPECT_EQ(times.size(), 1000U);
}

}  // namespace
