#include <gtest/gtest.h>

#include <string>

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
}

TEST_F(ADevice, IsMadeWithANameUpToItsBound) {
  const std::string longest(DeviceStore::kLongestText, 'x');
  EXPECT_EQ(FailureNumberOf([&] { house.devices.create(longest + "x"); }), base::number::kOverflow);
  EXPECT_EQ(house.devices.all().size(), 1U);
  EXPECT_EQ(house.devices.create(longest).name, longest);
}

TEST_F(ADevice, TakesButtonsWithTextsUpToTheirBound) {
  const std::string longest(DeviceStore::kLongestText, 'x');
  EXPECT_EQ(FailureNumberOf([&] { house.devices.addButton(ref, "I", longest + "x"); }),
            base::number::kOverflow);
  EXPECT_EQ(FailureNumberOf([&] { house.devices.addButton(ref, longest + "x", "Press"); }),
            base::number::kOverflow);
  EXPECT_TRUE(device().buttons.empty());
  house.devices.addButton(ref, longest, longest);
  ASSERT_EQ(device().buttons.size(), 1U);
  EXPECT_EQ(device().buttons[0].interface, longest);
  EXPECT_EQ(device().buttons[0].caption, longest);
}

TEST_F(ADevice, TakesButtonsWhileThereAreNotTooMany) {
  for (std::size_t i = 0; i < DeviceStore::kMostButtons; ++i)
    house.devices.addButton(ref, "I", "Button " + std::to_string(i));
  EXPECT_EQ(device().buttons.size(), DeviceStore::kMostButtons);
  EXPECT_EQ(FailureNumberOf([&] { house.devices.addButton(ref, "I", "One more"); }), base::number::kOverflow);
  EXPECT_EQ(FailureNumberOf([&] { house.devices.addButton(ref, "I", "Button 7"); }), 0) << "it is there";
  EXPECT_EQ(device().buttons.size(), DeviceStore::kMostButtons);
  house.devices.addButton(house.devices.create("Radio").ref, "I", "One more");
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
