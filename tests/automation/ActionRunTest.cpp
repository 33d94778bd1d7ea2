#include "support/EventHouse.hpp"

using support::EventHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class ActionRun : public EventHouse {
 protected:
  void SetUp() override {
    EventHouse::SetUp();
    wmp9->answersModes = false;
  }
  std::vector<std::string> run(const std::string& action) {
    journal.clear();
    callVxif("TriggerAction", action);
    return did();
  }
  /// What the player was told, and what was asked of the library by name.
  [[nodiscard]] std::vector<std::string> did() const {
    std::vector<std::string> lines;
    for (const std::string& line : journal.lines())
      if (line.rfind("player: ", 0) == 0 || line.rfind("WMPPlay", 0) == 0) lines.push_back(line);
    return lines;
  }
  [[nodiscard]] bool warned() const {
    return logged("Warning", "Media Player: Possible self-trigger, check event's trigger conditions");
  }
};

}  // namespace

TEST_F(ActionRun, GroupsArePlayedByNameAndTitle) {
  EXPECT_THAT(run(Action("Play: PlayList", "Party")), ElementsAre("WMPPlay(PlayList, Party, )"));
  EXPECT_THAT(run(Action("Play: Album", "", "Blue", "", "", "Carey", "Typed")),
              ElementsAre("WMPPlay(Album, Blue, Carey)"));
  EXPECT_THAT(run(Action("Play: Artist", "", "", "Joni", "", "", "Typed")),
              ElementsAre("WMPPlay(Artist, Joni, Typed)"));
  EXPECT_THAT(run(Action("Play: Genre", "", "", "", "Folk", "(Play entire list)")),
              ElementsAre("WMPPlay(Genre, Folk, (Play entire list))"));
}

TEST_F(ActionRun, TypedTextIsPlayedWhateverTheTitlesListShows) {
  EXPECT_THAT(run(Action("Play: Media Library", "", "", "", "", "Please enter title below...", "Carey")),
              ElementsAre("WMPPlay(Media Library, Media Library, Carey)"));
  EXPECT_THAT(run(Action("Play: URL", "", "", "", "", "", "x:y")), ElementsAre("WMPPlay(URL, URL, x:y)"));
}

TEST_F(ActionRun, ControlActionsReachThePlayer) {
  wmp9->state = player::kPlaying;
  EXPECT_THAT(run(Action("Stop")), ElementsAre("player: stop"));
  EXPECT_THAT(run(Action("Pause")), ElementsAre("player: pause"));
  EXPECT_THAT(run(Action("Next")), ElementsAre("player: next"));
  EXPECT_THAT(run(Action("Previous")), ElementsAre("player: previous"));
  EXPECT_THAT(run(Action("Mute")), ElementsAre("player: mute on"));
  EXPECT_THAT(run(Action("UnMute")), ElementsAre("player: mute off"));
  EXPECT_THAT(run(Action("Restart")), ::testing::Contains("player: currentPosition 0"));
  wmp9->state = player::kPaused;
  EXPECT_THAT(run(Action("Resume")), ElementsAre("player: play"));
}

TEST_F(ActionRun, TheModeComesBeforeTheActionShuffleBeforeLoop) {
  EXPECT_THAT(run(Action("Play: Album", "", "Blue", "", "", "", "", "Shuffle and Loop")),
              ElementsAre("player: setMode Shuffle on", "player: setMode Loop on", "WMPPlay(Album, Blue, )"));
  EXPECT_THAT(run(Action("Change Mode only", "", "", "", "", "", "", "Loop Only")),
              ElementsAre("player: setMode Shuffle off", "player: setMode Loop on"));
  EXPECT_THAT(run(Action("Change Mode only", "", "", "", "", "", "", "Shuffle Only")),
              ElementsAre("player: setMode Shuffle on", "player: setMode Loop off"));
  EXPECT_THAT(run(Action("Change Mode only", "", "", "", "", "", "", "No Shuffle and No Loop")),
              ElementsAre("player: setMode Shuffle off", "player: setMode Loop off"));
}

TEST_F(ActionRun, WithoutAnActionTheModeIsLeftAloneToo) {
  EXPECT_THAT(run(Action("No Action", "", "", "", "", "", "", "Loop Only")), IsEmpty());
}

TEST_F(ActionRun, AWordInAnotherCaseAppliesItsModeAndDoesNothingElse) {
  EXPECT_THAT(run(Action("stop", "", "", "", "", "", "", "Shuffle Only")),
              ElementsAre("player: setMode Shuffle on", "player: setMode Loop off"));
  EXPECT_THAT(run(Action("You can avoid this message by selecting", "", "", "", "", "", "", "Loop Only")),
              ElementsAre("player: setMode Shuffle off", "player: setMode Loop on"));
}

TEST_F(ActionRun, TheSameActionWithinFiveSecondsOnlyWarns) {
  EXPECT_THAT(run(Action("Play: Album", "", "Blue")), ElementsAre("WMPPlay(Album, Blue, )"));
  loop.advance(base::Milliseconds(3000));
  EXPECT_THAT(run(Action("Play: Album", "", "Blue")), IsEmpty());
  EXPECT_TRUE(warned());
  loop.advance(base::Milliseconds(2000));
  EXPECT_THAT(run(Action("Play: Album", "", "Blue")), IsEmpty()) << "exactly five seconds are not more";
  // The five seconds run from the action that was carried out, not from the attempts.
  loop.advance(base::Milliseconds(1000));
  EXPECT_THAT(run(Action("Play: Album", "", "Blue")), ElementsAre("WMPPlay(Album, Blue, )"));
  EXPECT_FALSE(warned());
}

TEST_F(ActionRun, AnotherActionRunsAtOnceAndTakesTheGuardOver) {
  run(Action("Play: Album", "", "Blue"));
  EXPECT_THAT(run(Action("Play: Album", "", "Hejira")), ElementsAre("WMPPlay(Album, Hejira, )"));
  EXPECT_THAT(run(Action("Play: Album", "", "Blue")), ElementsAre("WMPPlay(Album, Blue, )"));
}

TEST_F(ActionRun, TheFirstActionIsNeverHeldBack) {
  callVxif("TriggerAction", "");
  EXPECT_FALSE(warned());
  callVxif("TriggerAction", "");
  EXPECT_TRUE(warned());
}

TEST_F(ActionRun, FieldsBeyondTheLastAreLeftAlone) {
  std::string action =
      "H0\x02H1\x02Play: Album\x02\x02"
      "Blue";
  for (int fields = 5; fields <= 20; ++fields) {
    // The title is read only where there is room for it and for what is typed.
    EXPECT_THAT(run(action), ElementsAre("WMPPlay(Album, Blue, )")) << fields;
    action += '\x02';
  }
}

TEST_F(ActionRun, AFieldThatIsMissingCostsItsStatementAlone) {
  EXPECT_THAT(run(Joined({"H0", "H1", "Play: Album", "", "Blue"})), ElementsAre("WMPPlay(Album, Blue, )"));
  EXPECT_THAT(run(Joined({"H0", "H1", "Play: Genre", "", "Blue"})), IsEmpty());
  EXPECT_THAT(run("x"), IsEmpty());
}
