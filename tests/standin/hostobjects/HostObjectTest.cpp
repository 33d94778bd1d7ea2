#include "standin/hostobjects/HostObject.hpp"

#include <gtest/gtest.h>

#include "base/Failure.hpp"
#include "standin/hostobjects/EventObject.hpp"
#include "standin/hostobjects/HostHouse.hpp"
#include "support/FailureNumber.hpp"

namespace standin {
namespace {

using base::Type;
using base::Value;

class Host : public support::HostHouse {};

struct Expected {
  std::string name;
  std::vector<Type> arguments;
  Type result;
};

void ExpectTable(const base::MemberTable& table, const std::vector<Expected>& expected) {
  for (const Expected& each : expected) {
    const base::Member* member = table.find(each.name);
    ASSERT_NE(member, nullptr) << each.name;
    EXPECT_EQ(member->name, each.name);
    EXPECT_EQ(member->result, each.result) << each.name;
    std::vector<Type> types;
    for (const base::Param& param : member->params) types.push_back(param.type);
    EXPECT_EQ(types, each.arguments) << each.name;
  }
}

TEST_F(Host, HasEveryOperationUnderItsOwnName) {
  const auto kText = Type::kText;
  ExpectTable(*top.callback->members(), {{"GetVXIface", {}, Type::kObject},
                                         {"writesplash", {kText}, Type::kNone},
                                         {"registermenu", {kText, kText}, Type::kNone},
                                         {"checktrigger", {kText}, Type::kBoolean},
                                         {"forcefront", {Type::kInt32}, Type::kNone},
                                         {"GetNextFreeIOCode", {}, Type::kInt16}});
  ExpectTable(*top.host->members(), {{"Version", {}, kText},
                                     {"System", {}, Type::kObject},
                                     {"GetAppPath", {}, kText},
                                     {"Launch", {kText}, Type::kNone},
                                     {"WEBLoggedInUser", {}, kText},
                                     {"RegisterEventCB", {Type::kInt16, Type::kObject}, Type::kNone},
                                     {"RegisterLink", {Type::kObject}, Type::kNone},
                                     {"WriteLog", {kText, kText, kText}, Type::kNone},
                                     {"Speak", {kText, Type::kBoolean}, Type::kNone},
                                     {"Say", {kText}, kText},
                                     {"TriggerEvent", {kText}, Type::kBoolean},
                                     {"WaitEvents", {}, Type::kNone},
                                     {"WaitSecs", {Type::kInt16}, Type::kNone},
                                     {"GetUrl", {kText, kText, Type::kBoolean, Type::kInt32}, kText},
                                     {"GetINISetting", {kText, kText, Type::kAny, kText}, Type::kAny},
                                     {"SaveINISetting", {kText, kText, kText, kText}, Type::kNone},
                                     {"GetINISection", {kText, kText}, kText},
                                     {"ClearINISection", {kText, kText}, Type::kNone},
                                     {"DeviceCount", {}, Type::kInt32},
                                     {"GetDevice", {Type::kAny}, Type::kObject},
                                     {"GetDeviceEx", {kText}, Type::kObject},
                                     {"GetDeviceCode", {kText}, kText},
                                     {"NewDevice", {kText}, kText},
                                     {"DeleteIODevices", {kText}, Type::kNone},
                                     {"DeviceButtonAdd", {kText, kText, kText}, Type::kNone},
                                     {"DeviceValuesAdd", {kText, kText, Type::kBoolean}, Type::kNone},
                                     {"SetDeviceStatus", {kText, Type::kInt16}, Type::kNone},
                                     {"SetDeviceString", {kText, kText, Type::kBoolean}, Type::kNone},
                                     {"SetDeviceStringByName", {kText, kText, Type::kBoolean}, Type::kNone},
                                     {"SetDeviceValueByName", {kText, Type::kInt32}, Type::kNone},
                                     {"GetEvent", {Type::kInt32}, Type::kObject},
                                     {"GetEventEx", {kText}, Type::kObject},
                                     {"NewEvent", {kText}, Type::kInt32},
                                     {"NewDevFunc", {}, Type::kObject}});
  EXPECT_EQ(top.host->members()->list().size(), 34U);
  EXPECT_EQ(top.callback->members()->list().size(), 6U);
}

TEST_F(Host, ADeviceHasEveryFieldWithItsType) {
  const base::ObjectRef device = makeDevice("Status", 1);
  EXPECT_EQ(device->get("location"), Value("Media Player"));
  EXPECT_EQ(device->get("hc"), Value("Q"));
  EXPECT_EQ(device->get("dc"), Value("1"));
  EXPECT_EQ(device->get("interface"), Value("Media Player"));
  EXPECT_EQ(device->get("iotype"), Value(std::int16_t{3}));
  EXPECT_EQ(device->get("Status"), Value(std::int16_t{17}));
  EXPECT_EQ(device->get("misc"), Value(std::int16_t{16}));
  EXPECT_EQ(device->get("dev_type_string"), Value("Media Player"));
  EXPECT_EQ(device->get("Values"), Value(""));
  EXPECT_TRUE(device->get("ref").is<std::int32_t>());
  EXPECT_EQ(support::FailureNumberOf([&] { device->put("ref", 5); }), base::number::kNoSuchMember);
  EXPECT_EQ(support::FailureNumberOf([&] { device->put("iotype", 40000); }), base::number::kOverflow);
}

TEST_F(Host, ADeviceIsFoundByPositionKeyNameAndCode) {
  makeDevice("Status", 1);
  const base::ObjectRef title = makeDevice("Title", 2);
  EXPECT_EQ(base::ToInt32(call("DeviceCount")), 2);
  EXPECT_EQ(base::ToObject(call("GetDevice", {std::int32_t{2}})), title);
  EXPECT_EQ(base::ToObject(call("GetDevice", {std::int16_t{2}})), title);
  EXPECT_EQ(base::ToObject(call("GetDeviceEx", {"MEDIA player title"})), title);
  EXPECT_EQ(text("GetDeviceCode", {"media player Title"}), "Q2");
  EXPECT_EQ(text("GetDeviceCode", {"Media Player Nothing"}), "");
  EXPECT_EQ(base::ToObject(call("GetDeviceEx", {"Media Player Nothing"})), nullptr);
  EXPECT_EQ(base::ToObject(call("GetDevice", {std::int32_t{3}})), nullptr);
  EXPECT_EQ(base::ToObject(call("GetDevice", {std::int32_t{0}})), nullptr);
  EXPECT_EQ(base::ToObject(call("GetDevice", {"#99"})), nullptr);
}

TEST_F(Host, AKeyStaysRightWhenPositionsMove) {
  call("NewDevice", {"Other"});
  const Value key = call("NewDevice", {"Mine"});
  house.devices.remove(house.devices.byPosition(1)->ref);
  EXPECT_EQ(base::ToObject(call("GetDevice", {key}))->get("name"), Value("Mine"));
  EXPECT_EQ(base::ToObject(call("GetDevice", {std::int32_t{1}}))->get("name"), Value("Mine"));
}

TEST_F(Host, ADeletedDevicesFieldsAreMissing) {
  const base::ObjectRef device = makeDevice("Status", 1);
  const std::string path = "/host/devices/" + base::ToText(device->get("ref"));
  EXPECT_TRUE(shelf.objects.contains(path));
  call("DeleteIODevices", {"Media Player"});
  EXPECT_EQ(base::ToInt32(call("DeviceCount")), 0);
  EXPECT_FALSE(shelf.objects.contains(path));
  EXPECT_EQ(support::FailureNumberOf([&] { device->get("hc"); }), base::number::kObjectMissing);
  EXPECT_EQ(support::FailureNumberOf([&] { device->put("hc", "R"); }), base::number::kObjectMissing);
}

TEST_F(Host, DeviceStringsStatusValuesAndButtonsAreSetByCodeAndByName) {
  const base::ObjectRef object = makeDevice("Mute", 9);
  const std::int32_t ref = base::ToInt32(object->get("ref"));
  call("SetDeviceString", {"q9", "<b>one</b>"});
  EXPECT_EQ(house.devices.byRef(ref)->text, "<b>one</b>");
  call("SetDeviceStringByName", {"media player mute", "two", true});
  EXPECT_EQ(house.devices.byRef(ref)->text, "two");
  call("SetDeviceStatus", {"Q9", std::int16_t{2}});
  EXPECT_EQ(house.devices.byRef(ref)->status, kStatusOn);
  call("SetDeviceValueByName", {"Media Player Mute", std::int32_t{70000}});
  EXPECT_EQ(house.devices.byRef(ref)->value, 70000);
  call("DeviceButtonAdd", {"Q9", "Media Player", "Mute toggle"});
  EXPECT_EQ(house.devices.byRef(ref)->buttons.at(0).caption, "Mute toggle");
  call("DeviceValuesAdd", {"Q9",
                           " \x02"
                           "0\x01"
                           "Blue\x02"
                           "1",
                           true});
  EXPECT_EQ(object->get("Values"), Value(" \x02"
                                         "0\x01"
                                         "Blue\x02"
                                         "1"));
  object->put("Values", "");
  EXPECT_EQ(object->get("Values"), Value(""));
}

TEST_F(Host, WhatNamesNoDeviceIsIgnored) {
  call("SetDeviceString", {"Z1", "x"});
  call("SetDeviceStringByName", {"No such device", "x", true});
  call("SetDeviceStatus", {"Z1", std::int16_t{2}});
  call("DeviceButtonAdd", {"Z1", "Media Player", "x"});
  EXPECT_EQ(base::ToInt32(call("DeviceCount")), 0);
}

TEST_F(Host, SettingsGoByCaseAndKeepTheDefaultsTypeWhenAbsent) {
  EXPECT_EQ(call("GetINISetting", {"Settings", "TrayIcon", true, "vxif_WMP.ini"}), Value(true));
  EXPECT_EQ(call("GetINISetting", {"Settings", "Volume", std::int16_t{50}, "vxif_WMP.ini"}),
            Value(std::int16_t{50}));
  call("SaveINISetting", {"Settings", "TrayIcon", false, "vxif_WMP.ini"});
  call("SaveINISetting", {"Settings", "Top", 12.5F, "vxif_WMP.ini"});
  EXPECT_EQ(call("GetINISetting", {"settings", "TRAYICON", true, "vxif_WMP.ini"}), Value("False"));
  EXPECT_EQ(text("GetINISection", {"Settings", "vxif_WMP.ini"}), std::string("TrayIcon=False\0Top=12.5", 23));
  call("ClearINISection", {"Settings", "vxif_WMP.ini"});
  EXPECT_EQ(call("GetINISetting", {"Settings", "Top", "none", "vxif_WMP.ini"}), Value("none"));
}

TEST_F(Host, WithoutAFileTheServersOwnSettingsAnswer) {
  house.webPort = 8123;
  EXPECT_EQ(call("GetINISetting", {"Settings", "svrport", "80"}), Value("8123"));
  EXPECT_EQ(call("GetINISetting", {"Settings", "other", "80"}), Value("80"));
}

TEST_F(Host, EventsAreMadeFoundAndGivenDevices) {
  EXPECT_EQ(base::ToObject(call("GetEventEx", {"Album VR"})), nullptr);
  const std::int32_t index = base::ToInt32(call("NewEvent", {"Album VR"}));
  const base::ObjectRef event = base::ToObject(call("GetEvent", {index}));
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(base::ToObject(call("GetEventEx", {"ALBUM vr"})), event);
  EXPECT_EQ(base::ToObject(call("GetEvent", {index + 1})), nullptr);
  event->put("vcmd", "Play Album (Blue)");
  event->put("misc", 8 | 64 | 16384);
  event->put("misc2", 1);
  event->put("ev_abs_time", std::int16_t{7});
  event->put("Group", "Media Player");
  EXPECT_EQ(base::ToInt32(event->get("misc")), 8 | 64 | 16384);

  const base::ObjectRef list = base::ToObject(event->get("ev_devices"));
  for (std::int32_t devid = 1; devid <= 3; ++devid) {
    const base::ObjectRef entry = base::ToObject(call("NewDevFunc"));
    entry->put("devid", devid);
    entry->put("func", std::int16_t{13});
    list->invoke("Add", entry);
  }
  EXPECT_EQ(base::ToInt32(list->get("Count")), 3);
  EXPECT_EQ(base::ToInt32(list->call("Count")), 3);
  list->invoke("Remove", 2);
  EXPECT_EQ(base::ToInt32(base::Deref(list->invoke("item", 2)).get("devid")), 3);
  EXPECT_EQ(support::FailureNumberOf([&] { list->invoke("item", 3); }), base::number::kIndex);
  base::Deref(list->invoke("item", 1)).put("devid", 11);
  EXPECT_EQ(house.events.byId(index)->devices[0].devid, 11);
  EXPECT_EQ(support::FailureNumberOf([&] { list->invoke("Add", base::ObjectRef()); }),
            base::number::kObjectMissing);
}

TEST_F(Host, ALogLineOfThreeArgumentsIsJoined) {
  call("WriteLog", {"Error", "Media Player", " Internal Error# 5: no sound"});
  call("WriteLog", {"Info", "plain"});
  const auto lines = house.log.newest(2);
  EXPECT_EQ(lines.at(0).type, "Error");
  EXPECT_EQ(lines.at(0).text, "Media Player Internal Error# 5: no sound");
  EXPECT_EQ(lines.at(1).text, "plain");
}

TEST_F(Host, TriggersAndSpeechAreLines) {
  EXPECT_EQ(top.callback->invoke("checktrigger",
                                 "Media Player\x02"
                                 "10"),
            Value(false));
  call("Speak", {"Good morning", true});
  const auto lines = house.log.newest(2);
  EXPECT_EQ(lines.at(0).type, "Trigger");
  EXPECT_EQ(lines.at(0).text, "Media Player | 10");
  EXPECT_EQ(lines.at(1).type, "Speech");
}

TEST_F(Host, HandsTriggersToTheHousesEvents) {
  std::vector<std::string> heard;
  house.onTrigger = [&](const std::string& composed) {
    heard.push_back(composed);
    return composed == "known";
  };
  house.onScriptTrigger = [](const std::string& event) { return event == "Good night"; };
  EXPECT_EQ(top.callback->invoke("checktrigger", "known"), Value(true));
  EXPECT_EQ(top.callback->invoke("checktrigger", "unknown"), Value(false));
  EXPECT_EQ(heard, (std::vector<std::string>{"known", "unknown"}));
  EXPECT_EQ(call("TriggerEvent", {"Good night"}), Value(true));
  EXPECT_EQ(call("TriggerEvent", {"Good morning"}), Value(false));
  std::vector<std::int32_t> devices;
  const auto hearing = house.hearDevices([&](const Device& device) { devices.push_back(device.ref); });
  const std::int32_t ref = house.devices.create("Lamp").ref;
  house.devices.putValue(ref, 3);
  EXPECT_FALSE(devices.empty());
  EXPECT_EQ(devices.back(), ref);
}

TEST_F(Host, TheLineOfTheStartUpScreenIsBounded) {
  top.callback->invoke("writesplash", std::string((64U << 10U) + 1, 'x'));
  EXPECT_EQ(house.splash, std::string(64U << 10U, 'x') + "…");
}

TEST_F(Host, SaysWhatItIs) {
  EXPECT_EQ(text("Version"), "1.7.0");
  EXPECT_EQ(text("GetAppPath"), std::filesystem::canonical(folder.path()).string());
  house.lastVoiceCommand = "play blue";
  EXPECT_EQ(base::Deref(call("System")).get("LastVoiceCommand"), Value("play blue"));
  base::Object& system = base::Deref(call("System"));
  system.put("LastVoiceCommand", "stop");
  EXPECT_EQ(
      support::FailureNumberOf([&] { system.put("LastVoiceCommand", std::string((64U << 10U) + 1, 'x')); }),
      base::number::kOverflow);
  EXPECT_EQ(system.get("LastVoiceCommand"), Value("stop"));
  EXPECT_EQ(base::ToObject(top.callback->call("GetVXIface")), top.host);
  EXPECT_EQ(top.callback->call("GetNextFreeIOCode"), Value(std::int16_t{'Q'}));
}

TEST_F(Host, SaysTheBeginningOfWhatIsTooLongAndTakesNoCommandOfThatLength) {
  const std::string longest(std::size_t{64} << 10U, 'x');
  call("Speak", {longest + "y", true});
  ASSERT_FALSE(voice.said().empty());
  EXPECT_EQ(voice.said().back(), longest + "…");
  EXPECT_EQ(support::FailureNumberOf([&] { call("Say", {longest + "y"}); }), base::number::kOverflow);
}

}  // namespace
}  // namespace standin
