// The dialogs of actions, triggers and conditions, from the plug-in's words to what the house stores.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "house/EventDialogUser.hpp"
#include "support/RealHouse.hpp"
#include "support/SmallMusic.hpp"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kEntireList = "(Play entire list)";
constexpr const char* kPrompt =
    "To enable a Media Player action: Select this, click \"OK\" or \"SUBMIT\", then return here";

class Dialogs : public ::testing::Test {
 protected:
  Dialogs() {
    engine::TrackTags tags;
    tags.artist = "Rock & Roll";
    tags.album = "Second";
    tags.genre = "Jazz";
    tags.title = "Four";
    tags.track = 4;
    music.add("Four", 2, tags);
  }
  void SetUp() override { ASSERT_TRUE(house.startReady()) << house.server().output(); }
  /// The plug-in itself, past the server.
  base::ObjectRef vxif() { return connection.proxy("org.vantorix.vxif_WMP9", "/vxif"); }
  std::string text(const char* operation, base::Value argument) {
    base::Args args{std::move(argument)};
    return base::ToText(vxif()->call(operation, args));
  }
  std::uint32_t process() { return connection.processOf("org.vantorix.vxif_WMP9"); }
  void openThere(const std::string& what, const std::string& stored = {}) {
    ASSERT_EQ(user.open(what, stored), 200) << user.said;
  }

  support::SmallMusic music{2};
  support::RealHouse house{{.music = music.path()}};
  bus::PollLoop loop;
  bus::Connection connection{loop, house.busAddress()};
  support::EventDialogUser user{house};
};

}  // namespace

TEST_F(Dialogs, AreDescribedInThesePlugInsWords) {
  EXPECT_EQ(
      text("ActionUI", ""),
      "Media Player Actions\t5\t12\tClick 'Submit' below, to refresh the list of titles or save "
      "actions\t\r"
      "\t\t1\t0\tAction\tNo Action\tPlay: PlayList\tPlay: Album\tPlay: Artist\tPlay: Genre\tPlay: Media "
      "Library\tPlay: URL\tStop\tPause\tResume\tNext\tPrevious\tRestart\tMute\tUnMute\tChange Mode "
      "only\r"
      "\t\t1\t0\tPlayLists\t\r"
      "\t\t1\t0\tAlbums\t\tCounting\tSecond\r"
      "\t\t1\t0\tArtists\t\tRock Roll\tThe Testers\r"
      "\t\t1\t0\tGenres\t\tJazz\tNumbers\r"
      "\t\t1\t0\tTitles\t\r"
      "\t\t2\t0\tURL or Title\r"
      "\t\t1\t0\tMode\tNo Action\tNo Shuffle and No Loop\tLoop Only\tShuffle Only\tShuffle and Loop\r"
      "\t\t4\t0\tRefresh Titles\t\t");
  EXPECT_EQ(text("TriggerUI", ""),
            "Media Player Triggers\t1\t0\tTrigger:\tPlayback Started\tPlayback "
            "Ended\tTransitioning\tInitialization Completed");
  EXPECT_EQ(text("ConditionUI", std::int16_t{1}),
            "Media Player Status\t1\t0\tStatus \tPlaying\tPaused\tMuted\r\t\t1\t0\tCondition:\tYes\tNo");
  EXPECT_EQ(text("ConditionUI", std::int16_t{2}),
            "Media Mode\t1\t0\tMode:\tShuffle Mode\tLoop Mode\r\t\t1\t0\tCondition:\tYes\tNo");
  EXPECT_EQ(text("ConditionUI", std::int16_t{3}), "");
}

TEST_F(Dialogs, OfAnActionShowsEveryRow) {
  openThere("action");
  EXPECT_EQ(user.form["title"], "Media Player Actions");
  EXPECT_EQ(user.form["help"], "Click 'Submit' below, to refresh the list of titles or save actions");
  EXPECT_EQ(user.form["interface"], "Media Player");
  EXPECT_THAT(user.form["notes"], IsEmpty());
  Lines rows;
  for (const auto& field : user.form["fields"])
    rows.push_back(std::to_string(field["number"].get<int>()) + " " + field["kind"].get<std::string>() + " " +
                   field["label"].get<std::string>() + ": " + field["value"].get<std::string>());
  EXPECT_THAT(
      rows, ElementsAre("2 list Action: No Action", "4 list PlayLists: ", "6 list Albums: ",
                        "8 list Artists: ", "10 list Genres: ", "12 list Titles: ", "14 text URL or Title: ",
                        "16 list Mode: No Action", "17 button Refresh Titles: "));
  EXPECT_THAT(user.options(6), ElementsAre("", "Counting", "Second"));
  EXPECT_THAT(user.options(8), ElementsAre("", "Rock Roll", "The Testers"));
  EXPECT_THAT(user.options(12), ElementsAre(""));
}

TEST_F(Dialogs, ThePlugInWidensTheListsAndPutsTheButtonBesideTheTitles) {
  openThere("action");
  for (const int number : {2, 4, 6, 8, 10, 12, 14}) EXPECT_EQ(user.field(number)["width"], 7000) << number;
  EXPECT_EQ(user.field(16)["width"], 3000) << "the modes keep their own width";
  EXPECT_EQ(user.field(17)["top"], user.field(12)["top"].get<int>() - 50);
  EXPECT_EQ(user.field(17)["left"], user.field(12)["left"].get<int>() + 7000 + 100);
}

TEST_F(Dialogs, RefreshTitlesFillsTheTitlesOfTheChosenGroup) {
  openThere("action");
  ASSERT_EQ(user.press(17, {{2, "Play: Album"}, {6, "Counting"}, {8, "The Testers"}}), 200) << user.said;
  EXPECT_THAT(user.options(12), ElementsAre("", kEntireList, "One", "Two", "Three"));
  EXPECT_EQ(user.value(12), "");
  EXPECT_EQ(user.value(6), "Counting");
  EXPECT_EQ(user.value(8), "") << "the other groups show their empty line";
  // A title that is chosen stays chosen where the group has it.
  ASSERT_EQ(user.press(17, {{12, "Two"}}), 200);
  EXPECT_EQ(user.value(12), "Two");
  ASSERT_EQ(user.press(17, {{12, kEntireList}}), 200);
  EXPECT_EQ(user.value(12), kEntireList);
  ASSERT_EQ(user.press(17, {{6, "Second"}, {12, "Two"}}), 200);
  EXPECT_THAT(user.options(12), ElementsAre("", kEntireList, "Four"));
  EXPECT_EQ(user.value(12), "");
  ASSERT_EQ(user.press(17, {{2, "Play: URL"}}), 200);
  EXPECT_THAT(user.options(12), ElementsAre("Please enter URL below..."));
  EXPECT_EQ(user.value(6), "");
}

TEST_F(Dialogs, OfAnActionIsStoredAsThePlugInReadsIt) {
  openThere("action");
  ASSERT_EQ(user.press(17, {{2, "Play: Album"}, {6, "Counting"}}), 200);
  ASSERT_EQ(user.submit({{12, "Two"}, {16, "Shuffle Only"}}), 200) << user.said;
  EXPECT_EQ(user.readable(), "Media Player|Media Player Actions|Play: Album||Counting|||Two||Shuffle Only|");
  EXPECT_EQ(user.said["words"], "Play: Album: Counting/Two Shuf:Y Rpt:N");
  // And opened again, it shows what was stored.
  openThere("action", user.stored);
  EXPECT_EQ(user.value(2), "Play: Album");
  EXPECT_EQ(user.value(6), "Counting");
  EXPECT_EQ(user.value(12), "Two");
  EXPECT_EQ(user.value(16), "Shuffle Only");
  EXPECT_THAT(user.options(12), ElementsAre("", kEntireList, "One", "Two", "Three"));
  const std::string before = user.stored;
  ASSERT_EQ(user.submit({}), 200);
  EXPECT_EQ(user.stored, before);
}

TEST_F(Dialogs, AfterAChangeOfTheGroupTheTitlesAreToBeRefreshedAndVerified) {
  openThere("action");
  ASSERT_EQ(user.press(17, {{2, "Play: Album"}, {6, "Counting"}}), 200);
  ASSERT_EQ(user.submit({{6, "Second"}, {12, "Two"}}), 422);
  EXPECT_EQ(user.said["error"], "Refresh then verify Titles");
  EXPECT_EQ(user.message(12), "Refresh then verify Titles");
  ASSERT_EQ(user.press(17, {}), 200);
  EXPECT_EQ(user.submit({{12, "Four"}}), 200) << user.said;
}

TEST_F(Dialogs, WhatThePlugInRefusesIsToldBesideTheFieldsThatItMeans) {
  openThere("action");
  ASSERT_EQ(user.submit({{2, "Play: Artist"}, {6, "Counting"}, {10, "Jazz"}}), 422);
  const std::string tooMany = "Albums, PlayLists, and Genres must be blank when playing an artist!";
  EXPECT_EQ(user.message(6), tooMany);
  EXPECT_EQ(user.message(10), tooMany);
  EXPECT_EQ(user.message(4), "");
  ASSERT_EQ(user.submit({{6, ""}, {10, ""}}), 422);
  EXPECT_EQ(user.message(8), "Please select an Artist to play!");
  ASSERT_EQ(user.submit({{2, "Stop"}, {14, "typed"}}), 422);
  EXPECT_EQ(user.message(14),
            "Albums, Artists, Genres, PlayLists, and Titles must be blank when specifying control actions!");
  ASSERT_EQ(user.submit({{2, "Play: URL"}, {14, "one\rtwo"}}), 422);
  EXPECT_EQ(user.message(14), "Error: Multiple lines found in Title or URL");
  ASSERT_EQ(user.submit({{2, "No Action"}, {14, ""}, {16, "Loop Only"}}), 422);
  EXPECT_EQ(user.message(2), "Action must be 'Change Mode only' to change only the Mode!");
  ASSERT_EQ(user.submit({{2, "Change Mode only"}}), 200) << user.said;
  EXPECT_EQ(user.said["words"], " Shuf:N Rpt:Y");
}

TEST_F(Dialogs, WithoutRefreshingAreShownInTwoSteps) {
  connection.proxy("org.vantorix.Host", "/host")
      ->invoke("SaveINISetting", "Settings", "RefreshActions", "False", "vxif_WMP.ini");
  const auto before = process();
  ::kill(static_cast<pid_t>(before), SIGTERM);
  ASSERT_TRUE(
      support::Eventually([&] { return process() != 0 && process() != before; }, std::chrono::seconds(60)));
  ASSERT_TRUE(house.becomes("ready"));
  openThere("action");
  EXPECT_THAT(user.options(2),
              ElementsAre("No Action", kPrompt,
                          "You can avoid this message by selecting \"Always Refresh Media Player Event "
                          "Actions\" in Setup"));
  for (const int number : {4, 6, 8, 10, 12}) EXPECT_EQ(user.field(number)["kind"], "text") << number;
  ASSERT_EQ(user.submit({{2, kPrompt}}), 200) << user.said;
  EXPECT_EQ(user.readable(),
            "Media Player|Media Player Actions|" + std::string(kPrompt) + "||||||" + "|No Action|");
  openThere("action", user.stored);
  EXPECT_EQ(user.value(2), kPrompt);
  EXPECT_FALSE(user.field(2)["listed"]);
  EXPECT_THAT(user.options(6), ElementsAre("", "Counting", "Second"));
  ASSERT_EQ(user.press(17, {{2, "Play: Album"}, {6, "Second"}}), 200);
  EXPECT_EQ(user.submit({{12, "Four"}}), 200) << user.said;
}

TEST_F(Dialogs, OfTriggersAndConditionsAreStored) {
  openThere("trigger");
  EXPECT_THAT(user.options(2),
              ElementsAre("Playback Started", "Playback Ended", "Transitioning", "Initialization Completed"));
  ASSERT_EQ(user.submit({{2, "Playback Ended"}}), 200);
  EXPECT_EQ(user.readable(), "Media Player|Media Player Triggers|Playback Ended");
  EXPECT_EQ(user.said["words"], "Media Player Playback Ended");
  openThere("condition 1");
  EXPECT_EQ(user.field(2)["label"], "Status ");
  ASSERT_EQ(user.submit({{2, "Muted"}, {4, "No"}}), 200);
  EXPECT_EQ(user.readable(), "Media Player|Media Player Status|Muted|No");
  EXPECT_EQ(user.said["words"], "Media Player Muted: No");
  openThere("condition 2");
  ASSERT_EQ(user.submit({{2, "Loop Mode"}}), 200);
  EXPECT_EQ(user.readable(), "Media Player|Media Mode|Loop Mode|Yes");
  EXPECT_EQ(user.said["words"], "Media Player Loop Mode: Yes");
}

TEST_F(Dialogs, AreOpenedAgainAfterThePlugInWasKilledWithTheSameValues) {
  openThere("action");
  ASSERT_EQ(user.press(17, {{2, "Play: Album"}, {6, "Counting"}}), 200);
  const auto before = process();
  ::kill(static_cast<pid_t>(before), SIGKILL);
  ASSERT_TRUE(support::Eventually([&] { return user.submit({{12, "Two"}}) == 502; }));
  ASSERT_TRUE(
      support::Eventually([&] { return process() != 0 && process() != before; }, std::chrono::seconds(60)));
  ASSERT_TRUE(house.becomes("ready"));
  ASSERT_EQ(user.submit({{12, "Two"}}), 502) << "the new one knows nothing of the form";
  openThere("action");
  ASSERT_EQ(user.press(17, {{2, "Play: Album"}, {6, "Counting"}, {12, "Two"}}), 200);
  EXPECT_EQ(user.value(12), "Two");
  EXPECT_EQ(user.submit({}), 200) << user.said;
}
