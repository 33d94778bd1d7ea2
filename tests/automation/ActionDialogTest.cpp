#include "support/EventHouse.hpp"

using support::EventHouse;
using support::FakeControls;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

class ActionDialog : public EventHouse {
 protected:
  void SetUp() override {
    EventHouse::SetUp();
    library.addPlaylist("Party", {library.addTrack("Song", "Some Band", "Blue", "Jazz")});
    library.attributes["album"] = {"Blue", "abbey <Road>"};
    library.attributes["artist"] = {"Rock & Roll", "Some Band"};
    library.attributes["genre"] = {"Jazz"};
    plugin.state.RefreshActions = true;
  }
  std::string dialog(const std::string& action) {
    base::Args args{base::Value(action)};
    const std::string shown = base::ToText(plugin.vxif()->call("ActionUI", args));
    found = base::ToText(args[0]);
    return shown;
  }
  /// The row with that label, without its carriage return.
  static std::string Row(const std::string& text, const std::string& label) {
    const std::size_t at = text.find("\t" + label + "\t");
    if (at == std::string::npos) return "no row " + label;
    const std::size_t start = text.rfind('\r', at) + 1;
    return text.substr(start, text.find('\r', at) - start);
  }
  std::string found;  ///< what the argument came back as
  const std::string& state = plugin.openActionDialog.ActionDialogState;
};

constexpr const char* kReduced =
    "Media Player Actions\t5\t12\tClick 'Submit' below, to refresh the list of titles or save actions\t\r"
    "\t\t1\t0\tAction\tNo Action\tTo enable a Media Player action: Select this, click \"OK\" or \"SUBMIT\", "
    "then return here\tYou can avoid this message by selecting \"Always Refresh Media Player Event Actions\" "
    "in Setup\r"
    "\t\t2\t0\tPlayLists\t\r\t\t2\t0\tAlbums\t\r\t\t2\t0\tArtists\t\r\t\t2\t0\tGenres\t\r\t\t2\t0\tTitles\t\r"
    "\t\t2\t0\tURL or Title\r"
    "\t\t1\t0\tMode\tNo Action\tNo Shuffle and No Loop\tLoop Only\tShuffle Only\tShuffle and Loop\r"
    "\t\t4\t0\tRefresh Titles\t\t";

}  // namespace

TEST_F(ActionDialog, AFreshActionShowsAllListsAndNoTitles) {
  EXPECT_EQ(
      dialog(""),
      "Media Player Actions\t5\t12\tClick 'Submit' below, to refresh the list of titles or save actions\t\r"
      "\t\t1\t0\tAction\tNo Action\tPlay: PlayList\tPlay: Album\tPlay: Artist\tPlay: Genre\tPlay: Media "
      "Library\tPlay: URL\tStop\tPause\tResume\tNext\tPrevious\tRestart\tMute\tUnMute\tChange Mode only\r"
      "\t\t1\t0\tPlayLists\t\tParty\r\t\t1\t0\tAlbums\t\tabbey Road \tBlue\r"
      "\t\t1\t0\tArtists\t\tRock Roll\tSome Band\r\t\t1\t0\tGenres\t\tJazz\r\t\t1\t0\tTitles\t\r"
      "\t\t2\t0\tURL or Title\r"
      "\t\t1\t0\tMode\tNo Action\tNo Shuffle and No Loop\tLoop Only\tShuffle Only\tShuffle and Loop\r"
      "\t\t4\t0\tRefresh Titles\t\t");
  EXPECT_EQ(found, "");
  EXPECT_EQ(state, "");
  EXPECT_TRUE(plugin.state.ProgressWindowAllowed);
}

TEST_F(ActionDialog, WithoutRefreshAFreshActionShowsTwoPromptsAndNoLists) {
  plugin.state.RefreshActions = false;
  EXPECT_EQ(dialog(""), kReduced);
  EXPECT_EQ(state, "Not Initialized");
  EXPECT_THAT(journal.with("library: "), IsEmpty());
  EXPECT_EQ(dialog(Action("No Action")), kReduced);
}

TEST_F(ActionDialog, BeforeStartUpIsOverItShowsNoListsWhateverTheSettingSays) {
  plugin.state.Initialized = false;
  for (const bool refresh : {true, false}) {
    plugin.state.RefreshActions = refresh;
    for (const std::string& action : {std::string(), Action("Play: Album", "", "Blue")}) {
      EXPECT_EQ(dialog(action), kReduced) << refresh;
      EXPECT_EQ(state, "Not Initialized");
    }
  }
}

TEST_F(ActionDialog, AChosenPromptOrActionPaysForTheLists) {
  plugin.state.RefreshActions = false;
  EXPECT_THAT(dialog(Action("You can avoid this message by selecting")), HasSubstr("\tSome Band\r"));
  EXPECT_EQ(Row(dialog(Action("Play: Album", "", "Blue")), "Titles"),
            "\t\t1\t0\tTitles\t\t(Play entire list)\tSong");
  EXPECT_EQ(state, "Play: AlbumBlue");
}

TEST_F(ActionDialog, AWrongNumberOfFieldsIsLoggedAndTheDialogShownAllTheSame) {
  const std::string nine = Joined({"H0", "H1", "Stop", "", "", "", "", "", "", "No Action"});
  EXPECT_THAT(dialog(nine), HasSubstr("\tSome Band\r"));
  EXPECT_TRUE(logged("Error", "Media Player: Wrong number of arguments passed to ActionUI: 8"));
  EXPECT_TRUE(logged("Error", "Media Player: ActionUI string: " + nine));
}

TEST_F(ActionDialog, AStringWithoutAnActionFieldEndsEmptyWithItsLinesInTheLog) {
  EXPECT_EQ(dialog("nothing"), "");
  EXPECT_TRUE(logged("Error", "Media Player: Wrong number of arguments passed to ActionUI: 0"));
  EXPECT_TRUE(
      journal.has("WriteLog(\"Error\", \"Media Player: Could not complete procedure Media "
                  "Player/ActionUI Error # 9: Index out of range\")"));
  EXPECT_TRUE(logged("Error", "Media Player ActionUI partial action string: "));
}

TEST_F(ActionDialog, AnyNumberOfFieldsIsAnsweredAndAllButElevenOrTwelveAreLogged) {
  std::string action;
  for (int fields = 1; fields <= 20; ++fields) {
    action += fields == 1 ? "H0" : fields == 3 ? "\x02Stop" : "\x02";
    journal.clear();
    EXPECT_EQ(dialog(action).find("\tSome Band\r") != std::string::npos, fields >= 3) << fields;
    EXPECT_EQ(text("ActionUIFormat", action), fields < 3 ? "" : "Stop") << fields;
    const std::string wrong = "Media Player: Wrong number of arguments passed to ";
    const std::string highest = ": " + std::to_string(std::max(fields - 2, 0));
    EXPECT_EQ(logged("Error", wrong + "ActionUI" + highest), fields != 11 && fields != 12) << fields;
    EXPECT_EQ(logged("Error", wrong + "ActionUIFormat" + highest), fields != 11 && fields != 12) << fields;
  }
}

TEST_F(ActionDialog, TellsItsStepsToTheDebugLog) {
  plugin.state.DebugMessages = true;
  dialog("");
  std::vector<std::string> told;
  for (const std::string& line : journal.with("WriteLog(\"Debug\", \"Media Player: "))
    for (const char* wanted :
         {"Start ActionUI", "Getting", "Finished Media", "Checking", "ActionUI Finished"})
      if (line.find(std::string("Player: ") + wanted) != std::string::npos &&
          line.find("all playlists") == std::string::npos)
        told.push_back(line.substr(line.find(": ") + 2));
  EXPECT_THAT(told,
              ElementsAre("Start ActionUI with string: \")", "Getting PlayLists\")", "Getting Albums\")",
                          "Getting Artists\")", "Getting Genres\")", "Getting Media List\")",
                          "Finished Media List\")", "Checking for Illegal Characters\")",
                          "ActionUI Finished.  Result length: " +
                              std::to_string(base::CountCharacters(dialog(""))) + "\")"));
}

TEST_F(ActionDialog, EachActionHasItsLine) {
  const auto line = [&](const std::string& action) { return text("ActionUIFormat", action); };
  EXPECT_EQ(line(Action("No Action")), "");
  EXPECT_EQ(line(Action("Play: PlayList", "Party", "", "", "", "(Play entire list)", "", "Shuffle Only")),
            "Play: PlayList: Party/(Play entire list) Shuf:Y Rpt:N");
  EXPECT_EQ(line(Action("Play: Album", "", "Blue", "", "", "Track One")), "Play: Album: Blue/Track One");
  EXPECT_EQ(line(Action("Play: Artist", "", "", "Some Band", "", "", "", "Loop Only")),
            "Play: Artist: Some Band/(Play entire list) Shuf:N Rpt:Y");
  EXPECT_EQ(line(Action("Play: Genre", "", "", "", "Jazz", "(Play entire list)", "", "Shuffle and Loop")),
            "Play: Genre: Jazz/(Play entire list) Shuf:Y Rpt:Y");
  EXPECT_EQ(line(Action("Play: Media Library", "", "", "", "", "Please enter title below...", "Track One")),
            "Play: Media Library: Track One");
  EXPECT_EQ(
      line(Action("Play: URL", "", "", "", "", "Please enter URL below...", "x:y", "No Shuffle and No Loop")),
      "Play: URL: x:y Shuf:N Rpt:N");
  for (const char* word : {"Stop", "Pause", "Resume", "Next", "Previous", "Restart", "Mute", "UnMute"})
    EXPECT_EQ(line(Action(word)), word);
  EXPECT_EQ(line(Action("Change Mode only", "", "", "", "", "", "", "Loop Only")), " Shuf:N Rpt:Y");
  EXPECT_EQ(line(""), "");
}

TEST_F(ActionDialog, ATypedTitleStandsInForASelectedOne) {
  EXPECT_EQ(text("ActionUIFormat", Action("Play: Album", "", "Blue", "", "", "", "Typed")),
            "Play: Album: Blue/Typed");
}

TEST_F(ActionDialog, AnUnknownActionIsNamedWithoutABlankAndMarkupTurnsIntoBlanks) {
  EXPECT_EQ(text("ActionUIFormat", Action("stop")), "Unknown Action:stop");
  EXPECT_EQ(text("ActionUIFormat", Action("Play: URL", "", "", "", "", "", "a<b>&c")), "Play: URL: a b c");
}

TEST_F(ActionDialog, ALineWithAWrongNumberOfFieldsGivesWhatItHas) {
  const std::string nine = Joined({"H0", "H1", "Stop", "", "", "", "", "", "", "Loop Only"});
  EXPECT_EQ(text("ActionUIFormat", nine), "Stop Shuf:N Rpt:Y");
  EXPECT_TRUE(logged("Error", "Media Player: Wrong number of arguments passed to ActionUIFormat: 8"));
  EXPECT_TRUE(logged("Error", "Media Player: ActionUIFormat: " + nine));
  EXPECT_EQ(text("ActionUIFormat", "x"), "");
  EXPECT_EQ(text("ActionUIFormat", Joined({"H0", "H1", "Stop"})), "Stop");
}

TEST_F(ActionDialog, ALineNeverAsksTheLibrary) {
  text("ActionUIFormat", Action("Play: Album", "", "Blue"));
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(ActionDialog, ListsAreWidenedAndTheButtonStandsBesideTheTitles) {
  const auto controls = std::make_shared<FakeControls>(journal);
  (*controls)[12].top = 3000;
  (*controls)[12].left = 1500;
  callVxif("ModifyActionUI", controls);
  for (std::int32_t i = 1; i <= 15; ++i) EXPECT_EQ((*controls)[i].width, 7000) << i;
  EXPECT_EQ((*controls)[16].width, 100);
  EXPECT_EQ((*controls)[17].width, 100);
  EXPECT_EQ((*controls)[17].top, 2950);
  EXPECT_EQ((*controls)[17].left, 1500 + 7000 + 100);
}

TEST_F(ActionDialog, TooFewControlsAreLoggedAndWhatWasChangedStays) {
  const auto controls = std::make_shared<FakeControls>(journal, 9);
  callVxif("ModifyActionUI", controls);
  EXPECT_EQ((*controls)[9].width, 7000);
  EXPECT_TRUE(logged("Error",
                     "Media Player: Could not complete procedure Media Player/ModifyActionUI Error # "
                     "9: Index out of range"));
  callVxif("ModifyActionUI", base::Value(base::ObjectRef()));
  EXPECT_EQ(journal.with("WriteLog(\"Error\"").size(), 2U);
}

namespace {

class ActionJudged : public ActionDialog {
 protected:
  std::string judged(const std::string& action) { return text("ValidateActionUI", action); }
};

constexpr const char* kMustBeBlank =
    "Albums, Artists, Genres, PlayLists, and Titles must be blank when playing a URL or Media Library file!";
constexpr const char* kControlsAlone =
    "Albums, Artists, Genres, PlayLists, and Titles must be blank when specifying control actions!";

}  // namespace

TEST_F(ActionJudged, AGroupActionTakesItsOwnNameAlone) {
  plugin.openActionDialog.ActionDialogState = "Not Initialized";
  EXPECT_EQ(judged(Action("Play: PlayList", "Party", "Blue")),
            "Albums, Artists, and Genres must be blank when playing a playlist!");
  EXPECT_EQ(judged(Action("Play: PlayList")), "Please select a playlist to play!");
  EXPECT_EQ(judged(Action("Play: PlayList", "Party")), "");
  EXPECT_EQ(judged(Action("Play: Artist", "Party", "", "Band")),
            "Albums, PlayLists, and Genres must be blank when playing an artist!");
  EXPECT_EQ(judged(Action("Play: Artist")), "Please select an Artist to play!");
  EXPECT_EQ(judged(Action("Play: Artist", "", "", "Band")), "");
  EXPECT_EQ(judged(Action("Play: Album", "", "Blue", "", "Jazz")),
            "PlayLists, Artists, and Genres must be blank when playing an album!");
  EXPECT_EQ(judged(Action("Play: Album")), "Please select an Album to play!");
  EXPECT_EQ(judged(Action("Play: Album", "", "Blue")), "");
  EXPECT_EQ(judged(Action("Play: Genre", "", "", "Band", "Jazz")),
            "Albums, Artists, and PlayLists must be blank when playing a genre!");
  EXPECT_EQ(judged(Action("Play: Genre")), "Please select a Genre to play!");
  EXPECT_EQ(judged(Action("Play: Genre", "", "", "", "Jazz")), "");
}

TEST_F(ActionJudged, TypedTextStandsAloneOnOneLine) {
  for (const char* word : {"Play: URL", "Play: Media Library"}) {
    EXPECT_EQ(judged(Action(word, "", "Blue", "", "", "", "t")), kMustBeBlank) << word;
    EXPECT_EQ(judged(Action(word, "", "", "", "", "(Play entire list)", "t")), kMustBeBlank) << word;
    EXPECT_EQ(judged(Action(word, "", "", "", "", "Please enter title below...", "t")), "") << word;
    EXPECT_EQ(judged(Action(word, "", "", "", "", "", "one\rtwo")),
              "Error: Multiple lines found in Title or URL")
        << word;
    EXPECT_EQ(judged(Action(word, "", "", "", "", "", "one\ntwo")), "") << word;
  }
}

TEST_F(ActionJudged, TypedTextIsEnteredInTheCrossReferenceWhateverTheOutcome) {
  judged(Action("Play: URL", "", "", "", "", "", "http://a.b"));
  EXPECT_EQ(plugin.nameXref.LookupNameXref("Media Library", "http a b"), "http://a.b");
  judged(Action("Play: Media Library", "", "Blue", "", "", "", "What?"));
  EXPECT_EQ(plugin.nameXref.LookupNameXref("Media Library", "What"), "What?");
  const std::size_t before = plugin.nameXref.size();
  EXPECT_EQ(judged(Action("Play: URL")), "");
  EXPECT_EQ(plugin.nameXref.size(), before);
}

TEST_F(ActionJudged, AControlActionTakesNothingButItsMode) {
  EXPECT_EQ(judged(Action("Stop", "", "", "", "", "", "t")), kControlsAlone);
  EXPECT_EQ(judged(Action("Stop")), "");
  EXPECT_EQ(judged(Action("no such word", "Party")), kControlsAlone);
  EXPECT_EQ(judged(Action("No Action")), "");
  EXPECT_EQ(judged(Action("Change Mode only")), "");
  EXPECT_EQ(judged(Action("Change Mode only", "", "", "", "", "", "", "Loop Only")), "");
  for (const char* mode : {"Loop Only", ""})
    EXPECT_EQ(judged(Action("No Action", "", "", "", "", "", "", mode)),
              "Action must be 'Change Mode only' to change only the Mode!");
}

TEST_F(ActionJudged, AGroupThatWasChangedBehindItsTitlesAsksForTheButton) {
  dialog(Action("Play: Album", "", "Blue"));
  EXPECT_EQ(judged(Action("Play: Album", "", "Blue")), "");
  EXPECT_EQ(judged(Action("Play: Album", "", "Hejira")), "Refresh then verify Titles");
  EXPECT_EQ(judged(Action("Play: Artist", "", "", "Some Band")), "Refresh then verify Titles");
  EXPECT_EQ(judged(Action("Stop")), "");
}

TEST_F(ActionJudged, BehindTheDialogWithoutListsAGroupPasses) {
  plugin.state.RefreshActions = false;
  dialog("");
  EXPECT_EQ(judged(Action("Play: PlayList", "Party")), "");
}

TEST_F(ActionJudged, AStringOfAnyNumberOfFieldsPassesWhereNothingIsWrongWithThem) {
  std::string action;
  for (int fields = 1; fields <= 20; ++fields) {
    action += fields == 1 ? "H0" : fields == 3 ? "\x02Stop" : "\x02";
    EXPECT_EQ(judged(action), "") << fields;
  }
}

TEST_F(ActionJudged, AStringOfTooFewFieldsPassesWithALineInTheLog) {
  EXPECT_EQ(judged(""), "");
  EXPECT_THAT(journal.lines(), IsEmpty());
  EXPECT_EQ(judged(Joined({"H0", "H1", "Play: Album", "", "Blue"})), "");
  EXPECT_TRUE(logged("Error",
                     "Media Player: Could not complete procedure Media Player/ValidateActionUI Error "
                     "# 9: Index out of range"));
  EXPECT_EQ(judged(Joined({"H0", "H1", "Stop", "", "", "", "", "", "", "No Action"})), "");
}
