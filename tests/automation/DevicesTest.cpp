#include "support/House.hpp"

using support::House;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class CreateDevices : public House {
 protected:
  void SetUp() override {
    connect();
    plugin.state.AlbumIconTag = kIcon;
    journal.clear();
  }
  static std::string field(const support::FieldObject& device, const std::string& name) {
    return base::ToText(device.fields.at(name));
  }
  static constexpr const char* kUnknown = "Unknown Error in InitDevices";
};

}  // namespace

TEST_F(CreateDevices, MakesTheTenDevicesOnAFreeHouseCode) {
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_EQ(plugin.state.HouseCode, "Q");
  EXPECT_EQ(host->settings["housecodeset"], "81");
  std::vector<std::string> made;
  for (const auto& device : host->devices)
    made.push_back(field(*device, "name") + "/" + field(*device, "dc") + "/" + field(*device, "misc"));
  EXPECT_THAT(
      made, ElementsAre("Status/1/16", "Title/2/16", "Album/3/16", "Artist/4/16", "Genre/5/16", "Length/6/16",
                        "Loop Mode/7/24", "Shuffle Mode/8/24", "Mute/9/24", "Display Controls/10/24"));
}

TEST_F(CreateDevices, SetsTheFieldsOfADeviceInOrder) {
  plugin.devices.CreateDevices();
  const auto& lines = journal.lines();
  const auto first = static_cast<std::ptrdiff_t>(journal.find("NewDevice(\"Status\")"));
  ASSERT_LT(first + 15, static_cast<std::ptrdiff_t>(lines.size()));
  EXPECT_THAT(std::vector<std::string>(lines.begin() + first, lines.begin() + first + 16),
              ElementsAre("NewDevice(\"Status\")", "GetDevice(1)", "location = \"Media Player\"",
                          "hc = \"Q\"", "dc = 1", "interface = \"Media Player\"", "Status = 17", "misc = 16",
                          "dev_type_string = \"Media Player\"", "iotype = 3",
                          std::string("SetDeviceString(\"Q1\", \"") + kIcon + "\", True)",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Pause\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Stop\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Next\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Prev\")",
                          "DeviceButtonAdd(\"Q1\", \"Media Player\", \"Restart\")"));
}

TEST_F(CreateDevices, GivesTheOtherDevicesTheirButtons) {
  plugin.devices.CreateDevices();
  auto buttons = journal.with("DeviceButtonAdd");
  buttons.erase(buttons.begin(), buttons.begin() + 5);
  EXPECT_THAT(buttons, ElementsAre("DeviceButtonAdd(\"Q2\", \"Media Player\", \"Add to PlayList\")",
                                   "DeviceButtonAdd(\"Q7\", \"Media Player\", \"Loop toggle\")",
                                   "DeviceButtonAdd(\"Q8\", \"Media Player\", \"Shuffle toggle\")",
                                   "DeviceButtonAdd(\"Q9\", \"Media Player\", \"Mute toggle\")",
                                   "DeviceButtonAdd(\"Q9\", \"Media Player\", \"Vol Down\")",
                                   "DeviceButtonAdd(\"Q9\", \"Media Player\", \"Vol Up\")",
                                   "DeviceButtonAdd(\"Q10\", \"Media Player\", \"Show/Hide Controls\")"));
}

TEST_F(CreateDevices, WrittenFieldsCarryTheirTypes) {
  plugin.devices.CreateDevices();
  const auto& fields = host->devices.front()->fields;
  for (const char* name : {"dc", "Status", "misc", "iotype"})
    EXPECT_TRUE(fields.at(name).is<std::int16_t>()) << name;
}

TEST_F(CreateDevices, OneSurvivingDeviceIsProofOfAllOfThem) {
  host->settings["housecodeset"] = "0";
  host->addDevice("Porch", "B", 4, "Lights", 3);
  host->addDevice("Mute", "M", 9);
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_EQ(plugin.state.HouseCode, "M");
  EXPECT_THAT(journal.with("NewDevice"), IsEmpty());
  EXPECT_THAT(journal.with("GetNextFreeIOCode"), IsEmpty());
  EXPECT_EQ(host->settings["housecodeset"], "77");
}

TEST_F(CreateDevices, TheStoredCodeNeverChoosesTheHouseCode) {
  host->settings["housecodeset"] = "70";
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_EQ(plugin.state.HouseCode, "Q");
}

TEST_F(CreateDevices, ADeviceOfAnotherTypeOrInterfaceDoesNotCount) {
  host->addDevice("Status", "A", 1, "Media Player", 2);
  host->addDevice("Status", "B", 1, "Lights", 3);
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_EQ(plugin.state.HouseCode, "Q");
  EXPECT_EQ(journal.with("NewDevice").size(), 10U);
}

TEST_F(CreateDevices, ARequestToRecreateDeletesFirstAlsoWhenThereIsNothing) {
  host->settings["housecodeset"] = "-1";
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_TRUE(journal.has("DeleteIODevices(\"Media Player\")"));
  EXPECT_LT(journal.find("DeleteIODevices(\"Media Player\")"), journal.find("GetNextFreeIOCode()"));
  EXPECT_THAT(journal.with("DeviceCount"), IsEmpty());
  EXPECT_EQ(host->settings["housecodeset"], "81");
  EXPECT_EQ(plugin.state.HouseCode, "Q");
  EXPECT_EQ(journal.with("NewDevice").size(), 10U);
}

TEST_F(CreateDevices, WithoutARequestNothingIsDeleted) {
  plugin.devices.CreateDevices();
  EXPECT_THAT(journal.with("DeleteIODevices"), IsEmpty());
}

TEST_F(CreateDevices, AnEmptyHouseCodeOnAMatchingDeviceTakesTheErrorExit) {
  host->addDevice("Status", "", 1);
  EXPECT_EQ(plugin.devices.CreateDevices(), kUnknown);
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure CommonModule/CreateDevices Error # 5: "
                     "Invalid argument"));
}

TEST_F(CreateDevices, NoFreeHouseCodeIsToldAndTheNextStartTriesAgain) {
  host->freeCode = -1;
  EXPECT_EQ(plugin.devices.CreateDevices(), "Media Player Error: Sorry, all device codes used");
  EXPECT_TRUE(journal.has("critical box Media Player: Media Player Error: Sorry, all device codes used"));
  EXPECT_THAT(journal.with("SaveINISetting"), IsEmpty());
  EXPECT_EQ(plugin.state.HouseCode, "");
  host->freeCode = 'R';
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_EQ(plugin.state.HouseCode, "R");
}

TEST_F(CreateDevices, AFailureInsideOneDeviceGoesOnWithTheNext) {
  int made = 0;
  host->answers["SetDeviceString"] = [&](base::Args&) {
    if (++made == 3) throw base::Failure(base::number::kDeviceIo);
    return base::Value();
  };
  EXPECT_EQ(plugin.devices.CreateDevices(), "");
  EXPECT_EQ(journal.with("NewDevice").size(), 10U);
  EXPECT_TRUE(logged("Error",
                     "Media Player Could not complete procedure CommonModule/InitDevice Error # 57: Input "
                     "or output failed"));
}

TEST_F(CreateDevices, AFailureOfItsOwnLeavesTheUnknownError) {
  host->failing = {"DeviceButtonAdd"};
  EXPECT_EQ(plugin.devices.CreateDevices(), kUnknown);
}

TEST_F(CreateDevices, InitDeviceAnswersWhatNewDeviceReturned) {
  plugin.state.HouseCode = "Q";
  EXPECT_EQ(plugin.devices.InitDevice("Quick Album", 12, 16), base::Value(std::int32_t{1}));
}
