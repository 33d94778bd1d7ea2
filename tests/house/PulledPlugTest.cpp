#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "base/Failure.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

namespace {

/// Keeps a house busy over the bus and remembers what it has acknowledged.
class Busy {
 public:
  /// Works until a call fails or the time is over.
  void work(const std::string& busAddress, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    try {
      bus::PollLoop loop;
      bus::Connection connection(loop, busAddress);
      const auto host = connection.proxy("org.vantorix.Host", "/host");
      while (std::chrono::steady_clock::now() < end) {
        const int number = setting + 1;
        host->invoke("SaveINISetting", "Test", "Key" + std::to_string(number % 50), std::to_string(number),
                     "test.ini");
        setting = number;
        if (number % 20 != 0) continue;
        host->invoke("NewDevice", "Lamp " + std::to_string(devices + 1));
        ++devices;
      }
    } catch (const base::Failure&) {  // the plug has been pulled
    }
  }
  int setting = 0;
  int devices = 0;
};

/// Pulls the plug of the plug-in alone. False when it does not come.
bool KillPlugin(const std::string& busAddress) {
  try {
    bus::PollLoop loop;
    bus::Connection connection(loop, busAddress);
    std::uint32_t process = 0;
    support::Eventually([&] { return (process = connection.processOf("org.vantorix.vxif_WMP9")) != 0; });
    return process != 0 && ::kill(static_cast<pid_t>(process), SIGKILL) == 0;
  } catch (const base::Failure&) {
    return false;
  }
}

}  // namespace

TEST(APulledPlug, OneHundredTimesLosesNothingAcknowledged) {
  const support::SmallMusic music(1);
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  const std::string address = house.device("Status")["address"];
  Busy busy;
  std::mt19937 random(20261121);
  std::uniform_int_distribution<int> moment(0, 120);
  bool ready = true;
  int pluginKills = 0;
  for (int round = 0; round < 100; ++round) {
    if (!ready) house.start();
    bus::PollLoop loop;
    {
      bus::Connection connection(loop, house.busAddress());
      const auto host = connection.proxy("org.vantorix.Host", "/host");
      // What was acknowledged in the rounds before is there, key by key; the one save under way at the kill
      // may be there, too.
      for (int number = std::max(1, busy.setting - 49); number <= busy.setting; ++number) {
        const int kept = std::stoi(base::ToText(
            host->invoke("GetINISetting", "Test", "Key" + std::to_string(number % 50), "0", "test.ini")));
        ASSERT_TRUE(kept == number || kept == busy.setting + 1)
            << kept << " for " << number << ", round " << round;
      }
      ASSERT_GE(base::ToInt32(host->invoke("DeviceCount")), busy.devices) << "round " << round;
    }
    // In every second round the plug-in goes first, at whatever it is doing; the server sees it, starts it
    // again, and is killed at some moment of that.
    const bool pluginFirst = round % 2 == 1;
    std::thread hand([&, wait = std::chrono::milliseconds(moment(random)),
                      then = std::chrono::milliseconds(moment(random) * 10)] {
      std::this_thread::sleep_for(wait);
      if (pluginFirst) {
        pluginKills += KillPlugin(house.busAddress()) ? 1 : 0;
        std::this_thread::sleep_for(then);
      }
      house.server().signal(SIGKILL);
    });
    busy.work(house.busAddress(), std::chrono::seconds(20));
    hand.join();
    house.server().kill();
    ready = false;
  }
  EXPECT_GT(busy.setting, 100);
  EXPECT_GE(pluginKills, 25);
  ASSERT_TRUE(house.startReady()) << house.server().output();
  EXPECT_EQ(house.device("Status")["address"], address);
  std::size_t own = 0;
  const auto state = house.state();
  for (const auto& device : state["devices"]) own += device["location"] == "Media Player" ? 1 : 0;
  EXPECT_EQ(own, 14U);
  house.press("Status", "Restart");
  EXPECT_TRUE(support::Eventually([&] { return house.log().find("Playback Started") != std::string::npos; }));
}

TEST(APulledPlug, DuringTheFirstStartIsMendedByTheNext) {
  const support::SmallMusic music(1);
  for (const int wait : {50, 150, 300, 600}) {
    support::RealHouse house({.music = music.path()});
    house.start();
    std::this_thread::sleep_for(std::chrono::milliseconds(wait));
    house.server().kill();
    ASSERT_TRUE(house.startReady()) << "after " << wait << " ms\n" << house.server().output();
    EXPECT_FALSE(house.device("Status").is_null());
  }
}
