#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using ::testing::HasSubstr;

namespace {

support::RealHouse::Setup WithVersion(const std::string& music, const std::string& version) {
  support::RealHouse::Setup setup;
  setup.music = music;
  setup.serverWords = {"--host-version", version};
  return setup;
}

}  // namespace

TEST(AHouseOfAnOldVersion, ShowsWhyThePlugInRefuses) {
  const support::SmallMusic music(1);
  support::RealHouse house(WithVersion(music.path(), "1.6.50"));
  house.start();
  ASSERT_TRUE(house.becomes("failed"));
  EXPECT_EQ(house.state()["plugin"]["reason"],
            "Vantorix version 1.6.51 or higher required to run Media Player");
  EXPECT_EQ(house.state()["devices"].size(), 0U);
}

TEST(APlayerConfiguration, ThatRefusesTheLibraryIsShownAsTheReason) {
  const support::SmallMusic music(1);
  support::RealHouse house({.music = music.path()});
  house.configurePlayer("[library]\naccess = none\n");
  house.start();
  ASSERT_TRUE(house.becomes("failed"));
  EXPECT_EQ(house.state()["plugin"]["reason"], "Windows Media Player - Media Library, permission denied");
}

TEST(APlayerConfiguration, ThatCannotBeUnderstoodIsToldWithItsLineAndTheHouseIsReady) {
  const support::SmallMusic music(1);
  support::RealHouse house({.music = music.path()});
  house.configurePlayer("[library]\nfolder = /music\nvolume eleven\n");
  ASSERT_TRUE(house.startReady());
  EXPECT_TRUE(house.logHas("line 3: \"volume eleven\" is not understood"));
}

TEST(AHouseWithoutAFreeHouseCode, ShowsWhyThePlugInFailed) {
  const support::SmallMusic music(1);
  support::RealHouse house({.music = music.path()});
  house.start();
  ASSERT_TRUE(house.becomes("ready"));
  // All 26 house codes are taken by other devices, and the plug-in's own are to be made anew.
  {
    bus::PollLoop loop;
    bus::Connection connection(loop, house.busAddress());
    const auto host = connection.proxy("org.vantorix.Host", "/host");
    for (char code = 'A'; code <= 'Z'; ++code) {
      const base::Value key = host->invoke("NewDevice", "Lamp");
      base::Deref(host->invoke("GetDevice", key)).put("hc", std::string(1, code));
    }
    host->invoke("SaveINISetting", "Settings", "HouseCodeSet", "-1", "vxif_WMP.ini");
  }
  house.server().signal(SIGTERM);
  ASSERT_EQ(house.server().wait(), 0);
  house.start();
  EXPECT_TRUE(
      house.logHas("Error: Media Player background initialization FAILED: Media Player Error: Sorry, all "
                   "device codes used"));
}

TEST(AMusicFolder, ThatDoesNotExistIsToldAndTheHouseIsReady) {
  support::RealHouse house({.music = "/nonexistent/music"});
  ASSERT_TRUE(house.startReady());
  EXPECT_TRUE(house.logHas("/nonexistent/music"));
}

TEST(AMusicFolder, WithAFileThatIsNoMusicPlaysTheRest) {
  const support::SmallMusic music(2);
  std::ofstream(music.path() + "/Broken.flac") << "this is no music";
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  EXPECT_TRUE(house.logHas("Broken.flac"));
  house.press("Status", "Restart");
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
}

TEST(AMusicFolder, ThatVanishesWhilePlayingIsToldAndTheHouseGoesOn) {
  support::TempFolder gone;
  const support::SmallMusic music(4);  // the second piece may be open already, the third is not
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  house.press("Status", "Restart");
  ASSERT_TRUE(house.textBecomes("Title", "One"));
  std::filesystem::rename(music.path(), gone.path() / "moved");
  EXPECT_TRUE(support::Eventually([&] { return house.text("Status") == "Stopped"; }));
  EXPECT_TRUE(house.logHas("Media Player Internal Error# ")) << house.log();
  EXPECT_EQ(house.pluginState(), "ready");
  std::filesystem::rename(gone.path() / "moved", music.path());
  house.press("Status", "Restart");
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
}

TEST(ALostPlugIn, IsShownAndStartedAgain) {
  const support::SmallMusic music(2);
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const auto process = connection.processOf("org.vantorix.vxif_WMP9");
  ASSERT_GT(process, 0U);
  ::kill(static_cast<pid_t>(process), SIGKILL);
  EXPECT_TRUE(house.logHas("The plug-in has been lost"));
  EXPECT_TRUE(house.becomes("ready"));
  EXPECT_EQ(house.state()["devices"].size(), 14U);
  EXPECT_NE(connection.processOf("org.vantorix.vxif_WMP9"), process);
}

TEST(ALostServer, EndsThePlugIn) {
  const support::SmallMusic music(2);
  support::RealHouse house({.music = music.path()});
  ASSERT_TRUE(house.startReady());
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  ASSERT_TRUE(connection.hasOwner("org.vantorix.vxif_WMP9"));
  house.server().kill();
  EXPECT_TRUE(support::Eventually([&] { return !connection.hasOwner("org.vantorix.vxif_WMP9"); }));
}
