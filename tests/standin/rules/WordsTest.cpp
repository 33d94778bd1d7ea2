// Triggers, conditions and actions in words.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "standin/rules/Rules.hpp"
#include "standin/rules/Wordings.hpp"
#include "support/TempFolder.hpp"
#include "support/VirtualLoop.hpp"

namespace standin {
namespace {

using support::Stored;
using testing::ElementsAre;

/// A plug-in that answers when the test lets it.
class Words : public testing::Test {
 protected:
  PluginWords::Ask asking() {
    return [this](const std::vector<PluginWords::Wanted>& wanted, const PluginWords::Told& told) {
      questions.push_back(wanted.size());
      PluginWords::Answer answer;
      answer.gone = gone;
      for (const PluginWords::Wanted& each : wanted) {
        if (gone && answer.words.size() >= before) break;
        answer.words.push_back(
            prefix.empty() ? prefix : prefix + std::to_string(static_cast<int>(each.part)) + each.stored);
      }
      told(answer);
    };
  }
  /// The plug-in's answers come.
  void later() { loop.advance(std::chrono::milliseconds(50)); }

  support::VirtualLoop loop;
  std::vector<std::size_t> questions;  // how many texts each had
  bool gone = false;
  std::size_t before = 0;  // how many it answers before it is gone
  std::string prefix = "words ";
  int news = 0;
};

TEST_F(Words, OfThePluginAreAskedForOnceAndManyAtATime) {
  PluginWords words(loop, asking());
  words.onNews = [&] { ++news; };
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 150; ++i) words.of(PluginPart::kAction, Stored("H0¦H1¦") + std::to_string(i));
    later();
  }
  EXPECT_THAT(questions, ElementsAre(100, 50));
  EXPECT_EQ(news, 1);
  EXPECT_EQ(words.of(PluginPart::kAction, Stored("H0¦H1¦7")), "words 2" + Stored("H0¦H1¦7"));
}

TEST_F(Words, OfOneTextAreOthersAsAConditionThanAsATrigger) {
  PluginWords words(loop, asking());
  words.of(PluginPart::kTrigger, "x");
  words.of(PluginPart::kCondition, "x");
  later();
  EXPECT_EQ(words.of(PluginPart::kTrigger, "x"), "words 0x");
  EXPECT_EQ(words.of(PluginPart::kCondition, "x"), "words 1x");
}

TEST_F(Words, UntilTheyAreKnownTheFieldsAreShown) {
  PluginWords words(loop, asking());
  EXPECT_EQ(words.of(PluginPart::kAction, Stored("Media Player¦Actions¦Play: Album¦¦Blue¦¦¦Track One¦")),
            "Play: Album, Blue, Track One");
  EXPECT_TRUE(questions.empty()) << "nobody waits for the plug-in here";
  EXPECT_EQ(PluginWords::bare("no fields"), "no fields");
  EXPECT_EQ(PluginWords::bare(Stored("H0¦H1¦¦")), "H0 H1  ");
  EXPECT_EQ(PluginWords::bare("a\2b\2c\td"), "c d");
  EXPECT_EQ(PluginWords::bare(""), "");
}

TEST_F(Words, OfAPluginThatIsAwayAreAskedForAgainLater) {
  gone = true;
  before = 1;
  PluginWords words(loop, asking());
  words.onNews = [&] { ++news; };
  words.of(PluginPart::kTrigger, "a");
  words.of(PluginPart::kTrigger, "b");
  later();
  EXPECT_THAT(questions, ElementsAre(2));
  EXPECT_EQ(news, 1) << "what was told before it went is shown";
  words.of(PluginPart::kTrigger, "b");
  later();
  EXPECT_EQ(questions.size(), 1U) << "it is not asked again at once";
  gone = false;
  loop.advance(std::chrono::seconds(6));
  EXPECT_THAT(questions, ElementsAre(2, 1));
  EXPECT_EQ(news, 2);
  EXPECT_EQ(words.of(PluginPart::kTrigger, "b"), "words 0b");
}

TEST_F(Words, OfAPluginThatHasComeBackAreAskedForAtOnce) {
  gone = true;
  PluginWords words(loop, asking());
  words.of(PluginPart::kTrigger, "a");
  later();
  gone = false;
  words.askAgain();
  later();
  EXPECT_EQ(words.of(PluginPart::kTrigger, "a"), "words 0a");
  words.askAgain();
  later();
  EXPECT_EQ(questions.size(), 2U) << "there was nothing more to ask";
}

TEST_F(Words, WhereThePluginHasNoneTheFieldsAreShownForGood) {
  prefix.clear();
  PluginWords words(loop, asking());
  words.onNews = [&] { ++news; };
  words.of(PluginPart::kAction, Stored("H0¦H1¦No Action"));
  later();
  EXPECT_EQ(words.of(PluginPart::kAction, Stored("H0¦H1¦No Action")), "No Action");
  later();
  EXPECT_EQ(questions.size(), 1U);
  EXPECT_EQ(news, 0);
}

TEST_F(Words, TheOnesThatNobodyUsesGoWhenThereIsTooLittleRoom) {
  PluginWords::Limits limits;
  limits.bytes = 10'000;  // room for some fifty
  PluginWords words(loop, asking(), limits);
  const auto ask = [&](int from, int to) {
    for (int i = from; i < to; ++i) words.of(PluginPart::kAction, "text " + std::to_string(i));
    later();
  };
  ask(0, 40);
  loop.advance(std::chrono::minutes(11));
  ask(0, 1);
  ask(100, 140);
  EXPECT_EQ(words.of(PluginPart::kAction, "text 139"), "words 2text 139");
  EXPECT_EQ(words.of(PluginPart::kAction, "text 0"), "words 2text 0");
  EXPECT_EQ(words.of(PluginPart::kAction, "text 39"), "text 39");
}

TEST_F(Words, MoreThanThereIsRoomForAreNotAskedForOverAndOver) {
  PluginWords::Limits limits;
  limits.batch = 1000;
  limits.bytes = 10'000;
  PluginWords words(loop, asking(), limits);
  for (int round = 0; round < 20; ++round) {
    for (int i = 0; i < 200; ++i) words.of(PluginPart::kAction, "text " + std::to_string(i));
    later();
  }
  EXPECT_LE(questions.size(), 2U);
}

TEST_F(Words, AnAnswerThatComesTooLateIsNobodys) {
  PluginWords::Told late;
  {
    PluginWords words(loop, [&](const auto&, const PluginWords::Told& told) { late = told; });
    words.of(PluginPart::kAction, "x");
    later();
  }
  ASSERT_TRUE(late);
  late({{"words"}, false});
}

TEST(OwnWords, NameDurationsAndDaysShortly) {
  EXPECT_EQ(DurationWords(0), "0 seconds");
  EXPECT_EQ(DurationWords(1), "1 second");
  EXPECT_EQ(DurationWords(90), "90 seconds");
  EXPECT_EQ(DurationWords(60), "1 minute");
  EXPECT_EQ(DurationWords(5400), "90 minutes");
  EXPECT_EQ(DurationWords(86400), "24 hours");
  EXPECT_EQ(DayWords(0), "");
  EXPECT_EQ(DayWords(0x7F), "");
  EXPECT_EQ(DayWords(0b0000011), "Mon, Tue");
  EXPECT_EQ(DayWords(0b0011111), "Mon to Fri");
  EXPECT_EQ(DayWords(0b1100000), "Sat, Sun");
  EXPECT_EQ(DayWords(0b1110101), "Mon, Wed, Fri to Sun");
}

class Sentences : public Words {
 protected:
  Sentences() {
    lamp = house.devices.create("Lamp").ref;
    evening = house.events.create("Good night").id;
  }
  template <class Part>
  std::string of(const Part& part) {
    if constexpr (std::is_constructible_v<Trigger, Part>)
      return words.of(Trigger(part));
    else
      return words.of(Action(part));
  }
  std::string ask(const decltype(Condition::asked)& asked, bool negated = false) {
    return words.of(Condition{asked, negated});
  }
  support::TempFolder folder;
  House house{folder.path()};
  PluginWords plugin{loop, asking()};
  Wordings words{house, plugin};
  std::int32_t lamp = 0;
  std::int32_t evening = 0;
};

TEST_F(Sentences, TellTriggers) {
  EXPECT_EQ(of(TimeTrigger{22 * 60, 3}), "22:00 on Mon, Tue");
  EXPECT_EQ(of(TimeTrigger{5, 0}), "00:05");
  EXPECT_EQ(of(SunTrigger{false, -30, 0}), "30 minutes before sunset");
  EXPECT_EQ(of(SunTrigger{true, 60, 1}), "1 hour after sunrise on Mon");
  EXPECT_EQ(of(SunTrigger{true, 0, 0}), "Sunrise");
  EXPECT_EQ(of(EveryTrigger{1}), "Every minute");
  EXPECT_EQ(of(EveryTrigger{15}), "Every 15 minutes");
  EXPECT_EQ(of(EveryTrigger{60}), "Every hour");
  EXPECT_EQ(of(EveryTrigger{120}), "Every 2 hours");
  EXPECT_EQ(of(StartTrigger{}), "The house starts");
  EXPECT_EQ(of(ScriptTrigger{}), "A script asks for it");
  EXPECT_EQ(of(DeviceTrigger{lamp, DeviceField::kStatus, Compared::kEquals, "2"}), "Lamp turns on");
  EXPECT_EQ(of(DeviceTrigger{lamp, DeviceField::kStatus, Compared::kEquals, "3"}), "Lamp turns off");
  EXPECT_EQ(of(DeviceTrigger{lamp, DeviceField::kStatus, Compared::kEquals, "17"}),
            "Lamp's status becomes 17");
  EXPECT_EQ(of(DeviceTrigger{lamp, DeviceField::kStatus, Compared::kChanges, ""}), "Lamp's status changes");
  EXPECT_EQ(of(DeviceTrigger{lamp, DeviceField::kValue, Compared::kAbove, "5"}), "Lamp's value goes above 5");
  EXPECT_EQ(of(DeviceTrigger{lamp, DeviceField::kText, Compared::kEquals, "x"}), "Lamp's text becomes “x”");
  EXPECT_EQ(of(DeviceTrigger{99, DeviceField::kStatus, Compared::kEquals, "2"}), "Device 99 (gone) turns on");
  EXPECT_EQ(of(PluginTrigger{Stored("Media Player¦Media Player Triggers¦Playback Ended")}), "Playback Ended");
}

TEST_F(Sentences, TellConditionsAndTheirContrary) {
  EXPECT_EQ(ask(DeviceCondition{lamp, DeviceField::kStatus, Compared::kEquals, "2"}), "Lamp is on");
  EXPECT_EQ(ask(DeviceCondition{lamp, DeviceField::kStatus, Compared::kEquals, "3"}, true),
            "Lamp is not off");
  EXPECT_EQ(ask(DeviceCondition{lamp, DeviceField::kValue, Compared::kBelow, "5"}),
            "Lamp's value is below 5");
  EXPECT_EQ(ask(DeviceCondition{lamp, DeviceField::kText, Compared::kEquals, "x"}, true),
            "Lamp's text is not “x”");
  EXPECT_EQ(ask(WindowCondition{22 * 60, 6 * 60}), "It is between 22:00 and 06:00");
  EXPECT_EQ(ask(WindowCondition{22 * 60, 6 * 60}, true), "It is not between 22:00 and 06:00");
  EXPECT_EQ(ask(DaysCondition{0b1100000}), "It is Sat, Sun");
  EXPECT_EQ(ask(DaysCondition{0}), "It is any day");
  EXPECT_EQ(ask(EventCondition{99}), "Since this was asked last, event 99 (gone) has run");
  const PluginCondition playing{Stored("Media Player¦Media Player Status¦Playing¦Yes")};
  EXPECT_EQ(ask(playing, true), "Not: Playing, Yes");
  later();
  EXPECT_EQ(ask(playing), "words 1" + playing.stored);
}

TEST_F(Sentences, TellActions) {
  EXPECT_EQ(of(DeviceAction{lamp, DeviceAction::Kind::kOn, 0, ""}), "Turn Lamp on");
  EXPECT_EQ(of(DeviceAction{lamp, DeviceAction::Kind::kOff, 0, ""}), "Turn Lamp off");
  EXPECT_EQ(of(DeviceAction{lamp, DeviceAction::Kind::kValue, 3, ""}), "Set Lamp to 3");
  EXPECT_EQ(of(DeviceAction{lamp, DeviceAction::Kind::kPress, 0, "Dim"}), "Press “Dim” of Lamp");
  EXPECT_EQ(of(SpeakAction{"Good night"}), "Say “Good night”");
  EXPECT_EQ(of(WaitAction{90}), "Wait 90 seconds");
  EXPECT_EQ(of(ScriptAction{"x"}), "Run the script “x”");
  EXPECT_EQ(of(EventAction{evening}), "Trigger “Good night”");
  EXPECT_EQ(of(EventAction{99}), "Trigger event 99 (gone)");
  EXPECT_EQ(of(FadeAction{0, 600, FadeAction::Then::kStop}),
            "Fade the volume to 0 over 10 minutes, then stop");
  EXPECT_EQ(of(WakeAction{{Stored("H0¦H1¦Play: Album¦¦Blue")}, "Good morning", 40, 120}),
            "Wake up with Play: Album, Blue, else a tone and “Good morning”; the volume rises to 40 over 2 "
            "minutes");
  EXPECT_EQ(of(WakeAction{{}, "", 40, 0}), "Wake up with a tone; the volume rises to 40 at once");
}

TEST_F(Sentences, FollowNewNamesAndCutLongOnes) {
  house.events.put(evening, &Event::name, "Sleep well");
  EXPECT_EQ(of(EventAction{evening}), "Trigger “Sleep well”");
  std::string text;
  for (int i = 0; i < 100; ++i) text += "夜";
  std::string shown;
  for (int i = 0; i < 40; ++i) shown += "夜";
  EXPECT_EQ(of(SpeakAction{text}), "Say “" + shown + "…”");
}

}  // namespace
}  // namespace standin
