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
  plugin::HostServices& to = plugin.host;
  to.GetVXIface();
  to.writesplash("s");
  to.registermenu("a", "b");
  to.checktrigger("t");
  to.forcefront(17);
  to.GetNextFreeIOCode();
  to.Version();
  to.GetAppPath();
  to.Launch("u");
  to.WEBLoggedInUser();
  to.RegisterEventCB(8, host);
  to.RegisterLink(host);
  to.WriteLog("a", "b");
  to.WriteLog("a", "b", "c");
  to.Speak("Hello", true);
  to.WaitEvents();
  to.WaitSecs(2);
  to.GetUrl("example", "/page", false, 80);
  to.GetINISetting("s", "k", 5, "f");
  to.GetINISetting("s", "k", 5);
  to.SaveINISetting("s", "k", 5, "f");
  to.GetINISection("s", "f");
  to.ClearINISection("s", "f");
  to.DeviceCount();
  to.GetDeviceEx("n");
  to.GetDeviceCode("n");
  const base::Value key = to.NewDevice("n");
  to.GetDevice(key);
  to.DeleteIODevices("i");
  to.DeviceButtonAdd("Q1", "Media Player", "Pause");
  to.DeviceValuesAdd("Q12", "a", true);
  to.SetDeviceStatus("Q9", 2);
  to.SetDeviceString("Q9", "t", true);
  to.SetDeviceStringByName("n", "t", true);
  to.SetDeviceValueByName("n", 3);
  to.GetEvent(4);
  to.GetEventEx("e");
  host->answers["NewEvent"] = [](base::Args&) { return base::Value(4); };
  to.NewEvent("e");
  to.NewDevFunc();
  EXPECT_THAT(
      journal.lines(),
      ::testing::ElementsAre(
          "GetVXIface()", "writesplash(\"s\")", "registermenu(\"a\", \"b\")", "checktrigger(\"t\")",
          "forcefront(17)", "GetNextFreeIOCode()", "Version()", "GetAppPath()", "Launch(\"u\")",
          "WEBLoggedInUser()", "RegisterEventCB(8, <object>)", "RegisterLink(<object>)",
          "WriteLog(\"a\", \"b\")", "WriteLog(\"a\", \"b\", \"c\")", "Speak(\"Hello\", True)", "WaitEvents()",
          "WaitSecs(2)", "GetUrl(\"example\", \"/page\", False, 80)", "GetINISetting(\"s\", \"k\", 5, \"f\")",
          "GetINISetting(\"s\", \"k\", 5)", "SaveINISetting(\"s\", \"k\", 5, \"f\")",
          "GetINISection(\"s\", \"f\")", "ClearINISection(\"s\", \"f\")", "DeviceCount()",
          "GetDeviceEx(\"n\")", "GetDeviceCode(\"n\")", "NewDevice(\"n\")", "GetDevice(1)",
          "DeleteIODevices(\"i\")", "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Pause\")",
          "DeviceValuesAdd(\"Q12\", \"a\", True)", "SetDeviceStatus(\"Q9\", 2)",
          "SetDeviceString(\"Q9\", \"t\", True)", "SetDeviceStringByName(\"n\", \"t\", True)",
          "SetDeviceValueByName(\"n\", 3)", "GetEvent(4)", "GetEventEx(\"e\")", "NewEvent(\"e\")",
          "NewDevFunc()"));
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
