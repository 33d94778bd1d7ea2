#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class TheHouse : public ::testing::Test {
 protected:
  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
};

}  // namespace

TEST_F(TheHouse, ComesUpWithItsDevicesTheirButtonsAndAMenu) {
  ASSERT_TRUE(house.startReady()) << house.server().output();
  const auto state = house.state();
  std::vector<std::string> devices;
  for (const auto& device : state["devices"])
    devices.push_back(device["address"].get<std::string>() + " " + device["name"].get<std::string>());
  const std::string hc = devices.front().substr(0, 1);
  EXPECT_THAT(devices, ElementsAre(hc + "1 Status", hc + "2 Title", hc + "3 Album", hc + "4 Artist",
                                   hc + "5 Genre", hc + "6 Length", hc + "7 Loop Mode", hc + "8 Shuffle Mode",
                                   hc + "9 Mute", hc + "10 Display Controls", hc + "14 Quick Genre",
                                   hc + "13 Quick Artist", hc + "11 Quick PlayList", hc + "12 Quick Album"));
  EXPECT_EQ(state["devices"][0]["buttons"],
            support::RealHouse::Json({"Pause", "Stop", "Next", "Prev", "Restart"}));
  std::vector<std::string> items;
  for (const auto& item : state["menu"]) items.push_back(item["item"].get<std::string>());
  EXPECT_THAT(items, ElementsAre("Show/Hide Popup Controls", "PlayList Editor", "Pause/Resume", "Stop",
                                 "Mute toggle", "Next", "Previous", "Restart", "Setup",
                                 "Vantorix Media Player plug-in version: 1.0.23"));
  EXPECT_EQ(house.text("Status"), "Stopped");
  EXPECT_EQ(house.text("Mute"), "Not Muted");
  EXPECT_EQ(house.text("Loop Mode"), "No Loop");
}

TEST_F(TheHouse, TellsItsStartInTheLog) {
  ASSERT_TRUE(house.startReady());
  EXPECT_TRUE(house.logHas("Info: Media Player plug-in version: 1.0.23"));
  const std::string log = house.log();
  EXPECT_THAT(log, HasSubstr("Info: Windows Media Player version: 9."));
  EXPECT_THAT(log, HasSubstr("Startup: Media Player foreground initialization completed"));
  EXPECT_THAT(log, HasSubstr("Startup: Media Player background initialization completed"));
  EXPECT_TRUE(house.logHas("Initialization Completed"));  // the trigger
}

TEST_F(TheHouse, StopsInOrderAndFindsItselfAgain) {
  ASSERT_TRUE(house.startReady());
  const std::string address = house.device("Status")["address"];
  EXPECT_EQ(house.press("Mute", "Vol Up"), 200);
  EXPECT_EQ(house.press("Loop Mode", "Loop toggle"), 200);
  EXPECT_EQ(house.press("Shuffle Mode", "Shuffle toggle"), 200);
  ASSERT_TRUE(house.textBecomes("Loop Mode", "Loop"));
  ASSERT_TRUE(house.textBecomes("Shuffle Mode", "Shuffle"));
  house.server().signal(SIGTERM);
  EXPECT_EQ(house.server().wait(), 0) << house.server().output();

  ASSERT_TRUE(house.startReady());
  EXPECT_EQ(house.device("Status")["address"], address);
  EXPECT_EQ(house.state()["devices"].size(), 14U);
  EXPECT_TRUE(house.textBecomes("Loop Mode", "Loop"));
  EXPECT_TRUE(house.textBecomes("Shuffle Mode", "Shuffle"));
  std::ifstream file(house.data() / "config" / "vxif_WMP.ini");
  const std::string ini((std::istreambuf_iterator<char>(file)), {});
  EXPECT_THAT(ini, HasSubstr("Volume=60"));
}

TEST_F(TheHouse, RefusesASecondServerOnTheSameBus) {
  ASSERT_TRUE(house.startReady());
  const support::TempFolder other;
  support::Process second(
      {STANDIN_PROGRAM, "--port", "0", "--data", other.path().string(), "--bus", house.busAddress()});
  EXPECT_EQ(second.wait(), 1);
  EXPECT_THAT(second.output(), HasSubstr("vantorix-standin: The name org.vantorix.Host is taken"));
  EXPECT_FALSE(std::filesystem::exists(other.path() / "house.db"));
  EXPECT_EQ(house.pluginState(), "ready");
}

TEST_F(TheHouse, RefusesASecondServerOnTheSamePort) {
  ASSERT_TRUE(house.startReady());
  const support::TempFolder other;
  const support::BusDaemon bus;
  support::Process second({STANDIN_PROGRAM, "--port", std::to_string(house.port()), "--data",
                           other.path().string(), "--bus", bus.address()});
  EXPECT_EQ(second.wait(), 1);
  EXPECT_THAT(second.output(), HasSubstr("vantorix-standin: Can't listen on 127.0.0.1 port " +
                                         std::to_string(house.port()) + ": it is in use or not allowed"));
}

TEST_F(TheHouse, RefusesASecondServerOnTheSameData) {
  ASSERT_TRUE(house.startReady());
  const support::BusDaemon bus;
  support::Process second(
      {STANDIN_PROGRAM, "--port", "0", "--data", house.data().string(), "--bus", bus.address()});
  EXPECT_EQ(second.wait(), 1);
  EXPECT_THAT(second.output(), HasSubstr("vantorix-standin: The data folder " + house.data().string() +
                                         " is in use by another server"));
}

TEST_F(TheHouse, AServerWithoutABusSaysSo) {
  support::Process lonely({STANDIN_PROGRAM, "--port", "0", "--data", house.data().string(), "--bus",
                           "unix:path=/nonexistent/bus"});
  EXPECT_EQ(lonely.wait(), 1);
  EXPECT_THAT(lonely.output(),
              HasSubstr("vantorix-standin: There is no message bus at unix:path=/nonexistent/bus: "));
}
