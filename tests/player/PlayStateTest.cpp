#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class PlayStates : public House {
 protected:
  void SetUp() override {
    start();
    play("One", "First");
  }
  /// What the player has in hand from now on.
  void play(const std::string& title, const std::string& album) {
    wmp9->media = std::make_shared<support::FakeMedia>(title, "The Artist", album, "Jazz");
  }
  void stationSays(const std::string& title) {
    dynamic_cast<support::FakeMedia&>(*wmp9->media).info["StreamTitle"] = title;
    wmp9->events().StreamTitleChange();
  }
  /// The player's events, each handled before the next.
  void states(std::initializer_list<std::int32_t> all) {
    for (const std::int32_t state : all) {
      wmp9->state = state;
      wmp9->events().PlayStateChange(state);
      loop.advance(base::Milliseconds(2));
    }
  }
  [[nodiscard]] std::vector<std::string> triggers() const {
    std::vector<std::string> words;
    for (const std::string& line : journal.with("checktrigger(\"Media Player\x02*\x02"))
      words.push_back(line.substr(29, line.size() - 31));
    return words;
  }
};

}  // namespace

TEST_F(PlayStates, EachPublishesStatusAndValue) {
  wmp9->statusText = "Playing One";
  states({3});
  EXPECT_TRUE(journal.has("SetDeviceValueByName(\"Media Player Status\", 3)"));
  EXPECT_TRUE(published("Status", "Playing One"));
  EXPECT_EQ(plugin.playState.PlayerStatusText(), "Playing One");
  EXPECT_EQ(plugin.playState.LastPlayState(), 3);
}

TEST_F(PlayStates, AnEmptyStatusReadsStoppedWhateverTheState) {
  for (const std::int32_t state : {9, 3, 2, 6, 8, 1, 10, 42}) {
    journal.clear();
    states({state});
    EXPECT_TRUE(published("Status", "Stopped")) << state;
    EXPECT_EQ(plugin.playState.PlayerStatusText(), "") << state;
  }
}

TEST_F(PlayStates, AStartPublishesTheTitlesAndFiresItsTrigger) {
  states({9, 3});
  EXPECT_TRUE(published("Title", "One"));
  EXPECT_TRUE(published("Artist", "The Artist"));
  EXPECT_TRUE(published("Genre", "Jazz"));
  EXPECT_TRUE(published("Length", "03:25"));
  EXPECT_TRUE(published("Album", "First"));
  EXPECT_THAT(triggers(), ElementsAre("Playback Started"));
  EXPECT_TRUE(plugin.playState.PlaybackActive());
}

TEST_F(PlayStates, TheTitlesArePublishedInOrderBeforeTheTrigger) {
  states({3});
  std::vector<std::string> devices;
  for (const std::string& line : journal.with("SetDeviceStringByName(\"Media Player "))
    devices.push_back(line.substr(36, line.find('"', 36) - 36));
  EXPECT_THAT(devices, ElementsAre("Status", "Title", "Artist", "Genre", "Length", "Album"));
  EXPECT_EQ(journal.lines().back(), "checktrigger(\"Media Player\x02*\x02Playback Started\")");
}

TEST_F(PlayStates, WhatAStationSaysThatItPlaysGoesOnTheTitlesDeviceAlone) {
  states({9, 3});
  loop.advance(base::Milliseconds(150));
  journal.clear();
  stationSays("Ann - First");
  EXPECT_THAT(journal.lines(), ElementsAre(std::string("SetDeviceStringByName(\"Media Player Title\", \"") +
                                           kIcon + "Ann - First\", True)"));
  stationSays("Ben - Second");
  EXPECT_TRUE(published("Title", "Ben - Second"));
  EXPECT_THAT(triggers(), IsEmpty());
}

TEST_F(PlayStates, AStationThatHasSpokenBeforeItPlaysIsHeardAtItsStart) {
  stationSays("Ann - First");
  EXPECT_THAT(journal.with("SetDeviceStringByName(\"Media Player Title"), IsEmpty());
  states({9, 3});
  EXPECT_TRUE(published("Title", "Ann - First"));
}

TEST_F(PlayStates, AReturnFromPausePublishesStatusOnly) {
  states({3, 2});
  loop.advance(base::Milliseconds(150));
  journal.clear();
  wmp9->statusText = "Playing";
  states({3});
  EXPECT_THAT(journal.lines(), ElementsAre("SetDeviceValueByName(\"Media Player Status\", 3)",
                                           std::string("SetDeviceStringByName(\"Media Player Status\", \"") +
                                               kIcon + "Playing\", True)"));
  EXPECT_FALSE(plugin.playState.FindCoverArt().enabled());
  EXPECT_EQ(plugin.playState.LastPlayState(), 3);
}

TEST_F(PlayStates, AReturnFromScanningFiresNothing) {
  states({3, 4, 3, 5, 3});
  EXPECT_THAT(triggers(), ElementsAre("Playback Started"));
}

TEST_F(PlayStates, TheEndOfATrackInAPlaylistTransitionsAndStartsAgain) {
  states({3, 8});
  play("Two", "First");
  states({9, 3});
  EXPECT_THAT(triggers(), ElementsAre("Playback Started", "Transitioning", "Playback Started"));
  EXPECT_TRUE(published("Title", "Two"));
}

TEST_F(PlayStates, AStopAndANewStartSearchTheCoverTwice) {
  states({3});
  EXPECT_TRUE(plugin.playState.FindCoverArt().enabled());
  loop.advance(base::Milliseconds(150));
  EXPECT_FALSE(plugin.playState.FindCoverArt().enabled());
  states({1});
  EXPECT_FALSE(plugin.playState.PlaybackActive());
  EXPECT_EQ(plugin.playState.LastAlbum(), "First");
  states({3});
  EXPECT_THAT(triggers(), ElementsAre("Playback Started", "Playback Ended", "Playback Started"));
  EXPECT_TRUE(plugin.playState.FindCoverArt().enabled());
}

TEST_F(PlayStates, ATrackOfTheSameAlbumSearchesNoCoverAndKeepsTheAlbumDevice) {
  states({3});
  loop.advance(base::Milliseconds(150));
  journal.clear();
  play("Two", "First");
  states({9, 3});
  EXPECT_FALSE(plugin.playState.FindCoverArt().enabled());
  EXPECT_FALSE(published("Album", "First"));
  EXPECT_THAT(journal.with("popup:"), IsEmpty());
}

TEST_F(PlayStates, ATrackOfAnotherAlbumPublishesItClearsTheOldCoverAndSearches) {
  states({3});
  loop.advance(base::Milliseconds(150));
  journal.clear();
  play("Two", "Second");
  states({9, 3});
  EXPECT_TRUE(published("Album", "Second"));
  EXPECT_THAT(journal.with("popup:"),
              ElementsAre("popup: height 2970", "popup: clear Image1", "popup: layout"));
  EXPECT_TRUE(plugin.playState.FindCoverArt().enabled());
  EXPECT_EQ(plugin.playState.LastAlbum(), "Second");
}

TEST_F(PlayStates, WithoutCoverArtTheAlbumIsRefreshedOnEachTrackAndNothingIsSearched) {
  plugin.state.ShowCoverArt = false;
  states({3});
  journal.clear();
  play("Two", "First");
  states({9, 3});
  EXPECT_TRUE(published("Album", "First"));
  EXPECT_FALSE(plugin.playState.FindCoverArt().enabled());
  EXPECT_EQ(plugin.playState.LastAlbum(), "");
  EXPECT_TRUE(plugin.playState.PlaybackActive());
}

TEST_F(PlayStates, StoppedAndReadyBlankTheDevicesWhetherOrNotAnythingPlayed) {
  states({1});
  EXPECT_TRUE(published("Title", ""));
  EXPECT_THAT(triggers(), IsEmpty());
  journal.clear();
  states({10});
  EXPECT_TRUE(published("Title", ""));
}

TEST_F(PlayStates, ReadyEndsAnActivePlaybackToo) {
  states({3, 10});
  EXPECT_THAT(triggers(), ElementsAre("Playback Started", "Playback Ended"));
}

TEST_F(PlayStates, TheEndIsToldOnlyOnceStartUpIsOverTheStartAlways) {
  plugin.state.Initialized = false;
  states({3, 1});
  EXPECT_THAT(triggers(), ElementsAre("Playback Started"));
  EXPECT_FALSE(plugin.playState.PlaybackActive());
}

TEST_F(PlayStates, TransitioningFiresOnlyDuringPlayback) {
  states({9});
  EXPECT_THAT(triggers(), IsEmpty());
  EXPECT_EQ(plugin.playState.LastPlayState(), 9);
}

TEST_F(PlayStates, ANumberThatIsNoneDoesNothingBeyondTheStatus) {
  states({42});
  EXPECT_TRUE(journal.has("SetDeviceValueByName(\"Media Player Status\", 42)"));
  EXPECT_EQ(journal.lines().size(), 2U);
  EXPECT_EQ(plugin.playState.LastPlayState(), 42);
}

TEST_F(PlayStates, EventsDuringAHostCallAreHandledAfterTheCurrentOneInOrder) {
  bool once = true;
  host->answers["SetDeviceValueByName"] = [&](base::Args&) {
    if (once) {
      once = false;
      wmp9->events().PlayStateChange(9);
      wmp9->events().PlayStateChange(3);
      loop.advance(base::Milliseconds(5));
    }
    return base::Value();
  };
  states({1});
  EXPECT_THAT(journal.with("SetDeviceValueByName"),
              ElementsAre("SetDeviceValueByName(\"Media Player Status\", 1)",
                          "SetDeviceValueByName(\"Media Player Status\", 9)",
                          "SetDeviceValueByName(\"Media Player Status\", 3)"));
  EXPECT_GT(journal.find("SetDeviceValueByName(\"Media Player Status\", 9)"),
            journal.find("player: mute off"));
}

TEST_F(PlayStates, AFailureOutsideTheSkippedStretchIsLoggedAndTheLastStateKept) {
  host->failing = {"SetDeviceValueByName"};
  states({3});
  EXPECT_TRUE(logged("Error", "Media Player Error# 57: Input or output failed"));
  EXPECT_EQ(plugin.playState.LastPlayState(), 1);  // from start-up
  host->failing.clear();
  states({9});
  EXPECT_EQ(plugin.playState.LastPlayState(), 9);  // the queue goes on
}

TEST_F(PlayStates, AHostGoneDuringTheHandlingEndsTheProcess) {
  host->failing = {"SetDeviceValueByName"};
  host->failureNumber = base::number::kHostGone;
  states({3});
  EXPECT_TRUE(platform.ended);
  EXPECT_THAT(journal.with("WriteLog"), IsEmpty());
}

TEST_F(PlayStates, AFailureWhileTitlesArePublishedIsSkipped) {
  wmp9->media = nullptr;
  states({3});
  // Nothing to publish, and the trigger fires; reading the album behind it goes to the handler.
  EXPECT_THAT(triggers(), ElementsAre("Playback Started"));
  EXPECT_TRUE(logged("Error", "Media Player Error# 91: Object missing"));
  EXPECT_FALSE(plugin.playState.PlaybackActive());
}
