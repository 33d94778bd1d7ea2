// How much the texts of the house may take in all, before and after a restart.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "base/Failure.hpp"
#include "standin/house/House.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

using support::FailureNumberOf;

/// Does it until it is refused for want of room, ten times at the most; how often it was done.
int DoneUntilRefused(const std::function<void()>& one, int most = 10) {
  for (int done = 0; done < most; ++done) {
    const int failed = FailureNumberOf(one);
    if (failed == 0) continue;
    EXPECT_EQ(failed, base::number::kOverflow);
    return done;
  }
  ADD_FAILURE() << "there is always room";
  return most;
}

class TheHousesRoom : public testing::Test {
 protected:
  void restart() {
    house.reset();
    house = std::make_unique<House>(folder.path());
  }
  /// A new device with that table; its number.
  std::int32_t device(const std::string& table) {
    const std::int32_t ref = house->devices.create("Lamp").ref;
    house->devices.putValues(ref, table);
    return ref;
  }
  std::int32_t event(const std::string& pattern) {
    const std::int32_t id = house->events.create("Evening").id;
    house->events.put(id, &Event::vcmd, pattern);
    return id;
  }

  support::TempFolder folder;
  std::unique_ptr<House> house = std::make_unique<House>(folder.path());
};

TEST_F(TheHousesRoom, IsSharedByTheTextsOfAllDevices) {
  const std::string table(DeviceStore::kLongestValues, 'x');
  std::vector<std::int32_t> fitted;
  const auto one = [&] { fitted.push_back(device(table)); };
  EXPECT_EQ(DoneUntilRefused(one), 7);
  for (const std::int32_t ref : fitted) EXPECT_EQ(house->devices.byRef(ref)->values, table);
  EXPECT_TRUE(house->devices.all().rbegin()->second.values.empty());

  restart();
  EXPECT_EQ(FailureNumberOf(one), base::number::kOverflow);
  EXPECT_EQ(house->devices.byRef(fitted.front())->values, table);
  house->devices.remove(fitted.front());
  one();
  EXPECT_EQ(FailureNumberOf(one), base::number::kOverflow);
  house->devices.putValues(fitted.at(1), "short");
  one();
  EXPECT_EQ(house->devices.byRef(fitted.back())->values, table);
}

TEST_F(TheHousesRoom, IsSharedByButtonsToo) {
  for (int i = 0; i < 7; ++i) device(std::string(DeviceStore::kLongestValues, 'x'));
  const std::int32_t ref = house->devices.create("Lamp").ref;
  const std::string text(DeviceStore::kLongestText - 4, 'x');
  int button = 1000;
  const auto one = [&] { house->devices.addButton(ref, text, std::to_string(button++) + text); };
  EXPECT_GT(DoneUntilRefused(one, 200), 100);
  EXPECT_GT(house->devices.byRef(ref)->buttons.size(), 100U);
  restart();
  EXPECT_EQ(FailureNumberOf(one), base::number::kOverflow);
}

TEST_F(TheHousesRoom, IsSharedByTheTextsOfAllEvents) {
  const std::string pattern(EventStore::kLongestPattern, 'x');
  std::vector<std::int32_t> fitted;
  const auto one = [&] { fitted.push_back(event(pattern)); };
  EXPECT_EQ(DoneUntilRefused(one), 7);
  for (const std::int32_t id : fitted) EXPECT_EQ(house->events.byId(id)->vcmd, pattern);

  restart();
  EXPECT_EQ(FailureNumberOf(one), base::number::kOverflow);
  house->events.put(fitted.front(), &Event::name, "Night");
  EXPECT_EQ(FailureNumberOf(one), base::number::kOverflow);
  house->events.put(fitted.front(), &Event::vcmd, "short");
  one();
  house->events.take(fitted.back(), std::nullopt);
  one();
  EXPECT_EQ(house->events.byId(fitted.back())->vcmd, pattern);
}

TEST_F(TheHousesRoom, IsSharedByTheDevicesOfAllEvents) {
  const std::int32_t full = house->events.create("Full").id;
  database::Statement(house->database,
                      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) "
                      "INSERT INTO event_device (event, devid, func) SELECT ?, 1, 1 FROM n")
      .with(static_cast<std::int64_t>(EventStore::kMostDevicesInAll), full)
      .run();
  restart();
  const std::int32_t other = house->events.create("Other").id;
  const auto one = [&] { house->events.addDevice(other, 1, 1); };
  EXPECT_EQ(FailureNumberOf(one), base::number::kOverflow);
  house->events.removeDevice(full, 1);
  one();
  EXPECT_EQ(FailureNumberOf(one), base::number::kOverflow);
  EXPECT_EQ(house->events.byId(other)->devices.size(), 1U);
}

}  // namespace
}  // namespace standin
