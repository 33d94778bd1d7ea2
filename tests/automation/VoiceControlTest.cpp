// The voice event of the transport commands, in a house of fakes.
#include "VoiceHouse.hpp"

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

constexpr const char* kControls =
    "(Play|Player) [No] (Stop|Next|Previous|Restart|Pause|Resume|Eject|Shuffle|Loop|Mute|UnMute|Volume Up|"
    "Volume Down|Display Controls|Add to PlayList)";

using VoiceControl = support::VoiceHouse;

}  // namespace

TEST_F(VoiceControl, TheControlEventHasItsCommandAndIsTiedToTheStatus) {
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

TEST_F(VoiceControl, AUsersOwnCommandSurvivesEveryStart) {
  host->addDevice("Status", "Q", 1)->fields["ref"] = std::int32_t{7};
  addEvent("Controls VR").fields->fields["vcmd"] = "Music (on|off)";
  for (int starts = 0; starts < 3; ++starts) {
    plugin.voiceEvents.UpdateControlEvent();
    EXPECT_EQ(vcmd("Controls VR"), "Music (on|off)");
    EXPECT_EQ(field("Controls VR", "misc"), "2");
    EXPECT_EQ(field("Controls VR", "misc2"), "4");
    EXPECT_EQ(field("Controls VR", "ev_abs_time"), "7");
  }
}

TEST_F(VoiceControl, AClearedCommandGetsTheDefaultBackAndItsFlags) {
  host->addDevice("Status", "Q", 1)->fields["ref"] = std::int32_t{7};
  addEvent("Controls VR");
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_EQ(vcmd("Controls VR"), kControls);
  EXPECT_EQ(field("Controls VR", "misc"), std::to_string(2 | 8 | 64 | 16384));
}

TEST_F(VoiceControl, ADeletedStatusIsMadeAgainAndNothingElse) {
  host->addDevice("Mute", "Q", 9);
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("NewDevice("), ElementsAre("NewDevice(\"Status\")"));
  EXPECT_THAT(journal.with("DeviceButtonAdd("),
              ElementsAre("DeviceButtonAdd(\"Q1\", \"Media Player\", \"Pause\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Stop\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Next\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Prev\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Restart\")"));
  const auto status = host->byName("Media Player Status");
  ASSERT_TRUE(status);
  EXPECT_EQ(status->fields["dc"], base::Value(std::int16_t{1}));
  EXPECT_EQ(status->fields["misc"], base::Value(std::int16_t{16}));
  EXPECT_THAT(events["Controls VR"].devices->shown(), ElementsAre("101:13"));
}

TEST_F(VoiceControl, TheStatusIsMadeAgainOnTheHouseCodeOfADeviceThatSurvived) {
  const auto mute = host->addDevice("Mute", "M", 9);
  const auto before = mute->fields;
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_THAT(journal.with("NewDevice("), IsEmpty());
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("NewDevice("), ElementsAre("NewDevice(\"Status\")"));
  const auto status = host->byName("Media Player Status");
  ASSERT_TRUE(status);
  EXPECT_EQ(status->fields["hc"], base::Value("M"));
  EXPECT_TRUE(mute->fields == before);
}

TEST_F(VoiceControl, AButtonThatCantBeAddedKeepsTheEventFromNothing) {
  host->failing = {"DeviceButtonAdd"};
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("DeviceButtonAdd("), SizeIs(5)) << "each is tried";
  EXPECT_THAT(events["Controls VR"].devices->shown(), ElementsAre("101:13"));
  EXPECT_THAT(journal.with("WriteLog("), IsEmpty());
}

TEST_F(VoiceControl, ADeviceThatTellsNoNumberIsLogged) {
  host->addDevice("Status", "Q", 1);
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("NewDevice("), IsEmpty());
  EXPECT_TRUE(logged("UpdateControlEvent Error # 438: ref"));
  EXPECT_THAT(events["Controls VR"].devices->shown(), IsEmpty());
  EXPECT_EQ(vcmd("Controls VR"), kControls) << "what was set until then stays";
}

TEST_F(VoiceControl, AStatusThatCantBeMadeAgainIsLoggedAndTiesNothing) {
  host->failing = {"NewDevice"};
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_TRUE(logged("InitDevice Error # 57: Input or output failed"));
  EXPECT_TRUE(logged("UpdateControlEvent Error # 91: Object missing"));
  EXPECT_THAT(events["Controls VR"].devices->shown(), IsEmpty());
  EXPECT_EQ(vcmd("Controls VR"), kControls);
}

TEST_F(VoiceControl, AHostThatTellsNoDeviceIsLoggedAndNothingIsMade) {
  host->failing = {"GetDeviceEx"};
  plugin.voiceEvents.UpdateControlEvent();
  EXPECT_THAT(journal.with("NewDevice("), IsEmpty());
  EXPECT_TRUE(logged("UpdateControlEvent Error # 57: Input or output failed"));
}
