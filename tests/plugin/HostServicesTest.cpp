#include "support/House.hpp"

using support::House;

namespace {
class HostServices : public House {
 protected:
  void SetUp() override {
    connect();
    journal.clear();
  }
};
}  // namespace

TEST_F(HostServices, EachMethodIsOneCallByName) {
  plugin.host.SetDeviceStatus("Q9", 2);
  plugin.host.DeviceValuesAdd("Q12",
                              "a\x02"
                              "0",
                              true);
  plugin.host.DeviceButtonAdd("Q1", "Media Player", "Pause");
  plugin.host.Speak("Hello", true);
  plugin.host.GetUrl("example", "/page", false, 80);
  plugin.host.forcefront(17);
  EXPECT_THAT(
      journal.lines(),
      ::testing::ElementsAre("SetDeviceStatus(\"Q9\", 2)",
                             "DeviceValuesAdd(\"Q12\", \"a\x02"
                             "0\", True)",
                             "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Pause\")", "Speak(\"Hello\", True)",
                             "GetUrl(\"example\", \"/page\", False, 80)", "forcefront(17)"));
}

TEST_F(HostServices, WithoutAHostEveryCallFailsWithNumber91) {
  plugin.host.Host.reset();
  try {
    plugin.host.WriteLog("Info", "text");
    FAIL() << "no failure";
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kObjectMissing);
  }
}

TEST_F(HostServices, AnUnknownEventIsNothingAndTheNewOneIsFetchedByItsIndex) {
  EXPECT_EQ(plugin.host.GetEventEx("Album VR"), nullptr);
  host->answers["NewEvent"] = [](base::Args&) { return base::Value(std::int32_t{4}); };
  host->answers["GetEvent"] = [](base::Args&) {
    return base::Value(std::make_shared<support::FieldObject>());
  };
  const std::int32_t index = plugin.host.NewEvent("Album VR");
  EXPECT_NE(plugin.host.GetEvent(index), nullptr);
  EXPECT_TRUE(journal.has("GetEvent(4)"));
}

TEST_F(HostServices, AFieldOfAnUnknownDeviceIsAnObjectMissing) {
  const base::ObjectRef device = plugin.host.GetDeviceEx("Media Player Nothing");
  EXPECT_EQ(device, nullptr);
  try {
    base::Deref(device).get("ref");
    FAIL() << "no failure";
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), 91);
  }
}

TEST_F(HostServices, NoFreeHouseCodeReadsAsMinusOneInEitherForm) {
  host->freeCode = -1;
  EXPECT_EQ(plugin.host.GetNextFreeIOCode(), -1);
  host->answers["GetNextFreeIOCode"] = [](base::Args&) { return base::Value(std::int32_t{65535}); };
  EXPECT_EQ(plugin.host.GetNextFreeIOCode(), -1);
}

TEST_F(HostServices, WaitsLetThePlugInsOwnEventsIn) {
  int openDuringCall = -1;
  host->answers["WaitSecs"] = [&](base::Args&) {
    openDuringCall = loop.openDepth;
    return base::Value();
  };
  plugin.host.WaitSecs(2);
  EXPECT_EQ(openDuringCall, 1);
  EXPECT_EQ(loop.openDepth, 0);
  const int before = loop.pumps;
  plugin.host.WaitEvents();
  EXPECT_EQ(loop.pumps, before + 1);
}
