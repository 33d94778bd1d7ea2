#include <gtest/gtest.h>

#include "base/Failure.hpp"
#include "standin/house/House.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

using support::FailureNumberOf;

class ADevice : public testing::Test {
 protected:
  [[nodiscard]] const Device& device() const { return *house.devices.byRef(ref); }

  support::TempFolder folder;
  House house{folder.path()};
  std::int32_t ref = house.devices.create("Lamp").ref;
};

TEST_F(ADevice, TakesTextsUpToTheirBoundAndKeepsWhatItHasBeyond) {
  const std::string longest(DeviceStore::kLongestText, 'x');
  for (const auto field : {&Device::name, &Device::location, &Device::hc, &Device::dc, &Device::interface,
                           &Device::devType, &Device::text}) {
    house.devices.put(ref, field, longest);
    EXPECT_EQ(FailureNumberOf([&] { house.devices.put(ref, field, longest + "x"); }),
              base::number::kOverflow);
    EXPECT_EQ(device().*field, longest);
  }
  const std::string table(DeviceStore::kLongestValues, 'x');
  house.devices.putValues(ref, table);
  EXPECT_EQ(FailureNumberOf([&] { house.devices.putValues(ref, table + "x"); }), base::number::kOverflow);
  EXPECT_EQ(device().values, table);
  EXPECT_EQ(FailureNumberOf([&] { house.devices.create(longest + "x"); }), base::number::kOverflow);
  EXPECT_EQ(FailureNumberOf([&] { house.devices.addButton(ref, "I", longest + "x"); }),
            base::number::kOverflow);
  EXPECT_TRUE(device().buttons.empty());
}

TEST_F(ADevice, HasAPlaceWhileThereAreNotTooMany) {
  while (house.devices.all().size() < DeviceStore::kMost) house.devices.create("D");
  EXPECT_EQ(FailureNumberOf([&] { house.devices.create("D"); }), base::number::kOverflow);
  EXPECT_EQ(house.devices.all().size(), DeviceStore::kMost);
  house.devices.remove(ref);
  house.devices.create("D");
  EXPECT_EQ(house.devices.all().size(), DeviceStore::kMost);
}

}  // namespace
}  // namespace standin
