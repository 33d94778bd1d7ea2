// What a screen reader finds of the player's windows, on the bus on which it looks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"
#include "support/desktop/ScreenReader.hpp"
#include "support/desktop/XServer.hpp"

using support::Eventually;
using ::testing::IsSupersetOf;

namespace {

class ReadAloud : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(house.startReady()) << house.server().output(); }
  /// "role: name" of all that the window holds, once that is there.
  std::vector<std::string> in(const std::string& title, const std::string& wanted) {
    std::vector<std::string> all;
    Eventually([&] {
      all.clear();
      if (const auto window = reader.window(title)) read(*window, all);
      return std::find(all.begin(), all.end(), wanted) != all.end();
    });
    return all;
  }
  void read(const support::ScreenReader::Thing& thing, std::vector<std::string>& all) {
    all.push_back(reader.role(thing) + ": " + reader.name(thing));
    for (const auto& child : reader.children(thing)) read(child, all);
  }

  support::XServer screen;
  support::SmallMusic music;
  support::BusDaemon session;
  support::ScreenReader reader{session.address()};
  support::RealHouse house{
      {.music = music.path(), .display = screen.display(), .sessionBus = session.address()}};
};

TEST_F(ReadAloud, EveryControlOfThePopupWindowIsFoundByItsName) {
  ASSERT_TRUE(house.textBecomes("Display Controls", "Show"));
  EXPECT_THAT(in("Vantorix Media Player", "slider: Volume"),
              IsSupersetOf({"push button: Play", "push button: Stop", "push button: Previous",
                            "push button: Next", "push button: Mute", "slider: Position", "slider: Volume",
                            "menu item: Play...", "menu item: Settings"}));
}

TEST_F(ReadAloud, EveryControlOfThePlaylistEditorIsFoundByItsName) {
  ASSERT_EQ(house.choose("PlayList Editor"), 200);
  EXPECT_THAT(in("Vantorix PlayList Editor", "push button: Move Up"),
              IsSupersetOf({"push button: New PlayList", "push button: Rename P/L", "push button: Delete",
                            "push button: Move Up", "push button: Move Down", "push button: Close",
                            "tree: Sources"}));
}

}  // namespace
