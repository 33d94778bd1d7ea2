#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>

#include "demo/Cover.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"
#include "support/desktop/Panel.hpp"
#include "support/desktop/XServer.hpp"

using support::Eventually;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

/// A house, and a user's session bus beside it, on which playerctl looks for the player.
class OnThePanel : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(house.startReady()) << house.server().output();
    ASSERT_TRUE(says({"status"}, "Stopped"));
  }
  /// What playerctl says, without the end of its line.
  std::string ask(const std::vector<std::string>& words) {
    std::vector<std::string> all{"playerctl", "-p", "vantorix"};
    all.insert(all.end(), words.begin(), words.end());
    support::Process playerctl(all, environment());
    playerctl.wait();
    std::string said = playerctl.output();
    if (said.ends_with('\n')) said.pop_back();
    return said;
  }
  bool says(const std::vector<std::string>& words, const std::string& wanted) {
    return Eventually([&] { return ask(words) == wanted; });
  }
  [[nodiscard]] std::vector<std::string> environment() const {
    return {"DBUS_SESSION_BUS_ADDRESS=" + session.address()};
  }
  double position() { return std::atof(ask({"position"}).c_str()); }

  support::SmallMusic music{30};
  support::BusDaemon session;
  support::RealHouse house{{.music = music.path(), .sessionBus = session.address()}};
};

}  // namespace

TEST_F(OnThePanel, ItPlaysPausesAndStepsLikeTheHousesOwnButtons) {
  EXPECT_EQ(ask({"play"}), "");
  EXPECT_TRUE(says({"status"}, "Playing"));
  EXPECT_TRUE(house.textBecomes("Status", "Playing"));
  EXPECT_TRUE(says({"metadata", "xesam:title"}, "One"));
  EXPECT_EQ(ask({"next"}), "");
  EXPECT_TRUE(says({"metadata", "xesam:title"}, "Two"));
  EXPECT_TRUE(house.textBecomes("Title", "Two"));
  EXPECT_EQ(ask({"previous"}), "");
  EXPECT_TRUE(says({"metadata", "xesam:title"}, "One"));
  EXPECT_TRUE(says({"status"}, "Playing"));
  EXPECT_EQ(ask({"play-pause"}), "");
  EXPECT_TRUE(says({"status"}, "Paused"));
  EXPECT_TRUE(house.textBecomes("Status", "Paused"));
  EXPECT_EQ(ask({"pause"}), "");
  EXPECT_EQ(ask({"status"}), "Paused") << "a pause is no toggle";
  EXPECT_EQ(ask({"stop"}), "");
  EXPECT_TRUE(says({"status"}, "Stopped"));
  EXPECT_TRUE(house.textBecomes("Status", "Stopped"));
}

TEST_F(OnThePanel, ItTellsWhatPlays) {
  ask({"play"});
  EXPECT_TRUE(says({"metadata", "xesam:album"}, "Counting"));
  EXPECT_EQ(ask({"metadata", "xesam:artist"}), "The Testers");
  EXPECT_EQ(ask({"metadata", "xesam:genre"}), "Numbers");
  EXPECT_EQ(ask({"metadata", "xesam:trackNumber"}), "1");
  EXPECT_EQ(ask({"metadata", "mpris:length"}), "30000000");
  EXPECT_EQ(ask({"metadata", "xesam:url"}), "file://" + music.path() + "/One.flac");
  const std::string first = ask({"metadata", "mpris:trackid"});
  EXPECT_THAT(first, StartsWith("'/org/vantorix/track/"));
  ask({"next"});
  EXPECT_TRUE(says({"metadata", "xesam:title"}, "Two"));
  EXPECT_NE(ask({"metadata", "mpris:trackid"}), first);
}

TEST_F(OnThePanel, ItSeeksWhereItIsSentAndStaysThereWhilePaused) {
  ask({"play"});
  ASSERT_TRUE(says({"status"}, "Playing"));
  ask({"pause"});
  ASSERT_TRUE(says({"status"}, "Paused"));
  ask({"position", "12"});
  EXPECT_TRUE(Eventually([&] { return std::abs(position() - 12) < 0.5; }));
  ask({"position", "5+"});
  EXPECT_TRUE(Eventually([&] { return std::abs(position() - 17) < 0.5; }));
  ask({"position", "100"});
  EXPECT_NEAR(position(), 17, 0.5) << "it has no such place";
}

TEST_F(OnThePanel, VolumeAndModesGoBothWays) {
  ask({"volume", "0.3"});
  EXPECT_TRUE(says({"volume"}, "0.300000"));
  house.press("Mute", "Vol Up");
  EXPECT_TRUE(says({"volume"}, "0.400000"));
  ask({"loop", "Playlist"});
  EXPECT_TRUE(house.textBecomes("Loop Mode", "Loop"));
  house.press("Loop Mode", "Loop toggle");
  EXPECT_TRUE(says({"loop"}, "None"));
  ask({"shuffle", "On"});
  EXPECT_TRUE(says({"shuffle"}, "On"));
  EXPECT_TRUE(house.textBecomes("Shuffle Mode", "Shuffle"));
}

TEST_F(OnThePanel, WhoeverListensHearsWhatTheHouseDoes) {
  support::Process listener(
      {"playerctl", "-p", "vantorix", "--follow", "metadata", "--format", "{{status}} {{xesam:title}}."},
      environment());
  house.press("Status", "Restart");
  EXPECT_THAT(listener.outputWith("Playing One."), HasSubstr("Playing One."));
  house.press("Status", "Next");
  EXPECT_THAT(listener.outputWith("Playing Two."), HasSubstr("Playing Two."));
  // While it is being opened the house's own button pauses nothing.
  ASSERT_TRUE(house.textBecomes("Title", "Two"));
  house.press("Status", "Pause");
  EXPECT_THAT(listener.outputWith("Paused Two."), HasSubstr("Paused Two."));
}

TEST_F(OnThePanel, AFileIsOpenedByItsAddress) {
  ask({"open", "file://" + music.path() + "/Three.flac"});
  EXPECT_TRUE(says({"metadata", "xesam:title"}, "Three"));
  EXPECT_TRUE(says({"status"}, "Playing"));
}

TEST_F(OnThePanel, TheHouseGoesOnWithoutTheSessionAndComesBackWithIt) {
  ask({"play"});
  ASSERT_TRUE(house.textBecomes("Status", "Playing"));
  session.kill();
  EXPECT_EQ(house.press("Status", "Next"), 200);
  EXPECT_TRUE(house.textBecomes("Title", "Two"));
  session.again();
  EXPECT_TRUE(says({"metadata", "xesam:title"}, "Two"));
  EXPECT_EQ(house.pluginState(), "ready");
  EXPECT_THAT(house.log(), ::testing::Not(HasSubstr("started again")));
}

namespace {

/// With a title that has a picture.
class PictureOnThePanel : public OnThePanel {
 protected:
  PictureOnThePanel() {
    engine::TrackTags tags;
    tags.title = "Four";
    tags.artist = "The Testers";
    tags.album = "Painted";
    tags.track = 4;
    music.add("Four", 30, tags, cover);
  }
  const std::string cover = engine::demo::CoverPng(3, 400);
};

}  // namespace

TEST_F(PictureOnThePanel, IsAFileThatEverybodyCanOpen) {
  ask({"open", "file://" + music.path() + "/Four.flac"});
  ASSERT_TRUE(says({"metadata", "xesam:title"}, "Four"));
  const std::string kind = "file://";
  ASSERT_TRUE(Eventually([&] { return ask({"metadata", "mpris:artUrl"}).starts_with(kind); }));
  const std::string address = ask({"metadata", "mpris:artUrl"});
  std::ifstream file(address.substr(kind.size()), std::ios::binary);
  EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(file), {}) == cover) << address;
}

TEST(OnTheUsersDesktop, TheIconStandsInThePanelThoughTheHouseHasABusOfItsOwn) {
  const support::XServer screen;
  const support::SmallMusic music;
  const support::BusDaemon session;
  support::Panel panel(session.address());
  support::RealHouse house(
      {.music = music.path(), .display = screen.display(), .sessionBus = session.address()});
  ASSERT_TRUE(house.startReady()) << house.server().output();
  EXPECT_TRUE(Eventually([&] { return !panel.icons().empty(); }));
}

TEST(OnTheUsersDesktop, PanelsAreToldThatItHasGoneWithItsWindows) {
  const support::XServer screen;
  const support::SmallMusic music;
  const support::BusDaemon session;
  support::RealHouse house(
      {.music = music.path(), .display = screen.display(), .sessionBus = session.address()});
  ASSERT_TRUE(house.startReady()) << house.server().output();
  const auto canRaise = [&] {
    support::Process ask({"busctl", "--address=" + session.address(), "get-property",
                          "org.mpris.MediaPlayer2.vantorix", "/org/mpris/MediaPlayer2",
                          "org.mpris.MediaPlayer2", "CanRaise"});
    ask.wait();
    return ask.output();
  };
  ASSERT_TRUE(Eventually([&] { return canRaise() == "b true\n"; })) << canRaise();
  support::Process listener({"dbus-monitor", "--address", session.address()});
  listener.outputWith("NameLost");  // from then on it hears all
  screen.end();
  EXPECT_THAT(listener.outputWith("\"CanRaise\""), HasSubstr("PropertiesChanged"));
  EXPECT_EQ(canRaise(), "b false\n");
}

namespace {

/// A house whose icon a panel shows, and that panel's user.
class IconOfTheHouse : public ::testing::Test {
 protected:
  void SetUp() override {
    // A slow machine lets both clicks of a double click be far apart.
    house.configure("kdeglobals", "[KDE]\nDoubleClickInterval=6000000\n");
    ASSERT_TRUE(house.startReady()) << house.server().output();
    ASSERT_TRUE(Eventually([&] { return !panel.icons().empty(); }));
    ASSERT_TRUE(house.textBecomes("Display Controls", "Show"));
  }
  /// What the icon answers to a call, as busctl prints it.
  std::string call(std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"busctl", "--address=" + session.address(), "--", "call", panel.icons().back()});
    support::Process busctl(words);
    EXPECT_EQ(busctl.wait(), 0) << busctl.output();
    return busctl.output();
  }
  void doubleClick() {
    for (int i = 0; i < 2; ++i)
      call({"/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate", "ii", "0", "0"});
  }
  /// Chooses an item of its menu, which the panel shows by itself.
  void choose(const std::string& label) {
    const std::string menu =
        call({"/MenuBar", "com.canonical.dbusmenu", "GetLayout", "iias", "0", "-1", "0"});
    std::smatch found;
    const std::regex item("\\(ia\\{sv\\}av\\) (\\d+) [^(]*\"" + label + "\"");
    ASSERT_TRUE(std::regex_search(menu, found, item)) << menu;
    call({"/MenuBar", "com.canonical.dbusmenu", "Event", "isvu", found[1].str(), "clicked", "i", "0", "0"});
  }

  support::XServer screen;
  support::SmallMusic music;
  support::BusDaemon session;
  support::Panel panel{session.address()};
  support::RealHouse house{{.music = music.path(),
                            .plugin = "XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5 " VXIF_PROGRAM,
                            .display = screen.display(),
                            .sessionBus = session.address()}};
};

}  // namespace

TEST_F(IconOfTheHouse, HidesAndShowsTheControlsByDoubleClicks) {
  doubleClick();
  EXPECT_TRUE(house.textBecomes("Display Controls", "Hide"));
  doubleClick();
  EXPECT_TRUE(house.textBecomes("Display Controls", "Show"));
}

TEST_F(IconOfTheHouse, MutesByItsMenuAndHidesTheControls) {
  choose("_Mute");
  EXPECT_TRUE(house.textBecomes("Mute", "Muted")) << house.device("Mute").dump();
  choose("_Show / Hide");
  EXPECT_TRUE(house.textBecomes("Display Controls", "Hide"));
}
