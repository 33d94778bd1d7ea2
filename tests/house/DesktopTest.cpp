#include <gtest/gtest.h>

#include "support/BusPeer.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"
#include "support/desktop/XServer.hpp"

namespace {

/// A call of the plug-in that shows a message box.
std::future<void> Configure(const std::string& bus) {
  return std::async(std::launch::async, [bus] {
    support::BusPeer(bus, [](bus::Connection& connection, bus::PollLoop&) {
      connection.proxy("org.vantorix.vxif_WMP9", "/vxif")
          ->invoke("ConfigDevice", std::string("Q"), std::string("5"));
    });
  });
}

constexpr std::chrono::minutes kLongest(2);

bool Ready(const std::future<void>& call, std::chrono::milliseconds limit) {
  return call.wait_for(limit) == std::future_status::ready;
}

}  // namespace

TEST(TheDesktop, ABoxWaitsForItsReaderAndTheHouseGoesOn) {
  const support::SmallMusic music(120);
  const support::XServer screen;
  support::RealHouse house({.music = music.path(), .display = screen.display()});
  ASSERT_TRUE(house.startReady());
  auto call = Configure(house.busAddress());
  const std::string display = "DISPLAY=" + screen.display();
  support::Process finder(
      {"timeout", "120", "xdotool", "search", "--sync", "--onlyvisible", "--name", "^Media Player$"},
      {display});
  ASSERT_EQ(finder.wait(), 0) << finder.output();
  EXPECT_EQ(house.press("Loop Mode", "Loop toggle"), 200);
  EXPECT_TRUE(house.textBecomes("Loop Mode", "Loop"));
  EXPECT_FALSE(Ready(call, std::chrono::milliseconds(0)));
  // The window may be seen before it has the keyboard.
  EXPECT_TRUE(support::Eventually([&] {
    support::Process key({"xdotool", "key", "Return"}, {display});
    key.wait();
    return Ready(call, std::chrono::milliseconds(300));
  }));
  EXPECT_NO_THROW(call.get());
}

TEST(TheDesktop, ThePopupControlsAreSeenAndTheirDeviceFollowsThem) {
  const support::SmallMusic music;
  const support::XServer screen;
  support::RealHouse house({.music = music.path(), .display = screen.display()});
  ASSERT_TRUE(house.startReady());
  support::Process finder(
      {"timeout", "120", "xdotool", "search", "--sync", "--onlyvisible", "--name", "^Vantorix Media Player$"},
      {"DISPLAY=" + screen.display()});
  ASSERT_EQ(finder.wait(), 0) << finder.output();
  EXPECT_TRUE(house.textBecomes("Display Controls", "Show"));
  ASSERT_EQ(house.press("Display Controls", "Show/Hide Controls"), 200);
  EXPECT_TRUE(house.textBecomes("Display Controls", "Hide"));
  ASSERT_EQ(house.press("Display Controls", "Show/Hide Controls"), 200);
  EXPECT_TRUE(house.textBecomes("Display Controls", "Show"));
}

TEST(TheDesktop, WithoutAScreenThePopupControlsAreFollowedAllTheSame) {
  const support::SmallMusic music;
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  EXPECT_TRUE(house.textBecomes("Display Controls", "Show"));
  ASSERT_EQ(house.press("Display Controls", "Show/Hide Controls"), 200);
  EXPECT_TRUE(house.textBecomes("Display Controls", "Hide"));
}

TEST(TheDesktop, WithoutAScreenABoxIsALineOfTheLog) {
  const support::SmallMusic music;
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  auto call = Configure(house.busAddress());
  EXPECT_TRUE(Ready(call, kLongest));
  EXPECT_NO_THROW(call.get());
  EXPECT_TRUE(house.logHas("Warning: Media Player: Configure device Q5"));
}

TEST(TheDesktop, WithoutAScreenThePlaylistEditorIsALineOfTheLog) {
  const support::SmallMusic music;
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  ASSERT_TRUE(house.textBecomes("Display Controls", "Show"));
  const auto devices = house.state()["devices"];
  EXPECT_EQ(house.choose("PlayList Editor"), 200);
  EXPECT_TRUE(house.logHas("Warning: Media Player: There is no desktop to show the playlist editor on"));
  EXPECT_EQ(house.pluginState(), "ready");
  EXPECT_EQ(house.state()["devices"], devices) << "nothing else has come of it";
  EXPECT_EQ(house.log().find("Error: Media Player"), std::string::npos) << house.log();
}

TEST(TheDesktop, AScreenThatDoesNotAnswerIsNone) {
  const support::SmallMusic music;
  support::RealHouse house({.music = music.path(), .display = ":54321"});
  EXPECT_TRUE(house.startReady());
}

/// The screen goes while music plays and a box is open.
class WithoutItsScreen : public ::testing::TestWithParam<int> {};

TEST_P(WithoutItsScreen, TheMusicGoesOnAndTheVolumeIsKept) {
  const support::SmallMusic music;
  const support::XServer screen;
  support::RealHouse house({.music = music.path(), .display = screen.display()});
  ASSERT_TRUE(house.startReady());
  ASSERT_EQ(house.press("Status", "Restart"), 200);
  ASSERT_TRUE(house.textBecomes("Status", "Playing"));
  auto call = Configure(house.busAddress());
  support::Process finder(
      {"timeout", "120", "xdotool", "search", "--sync", "--onlyvisible", "--name", "^Media Player$"},
      {"DISPLAY=" + screen.display()});
  ASSERT_EQ(finder.wait(), 0) << finder.output();
  screen.end(GetParam());
  EXPECT_TRUE(
      house.logHas("Warning: Media Player: The desktop has gone, the player goes on without windows"));
  EXPECT_TRUE(Ready(call, kLongest));
  EXPECT_NO_THROW(call.get());
  EXPECT_TRUE(house.logHas("Warning: Media Player: Configure device Q5"));
  auto next = Configure(house.busAddress());
  EXPECT_TRUE(Ready(next, kLongest));
  EXPECT_EQ(house.text("Status"), "Playing");
  EXPECT_EQ(house.press("Status", "Next"), 200);
  EXPECT_TRUE(house.textBecomes("Title", "Two"));
  EXPECT_EQ(house.pluginState(), "ready");
  EXPECT_EQ(house.log().find("started again"), std::string::npos) << house.log();

  house.press("Mute", "Vol Up");
  house.server().signal(SIGTERM);
  EXPECT_EQ(house.server().wait(), 0) << house.server().output();
  std::ifstream file(house.data() / "config" / "vxif_WMP.ini");
  const std::string ini((std::istreambuf_iterator<char>(file)), {});
  EXPECT_NE(ini.find("Volume=60"), std::string::npos) << ini;
}

INSTANTIATE_TEST_SUITE_P(TheDesktop, WithoutItsScreen, ::testing::Values(SIGTERM, SIGKILL));
