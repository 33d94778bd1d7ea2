// The quick-play devices and the voice events, in a house of fakes.
#include "support/FakeLibrary.hpp"
#include "support/House.hpp"

using support::FieldObject;
using support::House;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::SizeIs;

namespace {

constexpr const char* kControls =
    "(Play|Player) [No] (Stop|Next|Previous|Restart|Pause|Resume|Eject|Shuffle|Loop|Mute|UnMute|Volume Up|"
    "Volume Down|Display Controls|Add to PlayList)";

/// What an event of the host is tied to.
class EventDevices : public base::Object {
 public:
  using base::Object::call;
  std::vector<base::ObjectRef> entries;

  base::Value call(std::string_view name, base::Args& args) override {
    if (name == "Add") {
      entries.push_back(base::ToObject(args.at(0)));
      return {};
    }
    const auto at = static_cast<std::size_t>(base::ToInt32(args.at(0)) - 1);
    if (at >= entries.size()) throw base::Failure(base::number::kIndex);
    if (name == "item") return entries[at];
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(at));
    return {};
  }
  base::Value get(std::string_view /*name*/) override { return static_cast<std::int32_t>(entries.size()); }
  void put(std::string_view name, const base::Value& /*value*/) override {
    throw base::Failure(base::number::kNoSuchMember, std::string(name));
  }
  /// "device:function" of each entry.
  [[nodiscard]] std::vector<std::string> shown() const {
    std::vector<std::string> all;
    for (const base::ObjectRef& each : entries)
      all.push_back(base::ToText(each->get("devid")) + ":" + base::ToText(each->get("func")));
    return all;
  }
};

/// A house with a library and events; its devices have a number of their own.
class VoiceHouse : public House {
 protected:
  struct Event {
    std::shared_ptr<FieldObject> fields = std::make_shared<FieldObject>();
    std::shared_ptr<EventDevices> devices = std::make_shared<EventDevices>();
  };

  void SetUp() override {
    preparePlayer = [this](support::FakePlayer& made) { library.into(made); };
    plugin.form.load();
    connect();
    plugin.state.HouseCode = "Q";
    plugin.state.AlbumIconTag = kIcon;
    host->answers["GetEventEx"] = [this](base::Args& args) -> base::Value {
      const auto found = events.find(base::ToText(args.at(0)));
      return found == events.end() ? base::ObjectRef() : base::ObjectRef(found->second.fields);
    };
    host->answers["NewEvent"] = [this](base::Args& args) -> base::Value {
      addEvent(base::ToText(args.at(0)));
      made.push_back(base::ToText(args.at(0)));
      return static_cast<std::int32_t>(made.size());
    };
    host->answers["GetEvent"] = [this](base::Args& args) -> base::Value {
      return base::ObjectRef(
          events.at(made.at(static_cast<std::size_t>(base::ToInt32(args.at(0)) - 1))).fields);
    };
    host->answers["NewDevFunc"] = [](base::Args&) -> base::Value {
      auto entry = std::make_shared<FieldObject>();
      entry->fields = {{"devid", std::int32_t{0}}, {"func", std::int16_t{0}}};
      return base::ObjectRef(entry);
    };
    host->answers["NewDevice"] = [this](base::Args& args) -> base::Value {
      auto device = std::make_shared<FieldObject>();
      device->fields = {{"name", base::ToText(args.at(0))}, {"ref", nextRef++}};
      host->devices.push_back(device);
      return static_cast<std::int32_t>(host->devices.size());
    };
    journal.clear();
  }
  Event& addEvent(const std::string& name) {
    Event& event = events[name];
    event.fields->fields = {{"vcmd", ""},
                            {"misc", std::int32_t{2}},
                            {"misc2", std::int32_t{4}},
                            {"ev_abs_time", std::int16_t{0}},
                            {"Group", ""},
                            {"ev_devices", base::ObjectRef(event.devices)}};
    return event;
  }
  std::string field(const std::string& event, const std::string& name) {
    return base::ToText(events.at(event).fields->fields.at(name));
  }
  std::string vcmd(const std::string& event) { return field(event, "vcmd"); }
  void albums(const std::vector<std::string>& names) { library.attributes["album"] = names; }
  void update(const std::string& category) { plugin.voiceEvents.UpdateMediaEvents(category); }
  /// The value table that was given to the host last: "¦" for code 2, "§" for code 1.
  std::string table() {
    const auto calls = journal.with("DeviceValuesAdd(");
    std::string text = calls.empty() ? "none" : calls.back();
    for (const auto& [code, sign] : {std::pair("\2", "¦"), std::pair("\1", "§")})
      for (std::size_t at = 0; (at = text.find(code)) != std::string::npos;) text.replace(at, 1, sign);
    return text;
  }
  std::vector<std::string> warnings() { return journal.with("WriteLog(\"Warning\""); }

  support::FakeLibrary library{journal};
  std::map<std::string, Event> events;
  std::vector<std::string> made;
  std::int32_t nextRef = 101;
};

using VoiceEvents = VoiceHouse;

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
  albums({"Gold", "Gold Best Of", "Live 99", "Live 99 Remix", "20012 Live", "2001"});
  update("Album");
  EXPECT_EQ(vcmd("Album VR"), "Play Album (2001|20012 Live|Gold|Gold Best Of|Live 99|Live 99 Remix)");
  EXPECT_THAT(warnings(), IsEmpty());
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
    EXPECT_EQ(neighbours.menus.size(), 32'769U) << "the menu has what came before";
    EXPECT_THAT(journal.lines(), Contains(AllOf(HasSubstr("UpdateMediaEvents"), HasSubstr("Overflow"))));
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
  EXPECT_THAT(journal.lines(), Contains(AllOf(HasSubstr("WriteLog"), HasSubstr("UpdateMediaEvents"))));
  EXPECT_EQ(plugin.progBar.ProgressUsers(), 0);
  EXPECT_EQ(table(), "none");
}

TEST_F(VoiceEvents, TheControlEventHasItsCommandAndIsTiedToTheStatus) {
  host->addDevice("Status", "Q", 1)->fields["ref"] = std::int32_t{7};
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_EQ(vcmd("Controls VR"), kControls);
  EXPECT_EQ(field("Controls VR", "misc"), std::to_string(2 | 8 | 64 | 16384));
  EXPECT_EQ(field("Controls VR", "misc2"), "5");
  EXPECT_EQ(field("Controls VR", "ev_abs_time"), "7");
  EXPECT_EQ(field("Controls VR", "Group"), "Media Player");
  EXPECT_THAT(events["Controls VR"].devices->shown(), ElementsAre("7:13"));
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(events["Controls VR"].devices->shown(), ElementsAre("7:13"));
}

TEST_F(VoiceEvents, AUsersOwnCommandSurvivesEveryStart) {
  host->addDevice("Status", "Q", 1)->fields["ref"] = std::int32_t{7};
  addEvent("Controls VR").fields->fields["vcmd"] = "Music (on|off)";
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_EQ(vcmd("Controls VR"), "Music (on|off)");
  EXPECT_EQ(field("Controls VR", "misc"), "2");
  EXPECT_EQ(field("Controls VR", "ev_abs_time"), "7");
}

TEST_F(VoiceEvents, AClearedCommandGetsTheDefaultBackAndItsFlags) {
  host->addDevice("Status", "Q", 1)->fields["ref"] = std::int32_t{7};
  addEvent("Controls VR");
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_EQ(vcmd("Controls VR"), kControls);
  EXPECT_EQ(field("Controls VR", "misc"), std::to_string(2 | 8 | 64 | 16384));
}

TEST_F(VoiceEvents, ADeletedStatusIsMadeAgainAndNothingElse) {
  host->addDevice("Mute", "Q", 9);
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("NewDevice("), ElementsAre("NewDevice(\"Status\")"));
  EXPECT_THAT(journal.with("DeviceButtonAdd("), SizeIs(5));
  EXPECT_THAT(journal.with("DeviceButtonAdd("), Each(HasSubstr("\"Q1\"")));
  EXPECT_THAT(events["Controls VR"].devices->shown(), ElementsAre("101:13"));
}

TEST_F(VoiceEvents, AButtonThatCantBeAddedKeepsTheEventFromNothing) {
  host->failing = {"DeviceButtonAdd"};
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("DeviceButtonAdd("), SizeIs(5)) << "each is tried";
  EXPECT_THAT(events["Controls VR"].devices->shown(), ElementsAre("101:13"));
  EXPECT_THAT(journal.with("WriteLog("), IsEmpty());
}

TEST_F(VoiceEvents, ADeviceThatTellsNoNumberIsLogged) {
  host->addDevice("Status", "Q", 1);
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("NewDevice("), IsEmpty());
  EXPECT_THAT(journal.lines(), Contains(AllOf(HasSubstr("WriteLog"), HasSubstr("UpdateControlEvent"))));
  EXPECT_THAT(events["Controls VR"].devices->shown(), IsEmpty());
  EXPECT_EQ(vcmd("Controls VR"), kControls) << "what was set until then stays";
}
