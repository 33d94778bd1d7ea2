// What is said to the quick-play devices, by names that only the library writes as they are.
#include "standin/hearing/HearingHouse.hpp"
#include "standin/player/DeviceCommands.hpp"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QuickCommands : public support::HearingHouse {
 protected:
  QuickCommands() {
    album = quick("Quick Album", "12");
    artist = quick("Quick Artist", "13");
    house.events.removeDevice(event, 1);
  }
  std::int32_t quick(const std::string& name, const std::string& code) {
    const std::int32_t ref = house.devices.create(name).ref;
    house.devices.put(ref, &standin::Device::location, std::string("Media Player"));
    house.devices.put(ref, &standin::Device::hc, std::string("Q"));
    house.devices.put(ref, &standin::Device::dc, code);
    return ref;
  }
  /// Has another event with that pattern for the device.
  void hears(std::int32_t ref, const std::string& pattern) {
    const std::int32_t id = house.events.create("VR of " + std::to_string(ref)).id;
    house.events.addDevice(id, ref, standin::kFuncVoice);
    house.events.put(id, &standin::Event::vcmd, pattern);
  }
  void named(const std::string& category, const std::string& key, const std::string& digits) {
    house.settings.save("vxif_WMP.ini", category, key, digits);
  }
  /// What the plug-in was to do last.
  std::string last() {
    const std::vector<std::string> calls = plugin.calls();
    return calls.empty() ? "" : calls.back();
  }

  std::int32_t album = 0;
  std::int32_t artist = 0;
};

TEST_F(QuickCommands, TheHouseAsksInTheLibrarysOwnNames) {
  named("Artist", "Bj rk", "426AC3B6726B");
  named("Artist", "Bj rn", "426AC3B6726E");
  hears(artist, "Play [Artist] (Bj rk|Bj rn|Blue)");
  const Understanding told = say("play artist bjor");
  EXPECT_EQ(told.says, "Did you mean “Play Artist Björk” or “Play Artist Björn”?");
  EXPECT_THAT(told.choices, ElementsAre(Choice{"Play Artist Bj rk", "Play Artist Björk"},
                                        Choice{"Play Artist Bj rn", "Play Artist Björn"}));
  say("second");
  EXPECT_EQ(last(), "SetIO Quick Artist Q 13 13 0 0 0 after Play Artist Bj rn") << "which knows the key";
  EXPECT_EQ(spoken("play artist bjork", 0.5).says, "Did you mean “Play Artist Björk”?");
  EXPECT_EQ(house.onSay("play bjork"), "Playing Björk");
}

TEST_F(QuickCommands, ANameThatBeginsLikeTheCategoryIsPlayedWhole) {
  hears(album, "Play [Album] (Album 7|Albums Live|Album)");
  say("play album 7");
  EXPECT_EQ(last(), "SetIO Quick Album Q 12 13 0 0 0 after Play Album Album 7");
  say("play albums live");
  EXPECT_EQ(last(), "SetIO Quick Album Q 12 13 0 0 0 after Play Album Albums Live");
  say("play album");
  EXPECT_EQ(last(), "SetIO Quick Album Q 12 13 0 0 0 after Play Album Album");
}

TEST_F(QuickCommands, ANameAndTheSameBehindTheCategoryAreToldApart) {
  hears(album, "Play [Album] (Album 7|7|Blue)");
  const Understanding told = say("play album 7");
  EXPECT_EQ(told.says, "Did you mean “Play Album Album 7” or “Play Album 7”?");
  say(told.choices.at(0).label == "Play Album 7" ? "first" : "second");
  EXPECT_EQ(last(), "SetIO Quick Album Q 12 13 0 0 0 after Play Album 7");
  say("Play Album Album 7");
  EXPECT_EQ(last(), "SetIO Quick Album Q 12 13 0 0 0 after Play Album Album 7");
  say("play blue");
  EXPECT_EQ(last(), "SetIO Quick Album Q 12 13 0 0 0 after Play Blue");
}

TEST_F(QuickCommands, ACommandAndANameOfTheSameWordsAreToldApartByTheCategory) {
  hears(quick("Status", "1"), "(Play|Player) [No] (Loop|Mute)");
  hears(album, "Play [Album] (Loop|Blue)");
  EXPECT_EQ(say("play loop").says, "Did you mean “Play Loop” or “Play Album Loop”?");
  EXPECT_EQ(say("first").says, "Loop on");
  EXPECT_EQ(last(), "SetIO Status Q 1 13 0 0 0 after Play Loop");
  say("play loop");
  EXPECT_EQ(say("second").says, "Playing Loop");
  EXPECT_EQ(last(), "SetIO Quick Album Q 12 13 0 0 0 after Play Album Loop");
  EXPECT_EQ(say("player loop").says, "Loop on");
  EXPECT_EQ(say("play blue").command, "Play Blue") << "which nobody else says";
}

TEST_F(QuickCommands, ANameOfTwoCategoriesIsAskedForByThem) {
  hears(album, "Play [Album] (Blue|Green)");
  hears(artist, "Play [Artist] (Blue|Red)");
  EXPECT_EQ(say("play blue").says, "Did you mean “Play Album Blue” or “Play Artist Blue”?");
  say("second");
  EXPECT_EQ(last(), "SetIO Quick Artist Q 13 13 0 0 0 after Play Artist Blue");
}

TEST_F(QuickCommands, WhatTwoEventsOfOneDeviceSayIsAskedByNobody) {
  hears(album, "Play [Album] (Blue)");
  hears(album, "Play (Blue|Green)");
  EXPECT_EQ(say("play blue").kind, Kind::kDone);
}

TEST_F(QuickCommands, WhatTwoEventsSayInTheSameWordsIsForBoth) {
  hears(quick("Lamp", "1"), "Light [very] low");
  hears(quick("Blind", "2"), "Light low");
  EXPECT_EQ(say("light low").kind, Kind::kDone);
  EXPECT_EQ(last(), "SetIO Blind Q 2 13 0 0 0 after Light low");
  EXPECT_EQ(plugin.calls().at(plugin.calls().size() - 2), "SetIO Lamp Q 1 13 0 0 0 after Light low");
}

TEST_F(QuickCommands, ANameThatIsUnknownDoesNothingElse) {
  quick("Status", "1");
  hears(album, "Play [Album] (Blue)");
  const std::size_t before = plugin.calls().size();
  for (const char* unknown : {"play album stop making sense", "Play Artist Mute", "play genre pause.",
                              "play playlist volume up", "play play list next", "PLAY  album, restart"}) {
    EXPECT_EQ(say(unknown).kind, Kind::kUnknown) << unknown;
    EXPECT_EQ(plugin.calls().size(), before) << unknown;
  }
  EXPECT_EQ(say("mute the music").says, "Sound off");
  EXPECT_EQ(last(), "SetIO Status Q 1 13 0 0 0 after mute the music");
}

TEST_F(QuickCommands, AGuestMayPlayButNotAddToThePlaylistThatIsKept) {
  const standin::Speaker guest{.session = "a guest's", .guest = true};
  hears(quick("Status", "1"), "(Play|Player) [No] (Loop|Add to PlayList)");
  const std::size_t before = plugin.calls().size();
  for (const char* adding : {"player add to playlist", "now add to playlist"}) {
    const Understanding told = say(adding, guest);
    EXPECT_EQ(told.kind, Kind::kFailed) << adding;
    EXPECT_EQ(told.says, "Guests can’t change playlists") << adding;
  }
  EXPECT_EQ(say("player ad to playlist", guest).kind, Kind::kUnclear);
  EXPECT_EQ(say("yes", guest).says, "Guests can’t change playlists");
  EXPECT_EQ(plugin.calls().size(), before);
  EXPECT_EQ(say("player loop", guest).says, "Loop on");
  EXPECT_EQ(plugin.calls().size(), before + 1);
}

TEST_F(QuickCommands, WithoutANameNothingIsDone) {
  const std::size_t before = plugin.calls().size();
  hears(album, "Play Album )");
  EXPECT_EQ(say("play album").kind, Kind::kUnknown);
  hears(artist, "Play (Artist)");
  EXPECT_EQ(say("play artist").kind, Kind::kUnknown);
  EXPECT_EQ(say("play artist").says, "“play artist” doesn’t say what to play");
  EXPECT_EQ(plugin.calls().size(), before);
}

TEST_F(QuickCommands, NamesThatLookTheSameAreToldApartByTheirKeys) {
  named("Artist", "Blu", "426C75652E");
  named("Artist", "Blue", "426C75652E");
  hears(artist, "Play [Artist] (Blu|Blue)");
  EXPECT_EQ(say("play artist blux").says, "Did you mean “Play Artist Blu” or “Play Artist Blue”?");
}

TEST_F(QuickCommands, AValueThatMeansAnotherNameWhenItsTurnComesIsNotSet) {
  const std::size_t before = plugin.calls().size();
  house.devices.put(album, &standin::Device::interface, std::string("Media Player"));
  house.devices.put(album, &standin::Device::values,
                    std::string("Blue\x02"
                                "2"));
  const auto command = standin::DeviceCommands(house, objects, keeper).set(album, 2, "Blue");
  ASSERT_TRUE(command);
  house.devices.put(album, &standin::Device::values,
                    std::string("Green\x02"
                                "2"));
  std::optional<std::string> outcome;
  keeper.command(*command, [&](const std::string& failure) { outcome = failure; });
  ASSERT_TRUE(eventually([&] { return outcome.has_value(); }));
  EXPECT_EQ(outcome, "The list has changed meanwhile. Choose again");
  EXPECT_EQ(plugin.calls().size(), before);
  EXPECT_EQ(house.devices.byRef(album)->value, 0);
}

TEST_F(QuickCommands, AnEventThatNobodyListensToIsNotMeant) {
  hears(album, "Play Album (Blue)");
  EXPECT_EQ(say("play album blue").kind, Kind::kDone);
  house.events.removeDevice(house.events.byName("VR of " + std::to_string(album))->id, 1);
  EXPECT_EQ(say("play album blue").kind, Kind::kUnknown);
  EXPECT_THAT(say("play album blux").choices, IsEmpty());
}

}  // namespace
