#include <gtest/gtest.h>

#include "engine/common/Fixtures.hpp"

namespace engine::testing {
namespace {

/// What the player tells whoever shows it.
class ChangesTold : public PlayerTest {
 protected:
  void SetUp() override {
    addTrack("1.wav", "One", "Ann", "Blue", "Jazz", 1);
    startWith(1);
    ASSERT_TRUE(until([&] { return player->playState() == player::kStopped; }));
    settle();
  }
  /// What was posted so far is told, and counted no more.
  void settle() {
    for (int i = 0; i < 3; ++i) loop.pump();
    told.changes = told.soughts = 0;
  }
  int changesTold() {
    loop.pump();
    return told.changes;
  }
};

TEST_F(ChangesTold, EachThingThatIsShownIsTold) {
  const std::vector<std::pair<const char*, std::function<void()>>> steps{
      {"volume", [&] { player->settings().volume(20); }},
      {"mute", [&] { player->settings().mute(true); }},
      {"loop", [&] { player->settings().setMode("loop", true); }},
      {"shuffle", [&] { player->settings().setMode("shuffle", true); }},
      {"list", [&] { player->currentPlaylist(player->mediaCollection().getAll()); }},
      {"state", [&] { player->controls().play(); }}};
  for (const auto& [name, step] : steps) {
    settle();
    step();
    EXPECT_GT(changesTold(), 0) << name;
  }
}

TEST_F(ChangesTold, ThoseOfOneStepAreToldOnce) {
  for (int volume = 0; volume < 50; ++volume) player->settings().volume(volume);
  player->settings().mute(true);
  EXPECT_EQ(told.changes, 0);
  EXPECT_EQ(changesTold(), 1);
}

TEST_F(ChangesTold, AChosenPositionIsToldAsSuch) {
  player->controls().currentPosition(0.1);
  EXPECT_EQ(changesTold(), 1);
  EXPECT_EQ(told.soughts, 1);
  player->settings().volume(20);
  EXPECT_EQ(changesTold(), 2);
  EXPECT_EQ(told.soughts, 1);
}

}  // namespace
}  // namespace engine::testing
