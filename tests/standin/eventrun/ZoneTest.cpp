// Events of time where the house comes into another time zone.
#include "standin/eventrun/EventStage.hpp"

namespace {

using namespace standin;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using support::EventStage;
using support::Utc;
using testing::ElementsAre;
using testing::IsEmpty;

/// It is noon when a test begins, in a house that shows the world's time.
class Zone : public EventStage {
 protected:
  void at(int hour, int minute = 0) { rules.put(1, when(TimeTrigger{hour * 60 + minute, 0})); }
  /// The house is so far east from now on.
  void goTo(int ahead) {
    clock.change(INT64_MIN, ahead * 3600);
    loop.leap(minutes(1));
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

TEST_F(Zone, ATimeOfDayIsThatOfTheNewZone) {
  at(15);
  goTo(2);
  EXPECT_EQ(engine.next(1), Utc(2026, 1, 1, 13));
  loop.leap(minutes(59) + seconds(1));
  EXPECT_THAT(outcomes(), ElementsAre("done 15:0"));
  loop.leap(hours(23));
  EXPECT_EQ(count(Outcome::kDone), 1);
  loop.leap(hours(1));
  EXPECT_THAT(outcomes(), ElementsAre("done 15:0", "done 15:0"));
}

TEST_F(Zone, ATimeOfDayComesLaterWhereClocksShowLess) {
  at(13);
  goTo(-2);
  loop.leap(hours(2));
  EXPECT_THAT(outcomes(), IsEmpty());
  loop.leap(hours(1));
  EXPECT_THAT(outcomes(), ElementsAre("done 13:0"));
}

TEST_F(Zone, WhatHasRungDoesNotRingAgainThatDay) {
  at(13);
  loop.leap(minutes(65));
  EXPECT_EQ(count(Outcome::kDone), 1);
  goTo(-2);
  loop.leap(hours(23));
  EXPECT_EQ(count(Outcome::kDone), 1);
  EXPECT_EQ(engine.next(1), Utc(2026, 1, 2, 15));
  loop.leap(hours(3));
  EXPECT_EQ(count(Outcome::kDone), 2);
}

TEST_F(Zone, WhatHasRungUnderAWrongClockHoldsNothingBack) {
  at(13);
  loop.leap(hours(2));
  clock.setBy(-hours(72));
  loop.leap(minutes(1));
  goTo(1);
  EXPECT_EQ(engine.next(1), Utc(2025, 12, 30, 12));
}

TEST_F(Zone, WhatIsDueAtTheVeryChangeRingsOnce) {
  at(13);
  loop.leap(minutes(59) + seconds(40));
  clock.change(INT64_MIN, -3600);
  loop.leap(hours(4));
  EXPECT_EQ(count(Outcome::kDone), 1);
  EXPECT_EQ(engine.next(1), Utc(2026, 1, 2, 14));
}

TEST_F(Zone, WhatTheClocksHaveJustJumpedOverRingsLate) {
  at(13);
  loop.leap(minutes(5));
  clock.change(INT64_MIN, 3600);
  loop.leap(minutes(1));
  ASSERT_THAT(outcomes(), ElementsAre("done 13:5"));
  EXPECT_EQ(last().trigger, "at 780, 5 minutes late");
  loop.leap(hours(23));
  EXPECT_EQ(history.ended.size(), 1U);
}

TEST_F(Zone, WhatTheClocksHaveLongJumpedOverIsToldAsMissed) {
  at(13);
  goTo(3);
  EXPECT_THAT(outcomes(), ElementsAre("missed 13:0"));
  loop.leap(hours(22));
  EXPECT_EQ(count(Outcome::kDone), 1);
  EXPECT_EQ(count(Outcome::kMissed), 1);
}

TEST_F(Zone, MinutesPassOnEvenlyFromTheNewMidnight) {
  rules.put(1, when(EveryTrigger{15}));
  for (const int ahead : {5, -5, 0}) {
    const std::size_t before = history.ended.size();
    goTo(ahead);
    loop.leap(minutes(59));
    EXPECT_EQ(history.ended.size(), before + 4) << ahead;
  }
  EXPECT_EQ(count(Outcome::kMissed), 0);
}

TEST_F(Zone, TheSunKeepsItsMoment) {
  rules.standAt({52.52, 13.405});
  rules.put(1, when(SunTrigger{false, 0, 0}));
  const auto before = engine.next(1);
  ASSERT_TRUE(before);
  goTo(1);
  EXPECT_EQ(engine.next(1), before);
  loop.leap(hours(3));
  EXPECT_EQ(count(Outcome::kDone), 0);
  loop.leap(minutes(10));
  EXPECT_EQ(count(Outcome::kDone), 1);
}

TEST_F(Zone, OneThatDiffersInSummerOnlyIsNoticedToo) {
  clock.likeBerlin();
  clock.setBy(base::Milliseconds(Utc(2026, 3, 28, 12) - clock.now()));
  loop.leap(minutes(1));
  at(7);
  EXPECT_EQ(engine.next(1), Utc(2026, 3, 29, 5));
  clock.change(Utc(2026, 3, 29, 1), 3600);
  loop.leap(minutes(1));
  EXPECT_EQ(engine.next(1), Utc(2026, 3, 29, 6));
}

TEST_F(Zone, SummerTimeIsNoOtherZone) {
  clock.likeBerlin();
  clock.setBy(base::Milliseconds(Utc(2026, 10, 24, 12) - clock.now()));
  loop.leap(minutes(1));
  at(2, 30);
  loop.leap(hours(48));
  EXPECT_THAT(outcomes(), ElementsAre("done 2:30", "done 2:30"));
}

}  // namespace
