#include "standin/calendar/Sun.hpp"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/HouseClock.hpp"
#include "support/VirtualLoop.hpp"

namespace {

using namespace standin;
using support::Day;
using support::Utc;

constexpr Place kBerlin{52.52, 13.405};
constexpr Place kTromso{69.65, 18.96};
constexpr Place kQuito{-0.18, -78.47};
constexpr Place kKiritimati{1.87, -157.43};

class SunOf : public testing::Test {
 protected:
  std::optional<std::int64_t> moment(const Place& place, std::int64_t day, bool rise) const {
    return SunMoment(clock, place, day, rise);
  }
  /// Almanacs round to the minute, and the short series are good for some more.
  static void isNear(std::optional<std::int64_t> moment, std::int64_t wanted) {
    ASSERT_TRUE(moment);
    EXPECT_LE(std::llabs(*moment - wanted), 3 * 60000) << (*moment - wanted) / 60000.0 << " minutes off";
  }
  support::VirtualLoop loop;
  support::HouseClock clock{loop, Utc(2026, 1, 1), 3600};
};

TEST_F(SunOf, BerlinAtTheSolsticesAndAtTheEquinox) {
  isNear(moment(kBerlin, Day(2026, 6, 21), true), Utc(2026, 6, 21, 2, 43));
  isNear(moment(kBerlin, Day(2026, 6, 21), false), Utc(2026, 6, 21, 19, 33));
  isNear(moment(kBerlin, Day(2026, 12, 21), true), Utc(2026, 12, 21, 7, 15));
  isNear(moment(kBerlin, Day(2026, 12, 21), false), Utc(2026, 12, 21, 14, 54));
  isNear(moment(kBerlin, Day(2026, 3, 20), true), Utc(2026, 3, 20, 5, 11));
}

TEST_F(SunOf, TheEquatorHasTwelveHoursOfDayAllYear) {
  for (std::int64_t day = Day(2026, 1, 1); day < Day(2027, 1, 1); ++day) {
    const auto rise = moment(kQuito, day, true);
    const auto set = moment(kQuito, day, false);
    ASSERT_TRUE(rise && set);
    EXPECT_NEAR(double(*set - *rise) / 60000, 12 * 60 + 7, 3);
  }
}

TEST_F(SunOf, TheNightAndTheDayNearThePoleHaveNeither) {
  EXPECT_EQ(moment(kTromso, Day(2026, 12, 21), true), std::nullopt);
  EXPECT_EQ(moment(kTromso, Day(2026, 12, 21), false), std::nullopt);
  EXPECT_EQ(moment(kTromso, Day(2026, 6, 21), false), std::nullopt);
  EXPECT_TRUE(moment(kTromso, Day(2026, 3, 20), true));
}

TEST_F(SunOf, ADayIsThatOfTheHouseAlsoFarAheadOfItsMeridian) {
  support::HouseClock ahead(loop, Utc(2026, 1, 1), 14 * 3600);
  const auto rise = SunMoment(ahead, kKiritimati, Day(2026, 5, 10), true);
  const auto set = SunMoment(ahead, kKiritimati, Day(2026, 5, 10), false);
  ASSERT_TRUE(rise && set);
  EXPECT_EQ(LocalTimeAt(ahead, *rise).day, Day(2026, 5, 10));
  EXPECT_EQ(LocalTimeAt(ahead, *set).day, Day(2026, 5, 10));
  EXPECT_LT(*rise, *set);
}

TEST_F(SunOf, ThePolesThemselvesAreNoFailure) {
  for (const double latitude : {90.0, -90.0})
    for (std::int64_t day = Day(2026, 1, 1); day < Day(2026, 2, 1); ++day)
      EXPECT_EQ(moment({latitude, 0}, day, true), std::nullopt);
}

}  // namespace
