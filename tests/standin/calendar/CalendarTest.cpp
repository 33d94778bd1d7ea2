#include "standin/calendar/Calendar.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

#include "support/HouseClock.hpp"
#include "support/VirtualLoop.hpp"

namespace {

using namespace standin;
using support::Day;
using support::Utc;
using testing::ElementsAre;

constexpr std::int32_t At(int hour, int minute = 0) { return hour * 60 + minute; }
constexpr Weekdays Days(std::initializer_list<int> list) {
  Weekdays bits = 0;
  for (const int day : list) bits = static_cast<Weekdays>(bits | (1U << unsigned(day - 1)));
  return bits;
}

class Calendar : public testing::Test {
 protected:
  Calendar() { clock.likeBerlin(); }
  std::vector<std::int64_t> all(const Trigger& trigger, std::int64_t from, std::int64_t to) const {
    std::vector<std::int64_t> dues;
    for (auto due = NextDue(clock, place, trigger, from); due && *due < to;
         due = NextDue(clock, place, trigger, *due))
      dues.push_back(*due);
    return dues;
  }
  support::VirtualLoop loop;
  support::HouseClock clock{loop, Utc(2026, 1, 1)};
  std::optional<Place> place;
};

TEST_F(Calendar, ATimeOfDayComesOnceADayAsTheClocksOnTheWallShowIt) {
  EXPECT_THAT(all(TimeTrigger{At(22)}, Utc(2026, 1, 1), Utc(2026, 1, 3)),
              ElementsAre(Utc(2026, 1, 1, 21), Utc(2026, 1, 2, 21)));
  EXPECT_THAT(all(TimeTrigger{At(22)}, Utc(2026, 7, 1), Utc(2026, 7, 3)),
              ElementsAre(Utc(2026, 7, 1, 20), Utc(2026, 7, 2, 20)));
}

TEST_F(Calendar, AMomentThatIsNowIsOver) {
  EXPECT_EQ(NextDue(clock, place, TimeTrigger{At(22)}, Utc(2026, 1, 1, 21)), Utc(2026, 1, 2, 21));
}

TEST_F(Calendar, WeekdaysAreThoseOfTheHouse) {
  // 2026-01-05 is a Monday; its first minutes are Sunday's for the world.
  EXPECT_THAT(all(TimeTrigger{At(0, 10), Days({1})}, Utc(2026, 1, 1), Utc(2026, 1, 13)),
              ElementsAre(Utc(2026, 1, 4, 23, 10), Utc(2026, 1, 11, 23, 10)));
  EXPECT_EQ(all(TimeTrigger{At(7), Days({6, 7})}, Utc(2026, 1, 1), Utc(2026, 1, 15)).size(), 4U);
}

TEST_F(Calendar, ATimeThatDoesNotExistThatDayComesOnceAtTheChange) {
  EXPECT_THAT(all(TimeTrigger{At(2, 30)}, Utc(2026, 3, 28, 0), Utc(2026, 3, 31)),
              ElementsAre(Utc(2026, 3, 28, 1, 30), Utc(2026, 3, 29, 1, 0), Utc(2026, 3, 30, 0, 30)));
}

TEST_F(Calendar, ATimeThatExistsTwiceComesOnce) {
  EXPECT_THAT(all(TimeTrigger{At(2, 30)}, Utc(2026, 10, 24, 12), Utc(2026, 10, 26, 12)),
              ElementsAre(Utc(2026, 10, 25, 0, 30), Utc(2026, 10, 26, 1, 30)));
}

TEST_F(Calendar, EachDayOfAYearHasEachMinuteOfTheDayOnce) {
  for (const int minute : {At(0), At(1, 59), At(2), At(2, 1), At(2, 59), At(3), At(23, 59)})
    EXPECT_EQ(all(TimeTrigger{minute}, Utc(2025, 12, 31, 23) - 1, Utc(2026, 12, 31, 23)).size(), 365U)
        << minute;
}

TEST_F(Calendar, EveryFewMinutesPassEvenlyAlsoWhereClocksChange) {
  EXPECT_EQ(all(EveryTrigger{15}, Utc(2026, 3, 28, 23) - 1, Utc(2026, 3, 29, 22)).size(), 23U * 4);
  EXPECT_EQ(all(EveryTrigger{15}, Utc(2026, 10, 24, 22) - 1, Utc(2026, 10, 25, 23)).size(), 25U * 4);
  EXPECT_THAT(all(EveryTrigger{600}, Utc(2026, 1, 1, 0), Utc(2026, 1, 2, 10)),
              ElementsAre(Utc(2026, 1, 1, 9), Utc(2026, 1, 1, 19), Utc(2026, 1, 1, 23), Utc(2026, 1, 2, 9)));
}

TEST_F(Calendar, WhatIsNoTriggerOfTimeIsNeverDue) {
  EXPECT_EQ(NextDue(clock, place, StartTrigger{}, 0), std::nullopt);
  EXPECT_EQ(NextDue(clock, place, SunTrigger{}, 0), std::nullopt) << "nobody has said where the house stands";
}

TEST_F(Calendar, TheSunComesWithItsOffsetOncePerDay) {
  place = Place{52.52, 13.405};
  const auto sets = all(SunTrigger{false, 0, 0}, Utc(2026, 6, 1), Utc(2026, 6, 8));
  const auto before = all(SunTrigger{false, -30, 0}, Utc(2026, 6, 1), Utc(2026, 6, 8));
  ASSERT_EQ(sets.size(), 7U);
  ASSERT_EQ(before.size(), 7U);
  for (std::size_t i = 0; i < sets.size(); ++i) EXPECT_EQ(sets[i] - before[i], 30 * 60000);
}

TEST_F(Calendar, TheHouseBelievesTheMachinesTimeZone) {
  ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  ::tzset();
  const SystemClock system;
  EXPECT_EQ(system.offset(Utc(2026, 1, 1)), 3600);
  EXPECT_EQ(system.offset(Utc(2026, 7, 1)), 7200);
  EXPECT_EQ(system.offset(Utc(2026, 3, 29, 1) - 1), 3600);
  EXPECT_EQ(system.offset(Utc(2026, 3, 29, 1)), 7200);
  EXPECT_EQ(MomentOf(system, {Day(2026, 3, 29), At(2, 30)}), Utc(2026, 3, 29, 1));
  EXPECT_EQ(LocalTimeAt(system, Utc(2026, 7, 1, 22, 5)), (LocalTime{Day(2026, 7, 2), At(0, 5)}));
  EXPECT_GT(system.now(), Utc(2020, 1, 1));
}

TEST_F(Calendar, TheHouseNoticesThatItsTimeZoneIsAnother) {
  const SystemClock system;
  for (const auto& [zone, ahead] : {std::pair("UTC", 0), std::pair("HOUSE-2", 7200)}) {
    ::setenv("TZ", zone, 1);
    EXPECT_GT(system.now(), 0);
    EXPECT_EQ(system.offset(0), ahead);
  }
}

TEST(Weekday, IsKnownBefore1970Too) {
  EXPECT_EQ(WeekdayOf(Day(2026, 11, 22)), 6);  // a Sunday
  EXPECT_EQ(WeekdayOf(Day(1969, 12, 29)), 0);  // a Monday
}

}  // namespace
