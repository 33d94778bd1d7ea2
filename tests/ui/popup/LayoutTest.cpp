// The popup window is as large as what is playing asks for.
#include "support/PopupHouse.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Layout : public support::PopupHouse {
 protected:
  void play(std::int32_t state, std::int32_t videoHeight = 0) {
    const auto media = std::make_shared<support::FakeMedia>("A", "B", "C", "D");
    media->height = videoHeight;
    wmp9->media = media;
    wmp9->state = state;
  }
  void layout() {
    journal.clear();
    plugin.popup.LayoutControls();
  }
  void cover() { plugin.popup.image("picture"); }
};

constexpr int kTwips = 15;

}  // namespace

TEST_F(Layout, TheBareBarWhereNothingPlays) {
  wmp9->state = player::kPlaying;
  wmp9->media = nullptr;
  layout();
  EXPECT_THAT(journal.lines(), ElementsAre("window: control height 62", "window: Image1 hidden",
                                           "window: control top 0", "window: height 1710"));
}

TEST_F(Layout, TheBareBarForSoundAlone) {
  plugin.calls.SetShowVisualizations(false);
  play(player::kPlaying);
  layout();
  EXPECT_EQ(window.windowHeight, (62 + 52) * kTwips);
}

TEST_F(Layout, RoomForThePictureOfASoundIsASetting) {
  play(player::kPlaying);
  plugin.calls.SetShowVisualizations(true);
  EXPECT_EQ(window.shownHeight, 212);
  EXPECT_EQ(window.windowHeight, (212 + 52) * kTwips);
  plugin.calls.SetShowVisualizations("toggle");
  EXPECT_EQ(window.shownHeight, 62);
}

TEST_F(Layout, APlayerThatRestsHasTheBareBar) {
  plugin.state.ShowVisualizations = true;
  for (const std::int32_t state : {player::kUndefined, player::kStopped, player::kReady}) {
    play(state, 480);
    layout();
    EXPECT_EQ(window.shownHeight, 62) << state;
  }
  for (const std::int32_t state : {player::kPaused, player::kPlaying, player::kScanForward,
                                   player::kBuffering, player::kTransitioning}) {
    play(state);
    layout();
    EXPECT_EQ(window.shownHeight, 212) << state;
  }
}

TEST_F(Layout, AVideoThatStartsWithTheControlsHiddenShowsThem) {
  shown();
  plugin.calls.SetDisplayControls(false);
  second();
  ASSERT_FALSE(window.isVisible);
  play(player::kPlaying, 480);
  layout();
  EXPECT_EQ(window.shownHeight, 212);
  EXPECT_TRUE(plugin.state.DisplayControlsShown);
  second();
  EXPECT_TRUE(window.isVisible);
  EXPECT_TRUE(journal.has(device("Show")));
}

TEST_F(Layout, AFilmBehindATitleOfTheSameAlbumShowsTheControlsToo) {
  shown();
  const auto goesTo = [&](std::int32_t state, std::int32_t height) {
    play(state, height);
    wmp9->events().PlayStateChange(state);
    loop.advance(base::Milliseconds(20));
  };
  goesTo(player::kPlaying, 0);
  plugin.calls.SetDisplayControls(false);
  second();
  ASSERT_FALSE(window.isVisible);
  goesTo(player::kTransitioning, 480);
  goesTo(player::kPlaying, 480);
  EXPECT_EQ(window.shownHeight, 212);
  second();
  EXPECT_TRUE(window.isVisible);
  plugin.calls.SetDisplayControls(false);
  second();
  goesTo(player::kPaused, 480);
  goesTo(player::kPlaying, 480);
  second();
  EXPECT_FALSE(window.isVisible) << "it was hidden while it played";
  goesTo(player::kTransitioning, 0);
  goesTo(player::kPlaying, 0);
  EXPECT_EQ(window.shownHeight, 62);
}

TEST_F(Layout, ACoverStandsAboveTheBar) {
  play(player::kPlaying);
  cover();
  layout();
  EXPECT_THAT(journal.lines(), ElementsAre("window: control height 62", "window: Image1 visible",
                                           "window: control top 200", "window: height 4710"));
}

TEST_F(Layout, ACoverIsHiddenWhereItIsNotWanted) {
  cover();
  plugin.calls.SetShowCoverArt(false);
  EXPECT_FALSE(window.imageShown);
  EXPECT_EQ(window.windowHeight, (62 + 52) * kTwips);
  plugin.calls.SetShowCoverArt(true);
  EXPECT_TRUE(window.imageShown);
}

TEST_F(Layout, ACoverThatIsTakenAwayTakesItsRoomAlong) {
  cover();
  plugin.mediaStatus.clearCover();
  EXPECT_FALSE(window.imageShown);
  EXPECT_EQ(window.windowHeight, (62 + 52) * kTwips);
}

TEST_F(Layout, WhatIsNoPictureLeavesWhatWasThere) {
  EXPECT_THROW(plugin.popup.image("no picture"), base::Failure);
  layout();
  EXPECT_FALSE(window.imageShown);
  cover();
  EXPECT_THROW(plugin.popup.image("no picture"), base::Failure);
  layout();
  EXPECT_TRUE(window.imageShown);
}

TEST_F(Layout, TheControlIsToldOfTheFullScreenAlsoWhereTheWindowIsMinimised) {
  window.isMinimised = true;
  plugin.calls.SetFullScreenVideo(true);
  EXPECT_TRUE(wmp9->full);
  journal.clear();
  plugin.calls.SetFullScreenVideo(false);
  EXPECT_FALSE(wmp9->full);
  EXPECT_THAT(journal.with("window:"), IsEmpty()) << "nothing is laid out";
}

TEST_F(Layout, APlayingStateLaysTheWindowOut) {
  plugin.state.ShowVisualizations = true;
  play(player::kPlaying);
  wmp9->events().PlayStateChange(player::kPlaying);
  loop.advance(base::Milliseconds(20));
  EXPECT_EQ(window.shownHeight, 212);
  wmp9->state = player::kStopped;
  wmp9->events().PlayStateChange(player::kStopped);
  loop.advance(base::Milliseconds(20));
  EXPECT_EQ(window.shownHeight, 62);
}

TEST_F(Layout, TheHeightValueOnlyGoesWhereItHasNoEffect) {
  plugin.popup.windowHeight(6540);
  plugin.popup.setWindowPos(-1, 83);
  EXPECT_EQ(journal.lines().back(), "window: SetWindowPos -1 6540 83");
  EXPECT_THAT(journal.with("window: height"), IsEmpty());
}

namespace {

class LayoutBeforeTheStart : public support::PopupHouse {
 protected:
  void SetUp() override {}
};

}  // namespace

TEST_F(LayoutBeforeTheStart, MakesNoPlayer) {
  plugin.popup.LayoutControls();
  plugin.popup.transportChanged();
  EXPECT_EQ(wmp9, nullptr);
  EXPECT_EQ(window.shownHeight, 62);
}
