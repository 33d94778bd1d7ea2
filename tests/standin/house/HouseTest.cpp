#include <gtest/gtest.h>

#include <algorithm>

#include "base/Failure.hpp"
#include "standin/house/House.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/KilledWhile.hpp"

namespace standin {
namespace {

TEST(House, DevicesKeepEverythingOverARestart) {
  const support::TempFolder folder;
  std::int32_t ref = 0;
  {
    House house(folder.path());
    ref = house.devices.create("Mute").ref;
    house.devices.put(ref, &Device::location, "Media Player");
    house.devices.put(ref, &Device::hc, "Q");
    house.devices.put(ref, &Device::dc, "9");
    house.devices.put(ref, &Device::interface, "Media Player");
    house.devices.put(ref, &Device::devType, "Media Player");
    house.devices.put(ref, &Device::iotype, 3);
    house.devices.put(ref, &Device::misc, 24);
    house.devices.put(ref, &Device::status, kStatusOn);
    house.devices.put(ref, &Device::text, "<b>Muted</b>");
    house.devices.putValue(ref, -7);
    house.devices.putValues(ref,
                            " \x02"
                            "0\x01"
                            "Blue\x02"
                            "1");
    house.devices.addButton(ref, "Media Player", "Mute toggle");
    house.devices.addButton(ref, "Media Player", "Mute toggle");
    house.devices.addButton(ref, "Media Player", "Vol Up");
  }
  House house(folder.path());
  const Device* device = house.devices.byFullName("media player MUTE");
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->ref, ref);
  EXPECT_EQ(device->address(), "Q9");
  EXPECT_EQ(device->interface, "Media Player");
  EXPECT_EQ(device->iotype, 3);
  EXPECT_EQ(device->misc, 24);
  EXPECT_EQ(device->status, kStatusOn);
  EXPECT_EQ(device->text, "<b>Muted</b>");
  EXPECT_EQ(device->value, -7);
  ASSERT_EQ(SplitValues(device->values).size(), 2U);
  EXPECT_EQ(SplitValues(device->values)[1].name, "Blue");
  ASSERT_EQ(device->buttons.size(), 2U);
  EXPECT_EQ(device->buttons[1].caption, "Vol Up");
  EXPECT_EQ(house.devices.byAddress("q9"), device);
}

TEST(House, AChangedDeviceIsHeardOfAsLongAsSomebodyKeepsHisHearing) {
  const support::TempFolder folder;
  House house(folder.path());
  std::vector<std::string> heard;
  const auto hear = [&](const char* who) {
    return house.hearDevices(
        [&heard, who](const Device& device) { heard.push_back(who + (" " + device.name)); });
  };
  const DeviceHearing first = hear("first");
  DeviceHearing second = hear("second");
  const DeviceHearing third = hear("third");
  // One who goes when he has heard of it.
  DeviceHearing once;
  once = house.hearDevices([&](const Device&) { once.reset(); });
  const std::int32_t ref = house.devices.create("Lamp").ref;
  EXPECT_EQ(heard, (std::vector<std::string>{"first Lamp", "second Lamp", "third Lamp"}));
  EXPECT_EQ(once, nullptr);
  heard.clear();
  second.reset();
  house.devices.putValue(ref, 3);
  EXPECT_EQ(heard, (std::vector<std::string>{"first Lamp", "third Lamp"}));
}

TEST(House, ADeletedDeviceNumberIsNeverGivenAgain) {
  const support::TempFolder folder;
  std::int32_t first = 0;
  {
    House house(folder.path());
    first = house.devices.create("One").ref;
    house.devices.put(first, &Device::interface, "Media Player");
    house.devices.removeInterface("media player");
    EXPECT_EQ(house.devices.byRef(first), nullptr);
  }
  House house(folder.path());
  EXPECT_GT(house.devices.create("Two").ref, first);
}

TEST(House, AHouseCodeIsFreeUntilADeviceHasIt) {
  const support::TempFolder folder;
  House house(folder.path());
  EXPECT_EQ(house.devices.freeHouseCode(), 'Q');
  for (int i = 0; i < 26; ++i) {
    const std::int16_t code = house.devices.freeHouseCode();
    ASSERT_GT(code, 0);
    house.devices.put(house.devices.create("x").ref, &Device::hc, std::string(1, static_cast<char>(code)));
  }
  EXPECT_EQ(house.devices.freeHouseCode(), -1);
}

TEST(House, EventsKeepTheirDevicesInOrder) {
  const support::TempFolder folder;
  {
    House house(folder.path());
    const std::int32_t id = house.events.create("Album VR").id;
    house.events.put(id, &Event::vcmd, "Play Album (Blue)");
    house.events.put(id, &Event::misc, 8 | 64 | 16384);
    house.events.putAbsTime(id, 7);
    house.events.addDevice(id, 1, 13);
    house.events.addDevice(id, 2, 13);
    house.events.addDevice(id, 3, 13);
    house.events.removeDevice(id, 2);
    EXPECT_THROW(house.events.removeDevice(id, 3), base::Failure);
  }
  House house(folder.path());
  const Event* event = house.events.byName("album vr");
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(event->vcmd, "Play Album (Blue)");
  EXPECT_EQ(event->misc, 8 | 64 | 16384);
  EXPECT_EQ(event->absTime, 7);
  ASSERT_EQ(event->devices.size(), 2U);
  EXPECT_EQ(event->devices[1].devid, 3);
}

TEST(House, TheLogIsBounded) {
  const support::TempFolder folder;
  database::Database database(folder.path() / "log.db", "The log");
  database.run("CREATE TABLE log (id INTEGER PRIMARY KEY AUTOINCREMENT, time INTEGER, type TEXT, text TEXT)");
  HouseLog log(database, 100);
  for (int i = 1; i <= 450; ++i) log.write(i % 2 == 0 ? "Info" : "Error", "line " + std::to_string(i));
  const std::vector<LogLine> all = log.newest(1000);
  EXPECT_LE(all.size(), 200U);
  EXPECT_GE(all.size(), 100U);
  EXPECT_EQ(all.back().text, "line 450");
  const std::vector<LogLine> errors = log.newest(3, "Error");
  ASSERT_EQ(errors.size(), 3U);
  EXPECT_EQ(errors.back().text, "line 449");
  EXPECT_EQ(log.newest(1, "", errors.front().id).front().text, "line 444");
  EXPECT_EQ(log.types(), (std::vector<std::string>{"Error", "Info"}));
}

TEST(House, ALineThatCantBeStoredIsStillTold) {
  const support::TempFolder folder;
  House house(folder.path());
  house.database.run("DROP TABLE log");
  std::string told;
  house.log.onLine = [&](const LogLine& line) { told = line.text; };
  house.log.write("Error", "the disk is full");
  EXPECT_EQ(told, "the disk is full");
}

TEST(House, AKillLosesNoDeviceChangeThatWasAcknowledged) {
  const support::TempFolder folder;
  std::int32_t ref = House(folder.path()).devices.create("Counter").ref;
  int lowest = 0;
  for (int round = 0; round < 30; ++round) {
    const auto acknowledged =
        support::KilledWhile(2 + round % 9, [&](const support::Acknowledge& acknowledge) {
          House house(folder.path());
          for (int i = lowest + 1;; ++i) {
            house.devices.putValue(ref, i);
            acknowledge(i);
          }
        });
    ASSERT_TRUE(acknowledged.has_value());
    House house(folder.path());
    ASSERT_GE(house.devices.byRef(ref)->value, *acknowledged);
    lowest = house.devices.byRef(ref)->value;
  }
}

TEST(House, ThePlayerIconIsThereAndAUsersOwnIsKept) {
  const support::TempFolder folder;
  const auto icon = folder.path() / "html/images/Media Player/WMP_Icon.gif";
  { House house(folder.path()); }
  ASSERT_TRUE(std::filesystem::exists(icon));
  EXPECT_GT(std::filesystem::file_size(icon), 100U);
  std::filesystem::resize_file(icon, 3);
  { House house(folder.path()); }
  EXPECT_EQ(std::filesystem::file_size(icon), 3U);
}

TEST(Users, APasswordIsStoredHashedAndOnlyItFits) {
  const std::string hash = HashPassword("correct horse");
  EXPECT_TRUE(hash.starts_with("$argon2id$"));
  EXPECT_TRUE(PasswordFits(hash, "correct horse"));
  EXPECT_FALSE(PasswordFits(hash, "correct horse "));
  EXPECT_FALSE(PasswordFits("", ""));
  EXPECT_THROW(HashPassword(""), base::Failure);
}

TEST(Users, ASessionLivesUntilItsEndOrAPasswordChange) {
  const support::TempFolder folder;
  std::int64_t now = 1000;
  House house(folder.path());
  Users users(house.database, [&] { return now; });
  const std::string token = users.begin("Guest");
  ASSERT_TRUE(users.ofSession(token).has_value());
  EXPECT_TRUE(users.ofSession(token)->guest);
  EXPECT_EQ(users.ofSession(token)->name, "guest");
  EXPECT_FALSE(users.ofSession(std::string(64, 'a')).has_value());
  now += 23LL * 3600;
  EXPECT_TRUE(users.ofSession(token).has_value());
  now += 2LL * 3600;
  EXPECT_FALSE(users.ofSession(token).has_value());

  const std::string owner = users.begin(kFirstUser);
  users.setHash(kFirstUser, "$argon2id$x");
  EXPECT_FALSE(users.ofSession(owner).has_value());
  const std::string again = users.begin(kFirstUser);
  users.end(again);
  EXPECT_FALSE(users.ofSession(again).has_value());
}

TEST(Users, AClockThatIsSetBackKeepsNoSessionAlive) {
  const support::TempFolder folder;
  std::int64_t wall = 1'000'000'000;
  std::int64_t sinceBoot = 100;
  House house(folder.path());
  Users users(
      house.database, [&] { return wall; }, [&] { return sinceBoot; });
  const std::string token = users.begin(kFirstUser);
  wall -= 365LL * 24 * 3600;
  sinceBoot += 29LL * 24 * 3600;
  EXPECT_TRUE(users.ofSession(token).has_value());
  sinceBoot += 2LL * 24 * 3600;
  EXPECT_FALSE(users.ofSession(token).has_value());
  const std::string later = users.begin(kFirstUser);
  EXPECT_TRUE(users.ofSession(later).has_value());
}

TEST(Users, ASessionThatBeganUnderAClockYearsAheadDoesNotCount) {
  const support::TempFolder folder;
  std::int64_t now = 2'000'000'000;
  House house(folder.path());
  std::string owner;
  std::string guest;
  {
    Users users(house.database, [&] { return now; });
    owner = users.begin(kFirstUser);
    guest = users.begin(kGuest);
  }
  now = 1'700'000'000;
  Users users(house.database, [&] { return now; });
  EXPECT_FALSE(users.ofSession(owner).has_value());
  EXPECT_FALSE(users.ofSession(guest).has_value());
  EXPECT_TRUE(users.ofSession(users.begin(kFirstUser)).has_value());
}

TEST(Users, SessionsThatBeganUnderAClockYearsAheadTakeNoPlace) {
  const support::TempFolder folder;
  std::int64_t now = 2'000'000'000;
  House house(folder.path());
  {
    Users users(house.database, [&] { return now; });
    for (int i = 0; i < 50; ++i) users.begin(kGuest);
  }
  now = 1'700'000'000;
  Users users(house.database, [&] { return now; });
  const std::string first = users.begin(kGuest);
  users.begin(kGuest);
  EXPECT_TRUE(users.ofSession(first).has_value());
}

TEST(Users, AClockThatIsBehindAtAStartEndsNoSession) {
  constexpr std::int64_t kDay = 24LL * 3600;
  const support::TempFolder folder;
  std::int64_t now = 2'000'000'000;
  House house(folder.path());
  std::string owner;
  std::string guest;
  {
    Users users(house.database, [&] { return now; });
    owner = users.begin(kFirstUser);
    guest = users.begin(kGuest);
  }
  now -= kDay / 2;
  EXPECT_TRUE(Users(house.database, [&] { return now; }).ofSession(guest).has_value()) << "slightly behind";
  now -= 3000 * kDay;
  Users users(house.database, [&] { return now; });
  EXPECT_FALSE(users.ofSession(owner).has_value());
  now += 3000 * kDay + kDay / 2;
  EXPECT_TRUE(users.ofSession(owner).has_value());
  EXPECT_TRUE(users.ofSession(guest).has_value());
  now += 29 * kDay;
  EXPECT_TRUE(users.ofSession(owner).has_value());
  EXPECT_FALSE(users.ofSession(guest).has_value());
}

TEST(Users, TheOldestSessionsMakeRoom) {
  const support::TempFolder folder;
  std::int64_t now = 1000;
  House house(folder.path());
  Users users(house.database, [&] { return now; });
  const std::string first = users.begin(kGuest);
  for (int i = 0; i < 49; ++i, ++now) users.begin(kGuest);
  EXPECT_TRUE(users.ofSession(first).has_value());
  users.begin(kGuest);
  EXPECT_FALSE(users.ofSession(first).has_value());
}

TEST(Users, TheDatabaseHoldsNoSessionTokenInTheClear) {
  const support::TempFolder folder;
  House house(folder.path());
  const std::string token = house.users.begin(kFirstUser);
  database::Statement rows(house.database, "SELECT token FROM session");
  ASSERT_TRUE(rows.step());
  EXPECT_NE(rows.text(0), token);
}

}  // namespace
}  // namespace standin
