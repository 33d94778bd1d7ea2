// What events do with devices, in a real house on a real bus.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/eventworld/HouseWorld.hpp"
#include "standin/fakes/FakePlugin.hpp"
#include "standin/fakes/FakeVoice.hpp"
#include "support/BusDaemon.hpp"
#include "support/TempFolder.hpp"

namespace {

using namespace standin;
using support::TurnUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Kind = DeviceAction::Kind;

class DeviceActions : public testing::Test {
 protected:
  DeviceActions() {
    connection.exportObject("/host", host);
    connection.exportObject("/callback", callback);
    hearing = house.hearDevices([this](const Device& device) {
      told.push_back(device.name + " " + std::to_string(device.status) + " " + std::to_string(device.value));
    });
  }
  std::int32_t make(const std::string& name, const std::string& interface) {
    const std::int32_t ref = house.devices.create(name).ref;
    house.devices.put(ref, &Device::interface, interface);
    house.devices.put(ref, &Device::hc, "Q");
    house.devices.put(ref, &Device::dc, "1");
    house.devices.addButton(ref, interface, "Stop");
    told.clear();
    return ref;
  }
  /// Carries the action out to its end; answers what it has failed with.
  std::string carryOut(Kind kind, std::int32_t ref, std::int32_t value = 0) {
    std::optional<std::string> outcome;
    const DeviceAction action{.ref = ref, .kind = kind, .value = value, .caption = "Stop"};
    std::unique_ptr<Deed> deed;
    try {
      deed = world.carryOut(action, [&](const std::string& failure) { outcome = failure; });
    } catch (const base::Failure& failure) {
      return failure.description();
    }
    EXPECT_TRUE(TurnUntil(loop, [&] { return outcome.has_value(); }));
    return outcome.value_or("no answer");
  }
  void startPlugin(support::FakePlugin::Manner manner = {}) {
    fake.emplace(bus.address(), std::move(manner));
    plugin.start();
    ASSERT_TRUE(TurnUntil(loop, [&] { return plugin.state() == PluginPhase::kReady; }));
  }
  /// A plug-in that does this with a device's command.
  static support::FakePlugin::Manner acting(std::function<void(base::Args&)> act) {
    support::FakePlugin::Manner manner;
    manner.more = {{"SetIO",
                    base::MemberKind::kOperation,
                    {{"dv", base::Type::kObject},
                     {"hc", base::Type::kText},
                     {"dc", base::Type::kText},
                     {"Command", base::Type::kInt16},
                     {"Brightness", base::Type::kInt16},
                     {"data1", base::Type::kInt16},
                     {"data2", base::Type::kInt16}},
                    base::Type::kNone,
                    [act = std::move(act)](base::Args& args) {
                      act(args);
                      return base::Value();
                    }}};
    return manner;
  }
  std::size_t heard(const std::string& word) {
    const auto calls = fake->calls();
    return static_cast<std::size_t>(std::count_if(
        calls.begin(), calls.end(), [&](const std::string& call) { return call.starts_with(word); }));
  }
  const Device& device(std::int32_t ref) { return *house.devices.byRef(ref); }

  support::BusDaemon bus;
  support::TempFolder folder;
  bus::PollLoop loop;
  bus::Connection connection{loop, bus.address()};
  House house{folder.path() / "data"};
  BusShelf shelf{connection};
  HouseObjects objects{house, shelf};
  std::optional<support::FakePlugin> fake;
  support::FakeVoice voice;
  Speech speech{loop, house, voice};
  ScriptStore scripts{folder.path() / "scripts"};
  std::vector<std::string> told;
  standin::DeviceHearing hearing;
  base::ObjectRef host = support::ObjectOf("host");
  base::ObjectRef callback = support::ObjectOf(
      "callback", {{"GetVXIface", base::MemberKind::kOperation, {}, base::Type::kObject, [this](base::Args&) {
                      return base::Value(host);
                    }}});
  PluginKeeper plugin{loop, connection, house, callback};
  ScriptRunner runner{loop, connection, house, plugin, nullptr, {}};
  HouseWorld world{loop, house, objects, plugin, speech, scripts, runner};
};

TEST_F(DeviceActions, TurnALampOnAndOffWithoutThePlugin) {
  const std::int32_t lamp = make("Lamp", "");
  EXPECT_EQ(carryOut(Kind::kOn, lamp), "");
  EXPECT_EQ(device(lamp).status, 2);
  EXPECT_EQ(carryOut(Kind::kOff, lamp), "");
  EXPECT_EQ(device(lamp).status, 3);
  EXPECT_EQ(carryOut(Kind::kValue, lamp, 70), "");
  EXPECT_EQ(device(lamp).value, 70);
  EXPECT_THAT(told, ElementsAre("Lamp 2 0", "Lamp 3 0", "Lamp 3 70")) << "what events and pages hear";
}

TEST_F(DeviceActions, WordsThatNobodyHearsAreNotDone) {
  voice.device = false;
  std::optional<std::string> outcome;
  const auto deed =
      world.carryOut(SpeakAction{"Dinner"}, [&](const std::string& failure) { outcome = failure; });
  ASSERT_TRUE(TurnUntil(loop, [&] { return outcome.has_value(); }));
  EXPECT_EQ(*outcome, "There is no sound device");
  voice.device = true;
  outcome.reset();
  const auto again =
      world.carryOut(SpeakAction{"Dinner"}, [&](const std::string& failure) { outcome = failure; });
  ASSERT_TRUE(TurnUntil(loop, [&] { return outcome.has_value(); }));
  EXPECT_EQ(*outcome, "");
}

TEST_F(DeviceActions, WordsBehindTooManyOthersAreNotDone) {
  voice.device = false;
  std::vector<std::string> outcomes;
  for (int i = 0; i < 101; ++i) {
    const auto deed = world.carryOut(SpeakAction{"Dinner"},
                                     [&](const std::string& failure) { outcomes.push_back(failure); });
  }
  EXPECT_THAT(outcomes, ElementsAre("Too many texts wait to be said")) << "the last, and at once";
  ASSERT_TRUE(TurnUntil(loop, [&] { return outcomes.size() == 101; }));
  EXPECT_EQ(std::count(outcomes.begin(), outcomes.end(), "There is no sound device"), 100);
}

TEST_F(DeviceActions, AreStored) {
  const std::int32_t lamp = make("Lamp", "");
  EXPECT_EQ(carryOut(Kind::kOff, lamp), "");
  EXPECT_EQ(carryOut(Kind::kValue, lamp, 12), "");
  const DeviceStore again(house.database);
  EXPECT_EQ(again.byRef(lamp)->status, 3);
  EXPECT_EQ(again.byRef(lamp)->value, 12);
}

TEST_F(DeviceActions, OfAnotherInterfaceAreTheHousesOwnThoughThePluginRuns) {
  startPlugin();
  const std::int32_t blind = make("Blind", "Blinds");
  EXPECT_EQ(carryOut(Kind::kOn, blind), "");
  EXPECT_EQ(carryOut(Kind::kValue, blind, 30), "");
  EXPECT_EQ(device(blind).status, 2);
  EXPECT_EQ(device(blind).value, 30);
  EXPECT_EQ(carryOut(Kind::kPress, blind), "Nobody answers the buttons of that device");
  EXPECT_EQ(heard("SetIO"), 0U);
  EXPECT_EQ(heard("ButtonPress"), 0U) << "its Stop is not the player's";
}

TEST_F(DeviceActions, OfThePluginAreLeftToThePlugin) {
  std::vector<std::string> seen;
  startPlugin(
      acting([&](base::Args& args) { seen.push_back(base::ToText(args[3]) + " " + base::ToText(args[4])); }));
  const std::int32_t quick = make("Quick Album", "media player");
  EXPECT_EQ(carryOut(Kind::kOn, quick), "");
  EXPECT_EQ(device(quick).status, 17) << "the plug-in says what has become of it";
  EXPECT_EQ(carryOut(Kind::kValue, quick, 3), "");
  EXPECT_EQ(device(quick).value, 3);
  EXPECT_EQ(carryOut(Kind::kPress, quick), "");
  EXPECT_THAT(seen, ElementsAre("2 0", "19 3"));
  EXPECT_EQ(heard("ButtonPress Stop"), 1U);
}

TEST_F(DeviceActions, OfThePluginFailAndChangeNothingWhileItIsAway) {
  const std::int32_t quick = make("Quick Album", "Media Player");
  EXPECT_THAT(carryOut(Kind::kValue, quick, 3), HasSubstr("isn't running"));
  EXPECT_THAT(carryOut(Kind::kOn, quick), HasSubstr("isn't running"));
  EXPECT_EQ(device(quick).value, 0);
  EXPECT_EQ(device(quick).status, 17);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(DeviceActions, AValueThatThePluginRefusesIsTakenBack) {
  startPlugin(acting([](base::Args&) { throw base::Failure(base::number::kDeviceIo, "No player"); }));
  const std::int32_t quick = make("Quick Album", "Media Player");
  EXPECT_THAT(carryOut(Kind::kValue, quick, 3), HasSubstr("No player"));
  EXPECT_EQ(device(quick).value, 0);
}

}  // namespace
