// What comes in from the house, and which events it is for.
#include <utility>

#include "standin/eventrun/EventStage.hpp"

namespace {

using namespace standin;
using support::EventStage;
using support::kEnded;
using support::kEndedTold;
using support::kStartedTold;
using testing::ElementsAre;
using testing::IsEmpty;

class Triggers : public EventStage {};

TEST_F(Triggers, OfThePluginFindWhateverStandsInTheFieldOfTheAsterisk) {
  rules.put(1, when(PluginTrigger{"Media Player\2Media Player Triggers\2Playback Ended"}));
  rules.put(2, when(PluginTrigger{"Media Player\2something else\2Playback Ended"}));
  rules.put(3, when(PluginTrigger{"Media Player\2Media Player Triggers\2Playback Ended\2"}, {"c"}));
  rules.put(4, when(PluginTrigger{"Media Player\2Media Player Triggers\2Playback Started"}, {"no"}));
  rules.put(5, when(PluginTrigger{"Other\2Media Player Triggers\2Playback Ended"}, {"no"}));
  EXPECT_TRUE(playbackEnds());
  EXPECT_THAT(done(), ElementsAre("do a", "do a", "do c"));
}

TEST_F(Triggers, WithoutAnAsteriskMeanThatFieldAlone) {
  rules.put(1, when(PluginTrigger{"Media Player\2x\2Playback Ended"}));
  EXPECT_FALSE(engine.pluginTriggered("Media Player\2y\2Playback Ended"));
  EXPECT_TRUE(engine.pluginTriggered("Media Player\2x\2Playback Ended"));
}

TEST_F(Triggers, AreAnsweredWithNoWhereNoEventHasThem) {
  EXPECT_FALSE(engine.pluginTriggered(kEndedTold));
  EXPECT_FALSE(engine.pluginTriggered(""));
  EXPECT_FALSE(engine.pluginTriggered("\2\2\2"));
  Rule off = whenEnded();
  off.on = false;
  rules.put(1, off);
  EXPECT_FALSE(playbackEnds());
  EXPECT_THAT(history.ended, IsEmpty());
}

TEST_F(Triggers, FollowTheRulesAsTheyChange) {
  rules.put(1, whenEnded());
  rules.put(1, when(PluginTrigger{support::kStarted}));
  EXPECT_FALSE(playbackEnds());
  EXPECT_TRUE(engine.pluginTriggered(kStartedTold));
  rules.remove(1);
  EXPECT_FALSE(engine.pluginTriggered(kStartedTold));
}

TEST_F(Triggers, OfOneEventCountOnceForOneThingThatHappens) {
  Rule twice = whenEnded();
  twice.triggers.push_back(twice.triggers.front());
  rules.put(1, twice);
  playbackEnds();
  EXPECT_THAT(done(), ElementsAre("do a"));
}

TEST_F(Triggers, AreTakenDownAtOnceAndSeenToLater) {
  rules.put(1, whenEnded());
  EXPECT_TRUE(engine.pluginTriggered(kEndedTold));
  EXPECT_THAT(done(), IsEmpty()) << "the plug-in waits for the answer";
  settle();
  EXPECT_THAT(done(), ElementsAre("do a"));
}

TEST_F(Triggers, OfADeviceComeWhenItsFieldComesToBeAsWanted) {
  world.devices[5] = {.ref = 5, .status = 3, .value = 10, .text = "off"};
  rules.put(1, when(DeviceTrigger{5, DeviceField::kStatus, Compared::kEquals, "2"}, {"on"}));
  rules.put(2, when(DeviceTrigger{5, DeviceField::kValue, Compared::kAbove, "20"}, {"loud"}));
  rules.put(3, when(DeviceTrigger{5, DeviceField::kText, Compared::kChanges, ""}, {"text"}));
  rules.put(4, when(DeviceTrigger{6, DeviceField::kText, Compared::kChanges, ""}, {"no"}));
  const auto becomes = [&](std::int16_t status, std::int32_t value, const char* text) {
    engine.deviceChanged({5, status, value, text});
    settle();
    return std::exchange(world.journal, {}).with("do ");
  };
  EXPECT_THAT(becomes(3, 20, "off"), IsEmpty());
  EXPECT_THAT(becomes(2, 20, "off"), ElementsAre("do on"));
  EXPECT_THAT(becomes(2, 20, "off"), IsEmpty()) << "it was on before";
  EXPECT_THAT(becomes(2, 21, "on"), ElementsAre("do loud", "do text"));
  EXPECT_THAT(becomes(2, 30, "on"), IsEmpty()) << "it was above before";
  EXPECT_THAT(becomes(3, 5, "on"), IsEmpty());
  EXPECT_THAT(becomes(2, 30, "on"), ElementsAre("do on", "do loud"));
}

TEST_F(Triggers, OfADeviceReadNumbersAsRulesDo) {
  const DeviceFacts warm{.ref = 5, .status = 2, .value = 6, .text = "+6.5"};
  EXPECT_TRUE(IsSo(warm, DeviceField::kValue, Compared::kAbove, "+5"));
  EXPECT_TRUE(IsSo(warm, DeviceField::kText, Compared::kBelow, "7"));
  EXPECT_TRUE(IsSo(warm, DeviceField::kText, Compared::kEquals, "6.50"));
  for (const char* none : {"+-5", "++5", "inf", "-nan", "", "+", " 5", "5,5", "0x1", "1e999"})
    EXPECT_FALSE(IsSo(warm, DeviceField::kValue, Compared::kAbove, none)) << none;
  const DeviceFacts broken{.ref = 5, .status = 2, .value = 0, .text = "nan"};
  EXPECT_TRUE(IsSo(broken, DeviceField::kText, Compared::kEquals, "NaN")) << "a text like any other";
}

TEST_F(Triggers, OfADeviceThatHasOnlyJustComeAreNone) {
  rules.put(1, when(DeviceTrigger{5, DeviceField::kText, Compared::kChanges, ""}));
  engine.deviceChanged({5, 2, 0, "new"});
  settle();
  EXPECT_THAT(done(), IsEmpty());
  engine.deviceChanged({5, 2, 0, "newer"});
  settle();
  EXPECT_THAT(done(), ElementsAre("do a"));
}

TEST_F(Triggers, OfTheStartComeWhenTheHouseIsUp) {
  rules.put(1, when(StartTrigger{}));
  settle();
  EXPECT_THAT(done(), IsEmpty());
  engine.houseStarted();
  settle();
  EXPECT_THAT(done(), ElementsAre("do a"));
}

TEST_F(Triggers, OfScriptsNameTheEventInAnyCase) {
  rules.put(1, when(ScriptTrigger{}), "Good Night");
  rules.put(2, whenEnded(), "Other");
  EXPECT_TRUE(engine.scriptTriggers("good night"));
  EXPECT_FALSE(engine.scriptTriggers("Other")) << "it has no such trigger";
  EXPECT_FALSE(engine.scriptTriggers("Nobody"));
  settle();
  EXPECT_THAT(done(), ElementsAre("do a"));
  rules.put(1, when(ScriptTrigger{}), "Bonne Nuit");
  EXPECT_FALSE(engine.scriptTriggers("good night"));
  EXPECT_TRUE(engine.scriptTriggers("BONNE NUIT"));
}

TEST_F(Triggers, AThousandInASecondAreAThousandEvaluations) {
  for (int i = 0; i < 1000; ++i) {
    Rule rule = whenEnded();
    rule.triggers = {PluginTrigger{"Media Player\2t\2" + std::to_string(i % 10)}};
    if (i < 10) rules.put(i + 1, rule);
  }
  for (int i = 0; i < 1000; ++i) {
    EXPECT_TRUE(engine.pluginTriggered("Media Player\2*\2" + std::to_string(i % 10)));
    loop.leap(base::Milliseconds(1));
  }
  settle();
  EXPECT_EQ(history.ended.size(), 1000U);
}

TEST_F(Triggers, AThousandAtOnceForOneEventLeaveTheRestAndSaySo) {
  rules.put(1, whenEnded());
  world.holding = true;
  for (int i = 0; i < 1000; ++i) EXPECT_TRUE(engine.pluginTriggered(kEndedTold));
  settle();
  EXPECT_EQ(history.begun.size(), 1U);
  EXPECT_EQ(count(Outcome::kLeft) + count(Outcome::kCircle), 999);
  world.finish();
  settle();
  EXPECT_EQ(history.ended.size(), 1000U);
  EXPECT_EQ(engine.running(1), 0U);
}

}  // namespace
