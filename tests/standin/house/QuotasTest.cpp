// How much there may be of what the house is told to keep.
#include <gtest/gtest.h>

#include "base/Failure.hpp"
#include "standin/house/House.hpp"
#include "standin/house/Quotas.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"

namespace standin {
namespace {

using support::FailureNumberOf;

class Quotas : public testing::Test {
 protected:
  support::TempFolder folder;
  House house{folder.path()};
  const std::string tooLong = std::string(kLongestPlainText + 1, 'x');
};

TEST_F(Quotas, ATextOfAnEventHasABoundAndKeepsWhatItHasBeyond) {
  const std::int32_t id = house.events.create("Evening").id;
  for (const auto field : {&Event::name, &Event::group})
    EXPECT_EQ(FailureNumberOf([&] { house.events.put(id, field, tooLong); }), base::number::kOverflow);
  house.events.put(id, &Event::vcmd, tooLong);  // a pattern of a whole library
  const std::string pattern(EventStore::kLongestPattern + 1, 'x');
  EXPECT_EQ(FailureNumberOf([&] { house.events.put(id, &Event::vcmd, pattern); }), base::number::kOverflow);
  EXPECT_EQ(house.events.byId(id)->name, "Evening");
  EXPECT_EQ(house.events.byId(id)->vcmd, tooLong);
  EXPECT_EQ(FailureNumberOf([&] { house.events.create(tooLong); }), base::number::kOverflow);
  EXPECT_EQ(house.events.all().size(), 1U);
}

TEST_F(Quotas, AnEventHasNotMoreDevicesThanAHouse) {
  const std::int32_t id = house.events.create("All off").id;
  for (std::size_t i = 0; i < EventStore::kMostDevices; ++i) house.events.addDevice(id, 1, 1);
  EXPECT_EQ(FailureNumberOf([&] { house.events.addDevice(id, 1, 1); }), base::number::kOverflow);
  EXPECT_EQ(house.events.byId(id)->devices.size(), EventStore::kMostDevices);
}

TEST_F(Quotas, PagesAreAddedWhileThereAreNotTooMany) {
  for (std::size_t i = 0; i < House::kMostPages; ++i)
    house.addLink({"page" + std::to_string(i), "Page", "", nullptr});
  EXPECT_EQ(FailureNumberOf([&] { house.addLink({"one more", "", "", nullptr}); }), base::number::kOverflow);
  house.addLink({"PAGE7", "In place of another", "", nullptr});
  EXPECT_EQ(FailureNumberOf([&] {
              house.addLink({"page7", tooLong, "", nullptr});
            }),
            base::number::kOverflow);
  EXPECT_EQ(house.links.size(), House::kMostPages);
  EXPECT_EQ(house.linkOf("page7")->text, "In place of another");
}

TEST_F(Quotas, ItemsAreAddedToTheMenuWhileThereAreNotTooMany) {
  EXPECT_EQ(FailureNumberOf([&] { house.menu.add(tooLong, "Stop"); }), base::number::kOverflow);
  EXPECT_EQ(FailureNumberOf([&] { house.menu.add("Player", tooLong); }), base::number::kOverflow);
  for (std::size_t i = 0; i < Menu::kMost; ++i) house.menu.add("Player", "Item " + std::to_string(i));
  EXPECT_EQ(FailureNumberOf([&] { house.menu.add("Player", "One more"); }), base::number::kOverflow);
  house.menu.add("Player", "Item 7");
  EXPECT_EQ(house.menu.items().size(), Menu::kMost);
}

TEST_F(Quotas, NotEverybodyHearsOfEvents) {
  for (std::size_t i = 0; i < House::kMostSinks; ++i) house.addEventSink({1, nullptr});
  EXPECT_EQ(FailureNumberOf([&] { house.addEventSink({1, nullptr}); }), base::number::kOverflow);
  EXPECT_EQ(house.eventSinks.size(), House::kMostSinks);
}

}  // namespace
}  // namespace standin
