#include "support/FailureNumber.hpp"
#include "support/ScriptHouse.hpp"

using base::MemberKind;
using base::Record;
using base::Value;
using support::ScriptHouse;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class Script : public ScriptHouse {};

Value Number(std::int32_t number) { return number; }
Value Short(std::int16_t number) { return number; }
const Value nothing = base::ObjectRef();

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

TEST_F(Script, BeforeTheStartIsOverEveryMemberIsEmptyOfItsTypeAndDoesNothing) {
  playing();
  wmp9->playlist = library.addPlaylist("Road Trip");
  const std::map<std::string, Value> empty{{"Play", Number(0)},
                                           {"PlayURL", Number(0)},
                                           {"Mute", Value()},
                                           {"LoopMode", Value()},
                                           {"ShuffleMode", Value()},
                                           {"Volume", Short(0)},
                                           {"GetCategoryList", nothing},
                                           {"GetByCategory", nothing},
                                           {"PlayerStatus", ""},
                                           {"Title", ""},
                                           {"artist", ""},
                                           {"Album", ""},
                                           {"Genre", ""},
                                           {"Length", ""},
                                           {"ShowPopupControls", {}},
                                           {"AddToPlayList", Value()},
                                           {"GetMediaInfo", Record()},
                                           {"CurrentPlaylist", Value()},
                                           {"CurrentPosition", 0.0},
                                           {"RefreshLists", false},
                                           {"WMPObject", nothing}};
  beforeStart();
  journal.clear();
  for (const base::Member& member : script.members()->list()) {
    if (member.name == "Version" || member.name == "GetAlbumsByCategory") continue;
    const auto expected = empty.find(member.name);
    const Value answer = expected == empty.end() ? Value() : expected->second;
    if (member.kind == MemberKind::kOperation) {
      base::Args args(member.params.size(), "Album");
      if (!args.empty() && member.params[0].type == base::Type::kInt16) args[0] = 1;
      EXPECT_EQ(script.call(member.name, args), answer) << member.name;
    } else if (member.kind != MemberKind::kWriteField) {
      ASSERT_NE(expected, empty.end()) << member.name;
      EXPECT_EQ(get(member.name), answer) << member.name;
    }
    if (member.kind == MemberKind::kField || member.kind == MemberKind::kWriteField)
      script.put(member.name, 1);
  }
  EXPECT_THAT(journal.lines(), IsEmpty());
  EXPECT_FALSE(plugin.state.FullScreenVideo);
}

TEST_F(Script, AValueThatCantBeConvertedIsAFailureThatIsSkipped) {
  playing();
  const base::Record none{{"Artist", ""}, {"Album", ""}, {"Genre", ""}, {"Duration", ""}};
  const std::map<std::string, Value> answers{
      {"Play", Number(0)},        {"PlayURL", Number(0)},       {"GetCategoryList", base::Array()},
      {"GetMediaInfo", none},     {"RefreshLists", false},      {"GetByCategory", base::Array()},
      {"AddToPlayList", Value()}, {"Version", call("Version")}, {"GetAlbumsByCategory", base::Array()}};
  const Value strange = base::Record{{"no", "number"}};
  for (const base::Member& member : script.members()->list()) {
    if (member.kind == MemberKind::kOperation && !member.params.empty()) {
      base::Args args(member.params.size(), strange);
      const auto expected = answers.find(member.name);
      EXPECT_EQ(script.call(member.name, args), expected == answers.end() ? Value() : expected->second)
          << member.name;
    } else if (member.writer) {
      EXPECT_NO_THROW(script.put(member.name, strange)) << member.name;
    }
  }
  EXPECT_THAT(playerCalls(), IsEmpty());
  EXPECT_THAT(journal.with("library: "), IsEmpty());
}

TEST_F(Script, AVolumeThatIsNoNumberLeavesTheVolumeAsItIs) {
  script.put("Volume", "abc");
  script.put("Volume", 99999);
  call("VolumeUp", "x");
  call("VolumeDown", 99999);
  call("Eject", "first");
  EXPECT_EQ(get("Volume"), Short(50));
  EXPECT_THAT(playerCalls(), IsEmpty());
  script.put("Volume", "70");
  EXPECT_EQ(get("Volume"), Short(70));
}

TEST_F(Script, WhatIsNoMemberOrHasTooManyArgumentsIsRefused) {
  EXPECT_EQ(support::FailureNumberOf([&] { call("Explode"); }), base::number::kNoSuchMember);
  EXPECT_EQ(support::FailureNumberOf([&] { call("PlayURL"); }), base::number::kWrongArguments);
  EXPECT_EQ(support::FailureNumberOf([&] { call("StopPlayer", 1); }), base::number::kWrongArguments);
  EXPECT_EQ(support::FailureNumberOf([&] { script.put("Title", "x"); }), base::number::kNoSuchMember);
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
