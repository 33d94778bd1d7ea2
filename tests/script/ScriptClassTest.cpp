#include "support/ScriptHouse.hpp"

using base::Value;
using support::ScriptHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Script : public ScriptHouse {};

Value Number(std::int32_t number) { return number; }
Value Short(std::int16_t number) { return number; }
const Value kNoObject = base::ObjectRef();

}  // namespace

TEST_F(Script, TheSlotsAreInTheInterfacesOrder) {
  std::vector<std::string> names;
  for (const base::Member& member : script.members()->list()) names.push_back(member.name);
  EXPECT_THAT(names,
              ElementsAre("Play", "PlayURL", "PausePlayer", "ResumePlayer", "StopPlayer", "Mute", "LoopMode",
                          "ShuffleMode", "PlayNext", "PlayPrev", "Restart", "FastForward", "FastReverse",
                          "Eject", "VolumeUp", "VolumeDown", "Volume", "GetCategoryList", "GetByCategory",
                          "PlayerStatus", "Title", "artist", "Album", "Genre", "Length", "ShowPopupControls",
                          "AddToPlayList", "GetMediaInfo", "FullScreenVideo", "CurrentPlaylist",
                          "CurrentPosition", "RefreshLists", "WMPObject", "Version", "GetAlbumsByCategory"));
}

TEST_F(Script, BeforeTheStartIsOverEverythingIsEmptyOfItsType) {
  playing();
  beforeStart();
  journal.clear();
  EXPECT_EQ(call("Play", "Album", "Blue"), Number(0));
  EXPECT_EQ(call("PlayURL", "http://radio"), Number(0));
  for (const char* command : {"PausePlayer", "StopPlayer", "PlayNext", "Restart", "Eject", "VolumeUp"})
    EXPECT_EQ(call(command), Value()) << command;
  EXPECT_EQ(get("Mute"), Value());
  EXPECT_EQ(get("Volume"), Short(0));
  EXPECT_EQ(get("Title"), Value(""));
  EXPECT_EQ(get("Length"), Value(""));
  EXPECT_EQ(get("CurrentPosition"), Value(0.0));
  EXPECT_EQ(get("WMPObject"), kNoObject);
  EXPECT_EQ(call("GetCategoryList", "Album"), kNoObject);
  EXPECT_EQ(call("GetByCategory"), kNoObject);
  EXPECT_EQ(call("GetMediaInfo", "Album", "Blue", "Track One"), Value(base::Record()));
  EXPECT_EQ(call("AddToPlayList"), Value());
  EXPECT_EQ(call("CurrentPlaylist"), Value());
  EXPECT_EQ(call("RefreshLists", "Album"), Value(false));
  script.put("Volume", Short(10));
  script.put("FullScreenVideo", true);
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Script, VersionAndAlbumsAnswerBeforeTheStart) {
  beforeStart();
  EXPECT_EQ(call("Version"), Value("1.0.23"));
  EXPECT_THAT(Texts(call("GetAlbumsByCategory", "Artist", "Joni Mitchell")), ElementsAre("Blue"));
}

TEST_F(Script, PlayTakesItsCategoriesInAnyCase) {
  EXPECT_EQ(call("Play", "ALBUM", "Blue", "Track One"), Number(0));
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentMedia Track One", "player: play"));
  journal.clear();
  EXPECT_EQ(call("Play", "Genre", "Folk"), Number(0));
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentPlaylist Folk", "player: play"));
  journal.clear();
  EXPECT_EQ(call("Play", "media LIBRARY", "ignored", "Track Two"), Number(0));
  EXPECT_THAT(playerCalls(), ElementsAre("player: currentMedia Track Two", "player: play"));
  journal.clear();
  EXPECT_EQ(call("Play", "url", "ignored", "http://radio"), Number(0));
  EXPECT_EQ(call("PlayURL", "http://other"), Number(0));
  EXPECT_THAT(playerCalls(), ElementsAre("player: URL http://radio", "player: play",
                                         "player: URL http://other", "player: play"));
}

TEST_F(Script, PlayOfAnotherWordIsRefusedWithoutALine) {
  EXPECT_EQ(call("Play", "radio", "x", "y"), Number(-1));
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(Script, TheCategoryReachesTheMessageAsItCame) {
  EXPECT_EQ(call("Play", "playLIST", "Nope"), Number(-1));
  EXPECT_TRUE(logged("Error", "Media Player: Cannot 'Play': playLIST 'Nope' is non-existent"));
}

TEST_F(Script, CommandsReachThePlayer) {
  playing();
  for (const char* command :
       {"PausePlayer", "StopPlayer", "PlayNext", "PlayPrev", "Restart", "FastForward", "FastReverse"})
    call(command);
  EXPECT_THAT(playerCalls(),
              ElementsAre("player: pause", "player: stop", "player: next", "player: previous",
                          "player: currentPosition 0", "player: fastForward", "player: fastReverse"));
  wmp9->state = player::kPaused;
  call("ResumePlayer");
  EXPECT_EQ(playerCalls().back(), "player: play");
}

TEST_F(Script, DefaultsOfTheNumbers) {
  wmp9->drives = 2;
  call("VolumeUp");
  EXPECT_EQ(wmp9->level, 60);
  call("VolumeDown");
  call("VolumeDown", 20);
  EXPECT_EQ(wmp9->level, 30);
  call("Eject");
  call("Eject", 1);
  EXPECT_EQ(journal.with("player: eject"), (std::vector<std::string>{"player: eject 0", "player: eject 1"}));
}

TEST_F(Script, ModesAreReadFromThePlayerAndSetByTheSetters) {
  script.put("Mute", true);
  EXPECT_EQ(get("Mute"), Value(true));
  script.put("Mute", "toggle");
  EXPECT_EQ(get("Mute"), Value(false));
  script.put("LoopMode", -1);
  script.put("ShuffleMode", "True");
  EXPECT_EQ(get("LoopMode"), Value(true));
  EXPECT_EQ(get("ShuffleMode"), Value(true));
  script.put("Volume", 70);
  EXPECT_EQ(get("Volume"), Short(70));
  script.put("ShowPopupControls", false);
  EXPECT_EQ(get("ShowPopupControls"), Value(false));
  script.put("FullScreenVideo", true);
  EXPECT_TRUE(plugin.state.FullScreenVideo);
  EXPECT_THROW(script.get("FullScreenVideo"), base::Failure);
}

TEST_F(Script, WhatPlaysIsToldWhileItPlays) {
  playing();
  wmp9->position = 12.5;
  EXPECT_EQ(get("Title"), Value("Track One"));
  EXPECT_EQ(get("artist"), Value("Joni Mitchell"));
  EXPECT_EQ(get("Album"), Value("Blue"));
  EXPECT_EQ(get("Genre"), Value("Folk"));
  EXPECT_EQ(get("Length"), Value("03:25"));
  EXPECT_EQ(get("CurrentPosition"), Value(12.5));
  wmp9->state = player::kStopped;
  EXPECT_EQ(get("Title"), Value(""));
  EXPECT_EQ(get("artist"), Value(""));
  EXPECT_EQ(get("Length"), Value("00:00"));
  EXPECT_EQ(get("CurrentPosition"), Value(0.0));
}

TEST_F(Script, FailuresGiveTheEmptyValue) {
  playing();
  wmp9->media.reset();
  wmp9->failing = {"read volume"};
  EXPECT_EQ(get("Title"), Value(""));
  EXPECT_EQ(get("Length"), Value(""));
  EXPECT_EQ(get("Volume"), Short(0));
  EXPECT_EQ(call("CurrentPlaylist"), Value());
}

TEST_F(Script, TheStatusTextIsThatOfTheStateHandledLast) {
  wmp9->statusText = "Playing 'Blue'";
  plugin.playState.MyPlayStateChange(player::kStopped);
  wmp9->statusText = "later";
  EXPECT_EQ(get("PlayerStatus"), Value("Playing 'Blue'"));
}

TEST_F(Script, TheCurrentPlaylistIsToldByName) {
  wmp9->playlist = library.addPlaylist("Road Trip");
  EXPECT_EQ(call("CurrentPlaylist"), Value("Road Trip"));
}

TEST_F(Script, ThePlayerItselfIsOneObject) {
  const base::ObjectRef first = base::ToObject(get("WMPObject"));
  ASSERT_TRUE(first);
  EXPECT_EQ(base::ToObject(get("WMPObject")), first);
  EXPECT_EQ(first->get("versionInfo"), Value("9.0.1"));
}
