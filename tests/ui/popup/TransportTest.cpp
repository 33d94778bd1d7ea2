// The transport bar of the popup window.
#include "support/PopupHouse.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

class Transport : public support::PopupHouse {
 protected:
  void SetUp() override {
    start();
    second();
    window.transports.clear();
    journal.clear();
    piece->seconds = 200;
  }
  void play(std::int32_t state) {
    wmp9->media = piece;
    wmp9->state = state;
  }
  const ui::TransportShown& last() { return window.transports.back(); }
  std::shared_ptr<support::FakeMedia> piece =
      std::make_shared<support::FakeMedia>("Dawn", "A", "Blue", "Folk");
};

}  // namespace

TEST_F(Transport, ShowsWhatThePlayerSays) {
  play(player::kPlaying);
  wmp9->position = 12.5;
  wmp9->level = 40;
  wmp9->muted = true;
  wmp9->unavailable = {"Next"};
  plugin.popup.transportChanged();
  EXPECT_EQ(last(), (ui::TransportShown{true, true, true, true, false, 12.5, 200, 40, true, "Dawn"}));
  piece->info["StreamTitle"] = "Ann - Sung by a station";
  wmp9->state = player::kPaused;
  wmp9->unavailable = {"Play", "Stop", "Previous"};
  plugin.popup.transportChanged();
  EXPECT_EQ(last(), (ui::TransportShown{false, false, false, false, true, 12.5, 200, 40, true,
                                        "Ann - Sung by a station"}));
}

TEST_F(Transport, TheFirstButtonPlaysAndPauses) {
  play(player::kPlaying);
  window.events->playOrPause();
  wmp9->state = player::kPaused;
  window.events->playOrPause();
  wmp9->state = player::kStopped;
  window.events->playOrPause();
  EXPECT_THAT(playerCalls(), ElementsAre("player: pause", "player: play", "player: play"));
}

TEST_F(Transport, TheFirstButtonPausesWhatWaitsForMoreOfItself) {
  play(player::kBuffering);
  plugin.popup.transportChanged();
  EXPECT_TRUE(last().playing);
  window.events->playOrPause();
  EXPECT_THAT(playerCalls(), ElementsAre("player: pause"));
}

TEST_F(Transport, WhatIsBeingOpenedIsPausedAndThatTakenBack) {
  play(player::kTransitioning);
  wmp9->unavailable = {"Play"};
  plugin.popup.transportChanged();
  EXPECT_TRUE(last().playing && last().canPlay) << "it pauses";
  window.events->playOrPause();
  wmp9->unavailable = {"Pause"};
  plugin.popup.transportChanged();
  EXPECT_TRUE(!last().playing && last().canPlay) << "it plays";
  window.events->playOrPause();
  EXPECT_THAT(playerCalls(), ElementsAre("player: pause", "player: play"));
}

TEST_F(Transport, WhereNothingCanBeDoneWhileItOpensNothingIs) {
  play(player::kTransitioning);
  wmp9->unavailable = {"Play", "Pause"};
  plugin.popup.transportChanged();
  EXPECT_FALSE(last().canPlay);
  window.events->playOrPause();
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(Transport, APauseByAnotherIsSeenWhileItOpens) {
  play(player::kTransitioning);
  wmp9->unavailable = {"Play"};
  plugin.popup.transportChanged();
  wmp9->unavailable = {"Pause"};
  second();
  EXPECT_FALSE(last().playing);
  wmp9->unavailable = {"Play"};
  second();
  EXPECT_TRUE(last().playing);
}

TEST_F(Transport, EachButtonIsTheCommandOfEverybody) {
  play(player::kPlaying);
  window.events->previous();
  window.events->next();
  window.events->stop();
  EXPECT_THAT(playerCalls(), ElementsAre("player: previous", "player: next", "player: stop"));
}

TEST_F(Transport, WhatIsNotAvailableIsNotDone) {
  play(player::kPlaying);
  wmp9->unavailable = {"Next", "Previous", "Pause", "Stop"};
  window.events->previous();
  window.events->next();
  window.events->stop();
  window.events->playOrPause();
  EXPECT_THAT(playerCalls(), IsEmpty());
}

TEST_F(Transport, SeekingStaysWithinTheTitle) {
  play(player::kPlaying);
  window.events->seek(61);
  window.events->seek(-5);
  window.events->seek(1e9);
  window.events->seek(std::numeric_limits<double>::quiet_NaN());
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentPosition 61", "player: currentPosition 0",
                                         "player: currentPosition 200"));
  journal.clear();
  piece->seconds = 0;
  window.events->seek(10);
  wmp9->media = nullptr;
  window.events->seek(10);
  EXPECT_THAT(playerCalls(), IsEmpty()) << "there is no such time";
}

TEST_F(Transport, TheVolumeAndMuteGoTogetherAsEverywhere) {
  window.events->volume(30);
  EXPECT_THAT(playerCalls(), ElementsAre("player: volume 30", "player: mute off"));
  journal.clear();
  window.events->volume(0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: volume 0", "player: mute on"));
  journal.clear();
  window.events->volume(400);
  window.events->mute();
  EXPECT_THAT(playerCalls(), ElementsAre("player: volume 100", "player: mute off", "player: mute on"));
  EXPECT_TRUE(last().mute);
}

TEST_F(Transport, LooksAtThePlayerOnceASecondWhileItPlays) {
  play(player::kPlaying);
  plugin.popup.transportChanged();
  window.transports.clear();
  loop.advance(base::Milliseconds(3000));
  EXPECT_THAT(window.transports, SizeIs(3));
  wmp9->state = player::kPaused;
  loop.advance(base::Milliseconds(1000));
  EXPECT_THAT(window.transports, SizeIs(4));
  EXPECT_FALSE(last().playing);
  loop.advance(base::Milliseconds(10'000));
  EXPECT_THAT(window.transports, SizeIs(4)) << "a player that rests is left alone";
}

TEST_F(Transport, LooksAtNothingWhileNobodySeesIt) {
  play(player::kPlaying);
  plugin.popup.transportChanged();
  plugin.calls.SetDisplayControls(false);
  second();
  window.transports.clear();
  loop.advance(base::Milliseconds(5000));
  plugin.popup.transportChanged();
  EXPECT_THAT(window.transports, IsEmpty());
  plugin.calls.SetDisplayControls(true);
  second();
  EXPECT_TRUE(last().playing) << "it is right when it comes back";
}

TEST_F(Transport, AWindowThatIsNowhereIsNotSeenEither) {
  window.windowHandle = 0;
  play(player::kPlaying);
  plugin.popup.transportChanged();
  loop.advance(base::Milliseconds(5000));
  EXPECT_THAT(window.transports, IsEmpty());
}

TEST_F(Transport, WhatOthersDoIsShownAtOnce) {
  plugin.calls.SetVolume(70);
  EXPECT_EQ(last().volume, 70);
  plugin.calls.SetMute(true);
  EXPECT_TRUE(last().mute);
  play(player::kPlaying);
  wmp9->events().PlayStateChange(player::kPlaying);
  loop.advance(base::Milliseconds(20));
  EXPECT_TRUE(last().playing);
  EXPECT_EQ(last().title, "Dawn");
}

TEST_F(Transport, APlayerThatFailsIsShownAsFarAsItAnswers) {
  play(player::kPlaying);
  wmp9->failing = {"read volume"};
  plugin.popup.transportChanged();
  EXPECT_EQ(last().volume, 0);
  EXPECT_EQ(last().title, "Dawn");
}
