// The house speaks, and the player hears of it.
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <utility>

#include "standin/fakes/FakeVoice.hpp"
#include "standin/voice/EspeakVoice.hpp"
#include "standin/voice/RestingVoice.hpp"
#include "standin/voice/Speech.hpp"
#include "support/BusDaemon.hpp"
#include "support/BusPeer.hpp"
#include "support/TempFolder.hpp"

namespace {

using base::Args;
using base::MemberKind;
using base::Type;
using base::Value;
using standin::EventSink;
using Lines = std::vector<std::string>;

class HouseSpeech : public testing::Test {
 protected:
  /// A listener that writes down the events and what had been said by then.
  base::ObjectRef listener(const std::string& name, std::function<void()> besides = {}) {
    return std::make_shared<support::TableOf>(
        "vxif", std::vector<base::Member>{{"VXEvent",
                                           MemberKind::kOperation,
                                           {{"parms", Type::kArray}},
                                           Type::kNone,
                                           [=, this](Args& args) {
                                             const base::Array& event = args[0].array();
                                             EXPECT_EQ(event.size(), 2U);
                                             EXPECT_EQ(event[0], Value(std::int16_t{8}));
                                             events.push_back(
                                                 name + (event[1] == Value(true) ? " started" : " stopped") +
                                                 " after " + std::to_string(voice.said().size()));
                                             if (besides) besides();
                                             return Value();
                                           }}});
  }
  Lines logged() {
    Lines lines;
    for (const auto& line : house.log.newest(50, "", 0)) lines.push_back(line.type + " " + line.text);
    return lines;
  }
  bool turnUntilEvents(std::size_t count) {
    return support::TurnUntil(loop, [&] { return events.size() >= count; });
  }

  support::TempFolder folder;
  bus::PollLoop loop;
  standin::House house{folder.path()};
  support::FakeVoice voice;
  Lines events;
  standin::Speech speech{loop, house, voice};
};

TEST_F(HouseSpeech, IsBracketedByAudioEvents) {
  house.eventSinks = {EventSink{8, listener("player")}, EventSink{4, listener("other")},
                      EventSink{12, listener("both")}};
  speech.speak("Good morning", true);
  EXPECT_EQ(voice.said(), Lines{"Good morning"});
  EXPECT_EQ(events, (Lines{"player started after 0", "both started after 0", "player stopped after 1",
                           "both stopped after 1"}));
  EXPECT_EQ(logged(), Lines{"Speech Good morning"});
}

TEST_F(HouseSpeech, WithoutWaitingGoesOnByItself) {
  house.eventSinks = {EventSink{8, listener("player")}};
  speech.speak("One", false);
  EXPECT_TRUE(events.empty());
  ASSERT_TRUE(turnUntilEvents(2));
  EXPECT_EQ(events, (Lines{"player started after 0", "player stopped after 1"}));
}

TEST_F(HouseSpeech, TellsWhoDoesNotWaitThatItHasBeenSaid) {
  Lines said;
  const auto note = [&](const std::string& failure) { said.push_back(failure); };
  speech.speak("Good morning", true, note);
  EXPECT_TRUE(said.empty());
  ASSERT_TRUE(support::TurnUntil(loop, [&] { return !said.empty(); }));
  EXPECT_EQ(voice.said(), (Lines{"(a tone)", "Good morning"}));
  speech.speak("", false, note);
  EXPECT_EQ(said, (Lines{"", ""})) << "there was nothing to say";
}

TEST_F(HouseSpeech, TakesTextsInTheirOrder) {
  house.eventSinks = {EventSink{8, listener("player")}};
  speech.speak("One", false);
  speech.speak("Two", false);
  speech.speak("Three", true);
  EXPECT_EQ(voice.said(), (Lines{"One", "Two", "Three"}));
  // The next one is told before the end of the one before: a player is not heard between the two.
  EXPECT_EQ(events, (Lines{"player started after 0", "player started after 1", "player stopped after 1",
                           "player started after 2", "player stopped after 2", "player stopped after 3"}));
}

TEST_F(HouseSpeech, TheHouseGoesOnWhileItSpeaks) {
  voice.time = std::chrono::hours(1);
  bool ticked = false;
  bool before = false;
  const auto timer = loop.makeTimer(base::Milliseconds(1), [&] {
    ticked = true;
    voice.hush();
  });
  timer->enabled(true);
  house.eventSinks = {EventSink{8, listener("player", [&] { before = ticked; })}};
  speech.speak("A long text", true);
  EXPECT_TRUE(before);  // when the second event was told
}

TEST_F(HouseSpeech, WithoutASoundDeviceIsWrittenDown) {
  voice.device = false;
  house.eventSinks = {EventSink{8, listener("player")}};
  speech.speak("One", true);
  speech.speak("Two", true);
  EXPECT_EQ(events.size(), 4U);  // the player goes on in any case
  const Lines lines = logged();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "Speech One"), 1);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "Speech Two"), 1);
  EXPECT_EQ(std::count(lines.begin(), lines.end(),
                       "Info Speech is written to the log only: There is no sound device"),
            1);
}

TEST_F(HouseSpeech, AListenerThatFailsIsDropped) {
  house.eventSinks = {EventSink{8, listener("bad", [] { throw base::Failure(base::number::kHostGone); })},
                      EventSink{8, listener("good")}};
  speech.speak("One", true);
  ASSERT_EQ(house.eventSinks.size(), 1U);
  EXPECT_EQ(events, (Lines{"bad started after 0", "good started after 0", "good stopped after 1"}));
}

TEST_F(HouseSpeech, AProgramWithAListenerThatFailsIsDroppedWithAllOfThem) {
  const support::BusDaemon daemon;
  bus::Connection connection(loop, daemon.address());
  std::atomic<int> asked = 0;
  support::BusPeer program(daemon.address(), [&](bus::Connection& own, bus::PollLoop&) {
    for (const char* path : {"/1", "/2", "/3"})
      own.exportObject(path, support::ObjectOf("Deaf", {{"VXEvent",
                                                         MemberKind::kOperation,
                                                         {{"parms", Type::kArray}},
                                                         Type::kNone,
                                                         [&](Args&) -> Value {
                                                           ++asked;
                                                           throw base::Failure(base::number::kInternal);
                                                         }}}));
  });
  for (const char* path : {"/1", "/2", "/3"})
    house.eventSinks.push_back({8, connection.proxy(program.uniqueName(), path)});
  house.eventSinks.push_back({8, listener("good")});
  speech.speak("One", true);
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(house.eventSinks.size(), 1U);
  EXPECT_EQ(events, (Lines{"good started after 0", "good stopped after 1"}));
}

TEST_F(HouseSpeech, AListenerMaySpeak) {
  int asked = 0;
  house.eventSinks = {EventSink{8, listener("player", [&] {
                                  if (asked++ == 0) speech.speak("Two", true);
                                })}};
  speech.speak("One", true);
  ASSERT_TRUE(turnUntilEvents(4));
  EXPECT_EQ(voice.said(), (Lines{"One", "Two"}));
}

TEST_F(HouseSpeech, WhatTakesTooLongIsCutShort) {
  support::FakeVoice endless;
  endless.time = std::chrono::hours(1);
  standin::Speech impatient(loop, house, endless, base::Milliseconds(100));
  house.eventSinks = {EventSink{8, listener("player")}};
  impatient.speak("On and on", false);
  EXPECT_TRUE(turnUntilEvents(2));
}

/// Hears no call to end before it has begun, as a voice that is still being made ready; and it only begins
/// when one has come.
class LateVoice : public support::FakeVoice {
 public:
  void say(const std::string& text) override {
    called.get_future().wait();
    begun = true;
    FakeVoice::say(text);
  }
  void hush() override {
    if (begun) FakeVoice::hush();
    if (std::exchange(first, false)) called.set_value();
  }
  std::promise<void> called;
  bool first = true;
  std::atomic<bool> begun = false;
};

TEST_F(HouseSpeech, EndsAtOnceAlsoWhenTheVoiceHasOnlyJustBegun) {
  LateVoice late;
  late.time = std::chrono::hours(1);
  {
    standin::Speech brief(loop, house, late);
    brief.speak("On and on", false);
    loop.turn(base::Milliseconds(0));
    loop.turn(base::Milliseconds(0));
  }
  EXPECT_EQ(late.said(), Lines{"On and on"});
}

TEST_F(HouseSpeech, WhoWaitsForItIsLetGoWhenTheServerEnds) {
  voice.time = std::chrono::hours(1);
  standin::Speech patient(loop, house, voice, std::chrono::hours(1));
  bool over = false;
  loop.post([&] {
    loop.post([this] { loop.quit(0); });
    patient.speak("On and on", true);
    over = true;
  });
  EXPECT_EQ(loop.run(), 0);
  EXPECT_TRUE(over);
}

}  // namespace

TEST(EspeakVoice, OnAMachineWithoutSoundSaysSo) {
  standin::EspeakVoice voice;
  try {
    voice.say("a");  // a machine with sound has said it
  } catch (const base::Failure& failure) {
    EXPECT_EQ(failure.number(), base::number::kDeviceIo);
  }
  voice.hush();
}

TEST(RestingVoice, LeavesTheMachineAloneForAMinuteAfterAFailure) {
  class Mute : public support::FakeVoice {
   public:
    void say(const std::string& text) override {
      ++attempts;
      FakeVoice::say(text);
    }
    int attempts = 0;
  } mute;
  mute.device = false;
  auto time = standin::RestingVoice::Clock::now();
  standin::RestingVoice voice(mute, [&] { return time; });
  for (int minute = 1; minute <= 3; ++minute) {
    for (int i = 0; i < 3; ++i) {
      try {
        voice.say("a");
        ADD_FAILURE() << "said";
      } catch (const base::Failure& failure) {
        EXPECT_EQ(failure.number(), base::number::kDeviceIo);
        EXPECT_EQ(failure.description(), "There is no sound device");
      }
      time += std::chrono::seconds(20);
    }
    EXPECT_EQ(mute.attempts, minute);
  }
  mute.device = true;
  voice.say("b");
  voice.say("c");
  voice.tone();
  EXPECT_EQ(mute.said(), (Lines{"b", "c", "(a tone)"}));
}
