// The quick-play devices and the voice events of the library, in a house of fakes.
#include "VoiceHouse.hpp"
#include "support/LibraryHouse.hpp"

using support::FieldObject;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

using VoiceEvents = support::VoiceHouse;

std::string TableOf(const std::string& rest) {
  return "DeviceValuesAdd(\"Q12\", \" ¦0§*Refresh Albums*¦1" + rest + "\", True)";
}

}  // namespace

TEST_F(VoiceEvents, TheNamesOfACategoryAreValuesOfADeviceAndWordsOfAnEvent) {
  albums({"Live 1970", "Green/Night", "Blue"});
  update("Album");
  EXPECT_EQ(table(), TableOf("§Blue¦2§Green Night¦3§Live 1970¦4"));
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Blue|Green Night|Live 1970)");
  const auto device = host->byName("Media Player Quick Album");
  ASSERT_TRUE(device);
  EXPECT_EQ(device->fields["dc"], base::Value(std::int16_t{12}));
  EXPECT_EQ(device->fields["misc"], base::Value(std::int16_t{16}));
  EXPECT_EQ(device->fields["Values"], base::Value(""));
  EXPECT_TRUE(journal.has(std::string("SetDeviceString(\"Q12\", \"") + kIcon + "Play an Album\")"));
  EXPECT_THAT(neighbours.menus,
              ElementsAre(testing::Pair("Album 0", "*Refresh Albums*"), testing::Pair("Album 1", "Blue"),
                          testing::Pair("Album 2", "Green Night"), testing::Pair("Album 3", "Live 1970")));
}

TEST_F(VoiceEvents, EachCategoryHasItsDevice) {
  library.attributes = {{"album", {"Blue"}}, {"artist", {"Ann"}}, {"genre", {"Folk"}}};
  library.addPlaylist("Party");
  for (const char* category : {"PlayList", "Album", "Artist", "Genre"}) update(category);
  std::vector<std::string> shown;
  for (const auto& device : host->devices)
    shown.push_back(base::ToText(device->fields["name"]) + " " + base::ToText(device->fields["dc"]));
  EXPECT_THAT(shown, ElementsAre("Quick PlayList 11", "Quick Album 12", "Quick Artist 13", "Quick Genre 14"));
  EXPECT_EQ(vcmd("PlayList VR"), "Play PlayList (Party)");
  EXPECT_EQ(vcmd("Genre VR"), "Play Genre (Folk)");
  for (const char* text : {"Q11\", \"%Play a PlayList", "Q12\", \"%Play an Album", "Q13\", \"%Play an Artist",
                           "Q14\", \"%Play a Genre"}) {
    std::string line = text;
    line.replace(line.find('%'), 1, kIcon);
    EXPECT_TRUE(journal.has("SetDeviceString(\"" + line + "\")")) << line;
  }
}

TEST_F(VoiceEvents, TheCategoryStandsInBracketsWhereItIsRequired) {
  albums({"Blue"});
  plugin.state.VRCategoryRequired = true;
  update("Album");
  EXPECT_EQ(vcmd("Album VR"), "Play [Album] (Blue)");
}

TEST_F(VoiceEvents, FlagsAreSetWithTheEventAndAreTheUsersFromThenOn) {
  albums({"Blue"});
  update("Album");
  EXPECT_EQ(field("Album VR", "misc"), std::to_string(2 | 8 | 64 | 16384));
  EXPECT_EQ(field("Album VR", "misc2"), "5");
  events["Album VR"].fields->fields["misc"] = std::int32_t{0};
  events["Album VR"].fields->fields["misc2"] = std::int32_t{0};
  events["Album VR"].fields->fields["Group"] = "Mine";
  events["Album VR"].fields->fields["ev_abs_time"] = std::int16_t{1};
  update("Album");
  EXPECT_EQ(field("Album VR", "misc"), "0");
  EXPECT_EQ(field("Album VR", "misc2"), "0");
  EXPECT_EQ(field("Album VR", "Group"), "Media Player");
  EXPECT_EQ(events["Album VR"].fields->fields["ev_abs_time"], base::Value(std::int16_t{7}));
  EXPECT_THAT(made, SizeIs(1));
}

TEST_F(VoiceEvents, TheDeviceIsTiedToItsEventOnce) {
  albums({"Blue"});
  update("Album");
  update("Album");
  EXPECT_THAT(events["Album VR"].devices->shown(), ElementsAre("101:13"));
  EXPECT_EQ(base::ToObject(events["Album VR"].devices->entries[0])->get("func"),
            base::Value(std::int16_t{13}));
}

TEST_F(VoiceEvents, EveryOlderTieToTheDeviceGoesAndThoseToOthersStay) {
  albums({"Blue"});
  Event& event = addEvent("Album VR");
  const auto tie = [&](std::int32_t device, std::int16_t function) {
    auto entry = std::make_shared<FieldObject>();
    entry->fields = {{"devid", device}, {"func", function}};
    event.devices->entries.push_back(entry);
  };
  tie(101, 13);
  tie(7, 13);
  tie(101, 2);
  update("Album");
  EXPECT_THAT(event.devices->shown(), ElementsAre("7:13", "101:13"));
}

TEST_F(VoiceEvents, ThingsAreDoneInThisOrder) {
  albums({"Blue"});
  journaled = true;
  update("Album");
  const std::string icon = kIcon;
  EXPECT_THAT(
      journal.lines(),
      ElementsAre("GetDeviceEx(\"Media Player Quick Album\")", "NewDevice(\"Quick Album\")", "GetDevice(1)",
                  "location = \"Media Player\"", "hc = \"Q\"", "dc = 12", "interface = \"Media Player\"",
                  "Status = 17", "misc = 16", "dev_type_string = \"Media Player\"", "iotype = 3",
                  "SetDeviceString(\"Q12\", \"" + icon + "\", True)", "GetDevice(1)", "Values = \"\"",
                  "GetEventEx(\"Album VR\")", "NewEvent(\"Album VR\")", "GetEvent(1)", "misc = 16458",
                  "misc2 = 5", "ev_abs_time = 7", "Group = \"Media Player\"",
                  "GetDeviceEx(\"Media Player Quick Album\")", "NewDevFunc()",
                  "library: getAttributeStringCollection Album audio", "WaitEvents()", "WaitEvents()",
                  "DeviceValuesAdd(\"Q12\", \" \0020\1*Refresh Albums*\0021\1Blue\0022\", True)",
                  "SetDeviceString(\"Q12\", \"" + icon + "Play an Album\")", "vcmd = \"Play Album (Blue)\""));
}

TEST_F(VoiceEvents, ADeletedDeviceIsMadeAgainAndItsOldEntryStays) {
  albums({"Blue"});
  update("Album");
  host->devices.clear();
  update("Album");
  EXPECT_TRUE(host->byName("Media Player Quick Album"));
  EXPECT_THAT(events["Album VR"].devices->shown(), ElementsAre("101:13", "102:13"));
}

TEST_F(VoiceEvents, NamesOfPunctuationAloneAreNowhere) {
  albums({"!!!", "???"});
  update("Album");
  EXPECT_EQ(table(), TableOf(""));
  EXPECT_EQ(vcmd("Album VR"), "Play Album )") << "the opening bracket is what is cut";
  EXPECT_THAT(neighbours.menus, SizeIs(1));
}

TEST_F(VoiceEvents, ALibraryInOtherLettersHasNoSpokenNames) {
  albums({"\u041A\u0438\u043D\u043E", "\u65E5\u672C\u8A9E"});
  update("Album");
  EXPECT_EQ(table(), TableOf(""));
  EXPECT_EQ(vcmd("Album VR"), "Play Album )");
}

TEST_F(VoiceEvents, AnEmptyLibraryHasTheEntryThatReadsItAnew) {
  albums({});
  plugin.state.VRCategoryRequired = true;
  update("Album");
  EXPECT_EQ(table(), TableOf(""));
  EXPECT_EQ(vcmd("Album VR"), "Play [Album] )");
  EXPECT_THAT(neighbours.menus, ElementsAre(testing::Pair("Album 0", "*Refresh Albums*")));
  EXPECT_TRUE(journal.has(std::string("SetDeviceString(\"Q12\", \"") + kIcon + "Play an Album\")"));
}

TEST_F(VoiceEvents, NamesOfOneKeyAreThereTwice) {
  albums({"Blue!", "Blue?"});
  update("Album");
  EXPECT_EQ(table(), TableOf("§Blue¦2§Blue¦3"));
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Blue|Blue)");
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(VoiceEvents, AWordThatBeginsWithADigitShadowsTheNamesBehindIt) {
  albums({"2001", "2001 Live", "2001 Remix"});
  update("Album");
  EXPECT_EQ(vcmd("Album VR"), "Play Album (2001)");
  EXPECT_EQ(table(), TableOf("§2001¦2§2001 Live¦3§2001 Remix¦4"));
  EXPECT_EQ(neighbours.menus.at("Album 3"), "2001 Remix");
  const std::string detected =
      "WriteLog(\"Warning\", \"Media Player detected an illegal voice recognition command\")";
  EXPECT_THAT(
      warnings(),
      ElementsAre(
          detected, "WriteLog(\"Warning\", \"The Album names '2001' and '2001 Live' are ambiguous.\")",
          detected, "WriteLog(\"Warning\", \"The Album names '2001' and '2001 Remix' are ambiguous.\")"));
}

TEST_F(VoiceEvents, WordsThatBeginWithALetterAndNamesOfTwoWordsShadowNothing) {
  albums({"Gold", "Gold Best Of", "Live 99", "Live 99 Remix", "20012 Live", "2001", "99 Red",
          "99 Red Balloons"});
  update("Album");
  EXPECT_EQ(vcmd("Album VR"),
            "Play Album (2001|20012 Live|99 Red|99 Red Balloons|Gold|Gold Best Of|Live 99|Live 99 Remix)");
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(VoiceEvents, NineIsADigitTooAndShadowsLetterByLetter) {
  albums({"9", "9 Lives", "80s", "80S Hits"});
  update("Album");
  EXPECT_EQ(vcmd("Album VR"), "Play Album (80s|80S Hits|9)");
  EXPECT_THAT(warnings(), SizeIs(2));
  EXPECT_THAT(warnings().back(), HasSubstr("The Album names '9' and '9 Lives' are ambiguous."));
}

TEST_F(VoiceEvents, TheOrderIsAlphabeticWithoutRegardToCase) {
  albums({"zebra", "Apple", "banana", "Zulu"});
  update("Album");
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Apple|banana|zebra|Zulu)");
}

TEST_F(VoiceEvents, TheNextReadGoesToTheLibrary) {
  albums({"Blue"});
  update("Album");
  albums({"Green", "Blue"});
  update("Album");
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Blue|Green)");
  library.addPlaylist("Party");
  update("PlayList");
  library.addPlaylist("Quiet");
  update("PlayList");
  EXPECT_EQ(vcmd("PlayList VR"), "Play PlayList (Party|Quiet)");
}

TEST_F(VoiceEvents, WithoutNamesTheDeviceSaysWhatToDo) {
  update("PlayList");
  EXPECT_TRUE(journal.has(std::string("SetDeviceString(\"Q11\", \"") + kIcon +
                          "Create PlayLists before using this feature\")"));
  EXPECT_EQ(table(), "none");
  EXPECT_EQ(vcmd("PlayList VR"), "");
  EXPECT_THAT(events["PlayList VR"].devices->shown(), ElementsAre("101:13")) << "the event stays tied to it";
}

TEST_F(VoiceEvents, NamesThatAreGoneAreNoLongerSpoken) {
  library.addPlaylist("Party");
  update("PlayList");
  ASSERT_EQ(vcmd("PlayList VR"), "Play PlayList (Party)");
  library.playlists.clear();
  update("PlayList");
  EXPECT_EQ(vcmd("PlayList VR"), "");
  albums({"Blue"});
  update("Album");
  ASSERT_EQ(vcmd("Album VR"), "Play Album (Blue)");
  library.failing = {"getAttributeStringCollection"};
  update("Album");
  EXPECT_EQ(vcmd("Album VR"), "");
  EXPECT_TRUE(journal.has(std::string("SetDeviceString(\"Q12\", \"") + kIcon +
                          "Create Albums before using this feature\")"));
}

TEST_F(VoiceEvents, MenusKeepTheElementsThatAreNoLongerNeeded) {
  albums({"Blue", "Green"});
  update("Album");
  albums({"Red"});
  update("Album");
  EXPECT_THAT(neighbours.menus,
              ElementsAre(testing::Pair("Album 0", "*Refresh Albums*"), testing::Pair("Album 1", "Red"),
                          testing::Pair("Album 2", "Green")));
}

TEST_F(VoiceEvents, TheHostHasATurnAtEveryFiftiethName) {
  std::vector<std::string> names;
  for (int i = 0; i < 101; ++i) names.push_back("Album " + std::to_string(1000 + i));
  albums(names);
  update("Album");
  // Three while the library is read, at 0, 50 and 100; two in the first pass, behind 50 and 100; three in the
  // second.
  EXPECT_EQ(journal.count("WaitEvents()"), 8U);
}

TEST_F(VoiceEvents, ANameWithoutAKeyGivesTheHostItsTurn) {
  albums({"!!!", "Blue"});
  host->answers["WaitEvents"] = [&](base::Args&) -> base::Value {
    menusAtTurn.push_back(neighbours.menus.size());
    return {};
  };
  update("Album");
  // One while the library is read; one in the second pass, at the first name, which has no key.
  EXPECT_THAT(menusAtTurn, ElementsAre(0U, 1U));
}

TEST_F(VoiceEvents, EachNameMovesTheProgressWhileItIsReadAndWhileItIsEntered) {
  albums({"!!!", "Blue"});
  support::FakeProgress progress;
  automation::VoiceEvents watched({plugin.devices, plugin.catalogue, progress, plugin.stale, neighbours,
                                   plugin.host, plugin.loggers, plugin.state});
  watched.UpdateMediaEvents("Album");
  EXPECT_EQ(vcmd("Album VR"), "Play Album (Blue)");
  EXPECT_THAT(progress.fractions, ElementsAre(0.5F, 1.0F, 0.5F, 1.0F)) << "also one without a key";
  EXPECT_EQ(progress.depth, 0);
}

TEST_F(VoiceEvents, TheLibraryMayChangeWhileItIsReadAndBeReadWithinThat) {
  albums({"Blue", "Green", "Red"});
  support::FieldObject* device = nullptr;
  host->answers["DeviceValuesAdd"] = [&](base::Args& args) -> base::Value {
    device = host->byName("Media Player Quick Album").get();
    const std::string before = base::ToText(device->fields["Values"]);
    device->fields["Values"] = before.empty() ? base::ToText(args[1]) : before + '\1' + base::ToText(args[1]);
    return {};
  };
  int turns = 0;
  host->answers["WaitEvents"] = [&](base::Args&) -> base::Value {
    // The first turn comes while the library is read, the second in the second pass, with the names in hand.
    if (++turns != 2) return {};
    albums({"Yellow"});
    update("Album");
    return {};
  };
  update("Album");
  ASSERT_TRUE(device);
  EXPECT_THAT(journal.with("DeviceValuesAdd("), SizeIs(2));
  const std::string values = base::ToText(device->fields["Values"]);
  EXPECT_EQ(std::count(values.begin(), values.end(), '\1'), 4)
      << "the values of one run, not of two: " << values;
  EXPECT_THAT(vcmd("Album VR"), HasSubstr("Blue|Green|Red"));
  EXPECT_THAT(events["Album VR"].devices->shown(), ElementsAre("101:13"));
}

TEST_F(VoiceEvents, MoreNamesThanTheCounterHoldsEndTheRun) {
  host->silent = {"WaitEvents", "SaveINISetting"};
  std::vector<std::string> names;
  for (int i = 0; i < 40'000; ++i) names.push_back("A" + std::to_string(100000 + i));
  for (const std::size_t count : {std::size_t{40'000}, std::size_t{32'768}}) {
    names.resize(count);
    albums(names);
    update("Album");
    EXPECT_EQ(table(), "none");
    EXPECT_EQ(vcmd("Album VR"), "");
    EXPECT_EQ(neighbours.menus.size(), 32'768U) << "the menu has what came before";
    EXPECT_EQ(neighbours.menus.count("Album 32767"), 1U);
    EXPECT_EQ(neighbours.menus.count("Album -32768"), 0U);
    EXPECT_TRUE(logged("UpdateMediaEvents Error # 6: Overflow"));
    journal.clear();
  }
  names.pop_back();
  albums(names);
  update("Album");
  EXPECT_THAT(table(), HasSubstr("A132766¦32768"));
}

TEST_F(VoiceEvents, AFailureIsLoggedAndTheProgressGoes) {
  albums({"Blue"});
  host->failing = {"NewDevFunc"};
  update("Album");
  EXPECT_TRUE(logged("UpdateMediaEvents Error # 57: Input or output failed"));
  EXPECT_EQ(plugin.progBar.ProgressUsers(), 0);
  EXPECT_EQ(table(), "none");
}
