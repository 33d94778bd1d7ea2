// "General Solar Position Calculations" of the NOAA Global Monitoring Division: the equation of time and the
// sun's declination as short series of the year's angle.
#include "standin/calendar/Sun.hpp"

#include <cmath>
#include <numbers>

namespace standin {
namespace {

constexpr double kRadians = std::numbers::pi / 180;
/// Of the sun's centre when its upper edge is seen at the horizon, with what the air bends.
constexpr double kZenith = 90.833 * kRadians;
constexpr double kDayMinutes = 1440;
constexpr double kDaysPerYear = 365.2425;
constexpr double kMostLatitude = 89.9;  // at a pole itself there is no noon to count from

struct Sun {
  double ahead = 0;        ///< minutes that the sundial is ahead of the clock
  double declination = 0;  ///< radians
};

/// `moment` in days since 1970.
Sun SunAt(double moment) {
  const double year = std::floor(moment / kDaysPerYear);
  const double angle = 2 * std::numbers::pi * (moment - year * kDaysPerYear - 0.5) / kDaysPerYear;
  const double c1 = std::cos(angle);
  const double s1 = std::sin(angle);
  const double c2 = std::cos(2 * angle);
  const double s2 = std::sin(2 * angle);
  const double c3 = std::cos(3 * angle);
  const double s3 = std::sin(3 * angle);
  return {229.18 * (0.000075 + 0.001868 * c1 - 0.032077 * s1 - 0.014615 * c2 - 0.040849 * s2),
          0.006918 - 0.399912 * c1 + 0.070257 * s1 - 0.006758 * c2 + 0.000907 * s2 - 0.002697 * c3 +
              0.00148 * s3};
}

/// Minutes since the world's midnight of the day; the sun is taken as it stands at noon and then, once more,
/// as it stands at the moment found.
std::optional<double> MinutesOf(std::int64_t day, const Place& place, bool rise) {
  const double latitude = std::fmin(std::fmax(place.latitude, -kMostLatitude), kMostLatitude) * kRadians;
  double minutes = kDayMinutes / 2 - 4 * place.longitude;
  for (int pass = 0; pass < 2; ++pass) {
    const Sun sun = SunAt(static_cast<double>(day) + minutes / kDayMinutes);
    const double angle = std::cos(kZenith) / (std::cos(latitude) * std::cos(sun.declination)) -
                         std::tan(latitude) * std::tan(sun.declination);
    if (angle < -1 || angle > 1) return std::nullopt;
    const double half = std::acos(angle) / kRadians;
    minutes = kDayMinutes / 2 - 4 * (place.longitude + (rise ? half : -half)) - sun.ahead;
  }
  return minutes;
}

}  // namespace

std::optional<std::int64_t> SunMoment(const WallClock& clock, const Place& place, std::int64_t day,
                                      bool rise) {
  constexpr double kMinute = 60000;
  constexpr std::int64_t kDay = 86400000;
  // The noon that belongs to the house's day may fall into another day of the world's.
  const double noon = kDayMinutes / 2 - 4 * place.longitude;
  const std::int64_t noonMoment = day * kDay + std::llround(noon * kMinute);
  const std::int64_t worldDay = 2 * day - LocalTimeAt(clock, noonMoment).day;
  const std::optional<double> minutes = MinutesOf(worldDay, place, rise);
  if (!minutes) return std::nullopt;
  return worldDay * kDay + std::llround(*minutes) * 60000;
}

}  // namespace standin
