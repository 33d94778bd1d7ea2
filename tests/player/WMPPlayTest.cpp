#include "support/LibraryHouse.hpp"

using support::LibraryHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class PlayByName : public LibraryHouse {
 protected:
  void SetUp() override {
    LibraryHouse::SetUp();
    first = library.addTrack("Track One", "Joni Mitchell", "Greatest Hits", "Folk");
    second = library.addTrack("What's Up?", "Joni Mitchell", "Greatest Hits", "Folk");
  }
  std::int32_t play(const std::string& category, const std::string& name, const std::string& title) {
    journal.clear();
    return plugin.playRequests.WMPPlay(category, name, title);
  }
  /// The message of a dropped request is logged and spoken, and nothing is told to the player.
  void expectRefusal(const std::string& category, const std::string& name, const std::string& title,
                     const std::string& message) {
    EXPECT_EQ(play(category, name, title), -1);
    EXPECT_TRUE(logged("Error", "Media Player: " + message)) << ::testing::PrintToString(journal.lines());
    EXPECT_TRUE(journal.has("Speak(\"Error; " + message + "\", True)"));
    EXPECT_THAT(playerCalls(), IsEmpty());
  }
  player::PlayTarget& target = plugin.playTarget;
  support::FakeMediaRef first, second;
};

}  // namespace

TEST_F(PlayByName, AGroupPlaysWholeForAnEmptyTitleAndForTheEntireList) {
  EXPECT_EQ(play("album", "Greatest Hits", ""), 0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentPlaylist Greatest Hits", "player: play"));
  EXPECT_EQ(play("ALBUM", "Greatest Hits", "(Play entire list)"), 0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentPlaylist Greatest Hits", "player: play"));
  EXPECT_TRUE(target.PlayTargetPlayList);
  EXPECT_FALSE(target.PlayTargetMedia);
}

TEST_F(PlayByName, OneTitleOfAGroupPlaysAloneWithoutRegardToCase) {
  EXPECT_EQ(play("Artist", "Joni Mitchell", "TRACK one"), 0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentMedia Track One", "player: play"));
  EXPECT_EQ(target.PlayTargetMedia, first);
  EXPECT_TRUE(target.PlayTargetPlayList);
  EXPECT_EQ(target.CurrentSourceURL, "");
}

TEST_F(PlayByName, ALibraryTitlePlaysByName) {
  EXPECT_EQ(play("media library", "ignored", "Track One"), 0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentMedia Track One", "player: play"));
  EXPECT_EQ(target.CurrentSourceURL, "file:Track One");
  EXPECT_EQ(target.PlayTargetMedia, first);
  EXPECT_TRUE(target.PlayTargetPlayList);
}

TEST_F(PlayByName, TheWholeLibraryPlaysWithoutATitle) {
  EXPECT_EQ(play("Media Library", "", ""), 0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentPlaylist All", "player: play"));
}

TEST_F(PlayByName, AnAddressPlaysWithoutAskingTheLibrary) {
  EXPECT_EQ(play("url", "ignored", "http://radio"), 0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: URL http://radio", "player: play"));
  EXPECT_THAT(journal.with("library: "), IsEmpty());
  EXPECT_EQ(target.PlayTargetURL, "http://radio");
  EXPECT_EQ(target.CurrentSourceURL, "http://radio");
}

TEST_F(PlayByName, APlaylistWithoutMembersDoesNotExist) {
  library.addPlaylist("Empty");
  expectRefusal("PlayList", "Empty", "", "Cannot 'Play': PlayList 'Empty' does not exist");
}

TEST_F(PlayByName, AnUnknownPlaylistIsNonExistentAndAnUnknownAlbumDoesNotExist) {
  expectRefusal("playlist", "Nope", "", "Cannot 'Play': playlist 'Nope' is non-existent");
  expectRefusal("Album", "Nope", "", "Cannot 'Play': Album 'Nope' does not exist");
  expectRefusal("aLbUm", "", "", "Cannot 'Play': aLbUm '' is non-existent");
}

TEST_F(PlayByName, AMissingTitleIsToldWithItsGroup) {
  expectRefusal("Album", "Greatest Hits", "Carey",
                "Cannot 'Play': 'Carey' in Album 'Greatest Hits' does not exist");
  expectRefusal("Media Library", "", "Carey", "Cannot 'Play': 'Carey' does not exist in the Media Library");
}

TEST_F(PlayByName, ATitleBehindAMemberThatCantBeReadIsRefusedAndLeavesNoItem) {
  library.addPlaylist("Gaps", {nullptr, first});
  expectRefusal("PlayList", "Gaps", "Track One",
                "Cannot 'Play': 'Track One' in PlayList 'Gaps' does not exist");
  EXPECT_FALSE(target.PlayTargetMedia);
  EXPECT_EQ(target.PlayTargetURL, "");
}

TEST_F(PlayByName, TheMessageHasTheTitleAsTheLibraryKnowsIt) {
  play("Album", "Greatest Hits", "");
  library.tracks.pop_back();
  expectRefusal("Media Library", "", "What s Up",
                "Cannot 'Play': 'What's Up?' does not exist in the Media Library");
}

TEST_F(PlayByName, AFailedRequestLeavesNoItemAndTheLastAddress) {
  play("URL", "", "http://radio");
  EXPECT_EQ(play("PlayList", "Nope", ""), -1);
  EXPECT_EQ(target.PlayTargetURL, "");
  EXPECT_EQ(target.CurrentSourceURL, "http://radio");
  play("Artist", "Joni Mitchell", "Track One");
  ASSERT_TRUE(target.PlayTargetMedia);
  EXPECT_EQ(play("PlayList", "Nope", ""), -1);
  EXPECT_FALSE(target.PlayTargetMedia);
  EXPECT_FALSE(target.PlayTargetPlayList);
}

TEST_F(PlayByName, ARequestThatTheHostLetsInMeanwhileDisturbsNeither) {
  const auto other = library.addTrack("Solo?", "Chet Baker", "Sings", "Jazz");
  // The first name to be registered calls the host, which lets the second request in.
  bool once = true;
  host->answers["SaveINISetting"] = [&](base::Args&) {
    if (once) {
      once = false;
      EXPECT_EQ(plugin.playRequests.WMPPlay("Album", "Sings", ""), 0);
    }
    return base::Value();
  };
  EXPECT_EQ(play("Album", "Greatest Hits", "What's Up?"), 0);
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentPlaylist Sings", "player: play",
                                         "player: currentMedia What's Up?", "player: play"));
  EXPECT_EQ(target.PlayTargetMedia, second);
}

TEST_F(PlayByName, WithoutSpeechTheMessageIsStillLogged) {
  host->settings["speakplaybackerrors"] = "False";
  EXPECT_EQ(play("PlayList", "Nope", ""), -1);
  EXPECT_TRUE(logged("Error", "Media Player: Cannot 'Play': PlayList 'Nope' is non-existent"));
  EXPECT_THAT(journal.with("Speak"), IsEmpty());
}

TEST_F(PlayByName, AnUnknownCategoryIsAnUnexpectedFailure) {
  EXPECT_EQ(play("Radio", "x", "y"), 0);
  EXPECT_THAT(journal.lines(),
              ElementsAre("WriteLog(\"Error\", \"Media Player: Could not complete procedure WMPCalls/WMPPlay "
                          "Error # 91: Object missing\")"));
}

TEST_F(PlayByName, APlayerThatFailsIsLoggedAndCountsAsPlayed) {
  wmp9->failing = {"play"};
  EXPECT_EQ(play("URL", "", "http://radio"), 0);
  EXPECT_TRUE(logged("Error",
                     "Media Player: Could not complete procedure WMPCalls/WMPPlay Error # 57: Input or "
                     "output failed"));
  EXPECT_THAT(journal.with("Speak"), IsEmpty());
}

TEST_F(PlayByName, ThePlugInsOwnLibraryLeadsHere) {
  EXPECT_EQ(plugin.ownLibrary.WMPPlay("URL", "", "http://radio"), 0);
  EXPECT_EQ(plugin.ownLibrary.AddMediaToPlayList("Vantorix"), base::Value());
  EXPECT_TRUE(journal.has("library: append http://radio to Vantorix"));
  plugin.ownLibrary.LoadNameTable();
  EXPECT_TRUE(journal.has("GetINISection(\"Genre\", \"vxif_WMP.ini\")"));
}
