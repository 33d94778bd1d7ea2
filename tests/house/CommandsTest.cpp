#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using ::testing::HasSubstr;

namespace {

class Playing : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    ASSERT_EQ(house.press("Status", "Restart"), 200);
    ASSERT_TRUE(house.textBecomes("Status", "Playing"));
    ASSERT_TRUE(house.textBecomes("Title", "One"));
  }
  support::SmallMusic music;
  support::RealHouse house{{.music = music.path()}};
};

}  // namespace

TEST_F(Playing, ShowsWhatPlays) {
  EXPECT_TRUE(house.textBecomes("Artist", "The Testers"));
  EXPECT_TRUE(house.textBecomes("Album", "Counting"));
  EXPECT_TRUE(house.textBecomes("Genre", "Numbers"));
  EXPECT_TRUE(house.textBecomes("Length", "00:20"));
  EXPECT_EQ(house.device("Status")["value"], 3);
  EXPECT_TRUE(house.logHas("Playback Started"));
}

TEST_F(Playing, GoesToTheNextPieceAndBack) {
  EXPECT_EQ(house.press("Status", "Next"), 200);
  EXPECT_TRUE(house.textBecomes("Title", "Two"));
  EXPECT_TRUE(house.logHas("Transitioning"));
  EXPECT_EQ(house.press("Status", "Prev"), 200);
  EXPECT_TRUE(house.textBecomes("Title", "One"));
}

TEST_F(Playing, PausesAndResumesByTheSameButton) {
  house.press("Status", "Pause");
  EXPECT_TRUE(house.textBecomes("Status", "Paused"));
  EXPECT_EQ(house.device("Status")["value"], 2);
  house.press("Status", "Pause");
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
  EXPECT_EQ(house.text("Title"), "One");
}

TEST_F(Playing, StopsAndBlanksTheMediaDevices) {
  house.press("Status", "Stop");
  EXPECT_TRUE(house.textBecomes("Status", "Stopped"));
  EXPECT_TRUE(house.textBecomes("Title", ""));
  EXPECT_TRUE(house.textBecomes("Length", ""));
  EXPECT_TRUE(house.logHas("Playback Ended"));
}

TEST_F(Playing, TheDevicesFollowThePlayerNotTheButton) {
  house.press("Mute", "Mute toggle");
  EXPECT_TRUE(house.textBecomes("Mute", "Muted"));
  EXPECT_EQ(house.device("Mute")["status"], 2);
  house.press("Mute", "Vol Up");  // any change of the volume turns mute off
  EXPECT_TRUE(house.textBecomes("Mute", "Not Muted"));
  EXPECT_EQ(house.device("Mute")["status"], 3);
}

TEST_F(Playing, UnderstandsWhatIsSaid) {
  house.say("no loop");
  EXPECT_TRUE(house.textBecomes("Loop Mode", "No Loop"));
  house.say("player loop");
  EXPECT_TRUE(house.textBecomes("Loop Mode", "Loop"));
  house.say("mute the music");
  EXPECT_TRUE(house.textBecomes("Mute", "Muted"));
  house.say("volume up");
  EXPECT_TRUE(house.textBecomes("Mute", "Not Muted"));
  house.say("player stop");
  EXPECT_TRUE(house.textBecomes("Status", "Stopped"));
}

TEST_F(Playing, TheMenuReachesThePlayer) {
  EXPECT_EQ(house.choose("Pause/Resume"), 200);
  EXPECT_TRUE(house.textBecomes("Status", "Paused"));
  EXPECT_EQ(house.choose("Vantorix Media Player plug-in version: 1.0.23"), 200);
  EXPECT_EQ(house.choose("Stop"), 200);
  EXPECT_TRUE(house.textBecomes("Status", "Stopped"));
  EXPECT_EQ(house.choose("No such item"), 404);
}

TEST_F(Playing, AnUnknownButtonOrItemGivenByNameIsLogged) {
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  const auto vxif = connection.proxy("org.vantorix.vxif_WMP9", "/vxif");
  vxif->invoke("ButtonPress", "Explode");
  vxif->invoke("SelectMenu", "Explode");
  EXPECT_TRUE(house.logHas("Error: Media Player: Invalid button pushed: \"Explode\""));
  EXPECT_TRUE(house.logHas("Error: Media Player: Invalid menu item: \"Explode\" has been selected"));
}

TEST_F(Playing, TheSecondOfTwoPiecesFollowsByItself) {
  bus::PollLoop loop;
  bus::Connection connection(loop, house.busAddress());
  house.press("Status", "Next");
  ASSERT_TRUE(house.textBecomes("Title", "Two"));
  // The pieces are 20 seconds long: the house plays in real time.
  EXPECT_TRUE(support::Eventually([&] { return house.text("Title") == "Three"; }));
}
