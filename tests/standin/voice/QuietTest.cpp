// Players make room for those who speak to the house.
#include "standin/voice/Quiet.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "standin/fakes/FakeVoice.hpp"
#include "standin/voice/Speech.hpp"
#include "support/BusPeer.hpp"
#include "support/TempFolder.hpp"

namespace {

using base::Args;
using base::MemberKind;
using base::Type;
using base::Value;
using Lines = std::vector<std::string>;

class ASpeaker : public testing::Test {
 protected:
  ASpeaker() {
    house.eventSinks = {{8, std::make_shared<support::TableOf>(
                                "vxif", std::vector<base::Member>{{"VXEvent",
                                                                   MemberKind::kOperation,
                                                                   {{"parms", Type::kArray}},
                                                                   Type::kNone,
                                                                   [this](Args& args) {
                                                                     heard(args[0].array()[1] == Value(true));
                                                                     return Value();
                                                                   }}})}};
  }
  void heard(bool started) { events.emplace_back(started ? "started" : "stopped"); }

  support::TempFolder folder;
  bus::PollLoop loop;
  standin::House house{folder.path()};
  support::FakeVoice voice;
  standin::Speech speech{loop, house, voice};
  Lines events;
};

TEST_F(ASpeaker, IsGivenQuietOnceAndUntilHisOwnEnd) {
  standin::Quiet quiet(loop, speech.events());
  quiet.begin("anna");
  quiet.begin("anna");
  quiet.begin("ben");
  quiet.end("anna");
  quiet.end("anna");
  quiet.end("nobody");
  EXPECT_EQ(events, (Lines{"started", "started", "stopped"}))
      << "who counts them knows that one still speaks";
  quiet.end("ben");
  EXPECT_EQ(events, (Lines{"started", "started", "stopped", "stopped"}));
}

TEST_F(ASpeaker, WhoHasGoneKeepsNobodyQuiet) {
  standin::Quiet quiet(loop, speech.events(), base::Milliseconds(1));
  quiet.begin("anna");
  ASSERT_TRUE(support::TurnUntil(loop, [&] { return events.size() == 2; }));
  EXPECT_EQ(events, (Lines{"started", "stopped"}));
  quiet.begin("anna");
  ASSERT_TRUE(support::TurnUntil(loop, [&] { return events.size() == 4; }));
}

TEST(Quiet, IsGivenAnewToWhoBeginsAgain) {
  const support::TempFolder folder;
  std::chrono::seconds passed{0};
  const auto began = std::chrono::steady_clock::now();
  bus::PollLoop loop([&] { return began + passed; });
  standin::House house(folder.path());
  standin::AudioEvents events(loop, house);
  standin::Quiet quiet(loop, events);
  const auto after = [&](int seconds) {
    passed = std::chrono::seconds(seconds);
    for (int i = 0; i < 3; ++i) loop.turn(base::Milliseconds(0));
    return events.making();
  };
  quiet.begin("anna");
  EXPECT_TRUE(after(30));
  quiet.begin("anna");
  EXPECT_TRUE(after(64));
  EXPECT_FALSE(after(66));
}

TEST_F(ASpeaker, ThereIsRoomForTwentyOfThem) {
  standin::Quiet quiet(loop, speech.events());
  for (int i = 0; i < 1000; ++i) quiet.begin(std::to_string(i));
  EXPECT_EQ(events.size(), 20U);
  for (int i = 0; i < 1000; ++i) quiet.end(std::to_string(i));
  EXPECT_EQ(events.size(), 40U);
}

TEST_F(ASpeaker, IsHeardOverByACommandAndHisEndIsNotToldTwice) {
  standin::Quiet quiet(loop, speech.events());
  quiet.begin("anna");
  quiet.begin("ben");
  speech.events().endAll();
  EXPECT_EQ(events, (Lines{"started", "started", "stopped", "stopped"}));
  events.clear();
  quiet.end("anna");
  quiet.end("ben");
  speech.events().endAll();
  EXPECT_EQ(events, Lines());
  quiet.begin("anna");
  quiet.end("anna");
  EXPECT_EQ(events, (Lines{"started", "stopped"})) << "what begins later is told as ever";
}

TEST_F(ASpeaker, WhoStillSpeaksBehindACommandIsGivenQuietAgain) {
  standin::Quiet quiet(loop, speech.events());
  quiet.begin("anna");
  quiet.begin("ben");
  speech.events().endAll();
  EXPECT_TRUE(speech.events().interrupted());
  events.clear();
  quiet.end("anna");
  speech.events().goOn();
  EXPECT_EQ(events, (Lines{"started"})) << "Ben's";
  EXPECT_FALSE(speech.events().interrupted());
  quiet.end("ben");
  EXPECT_EQ(events, (Lines{"started", "stopped"}));
  EXPECT_FALSE(speech.events().making());
}

TEST_F(ASpeaker, IsGivenNoQuietBetweenTwoCommands) {
  standin::Quiet quiet(loop, speech.events());
  quiet.begin("anna");
  speech.events().endAll();
  speech.events().endAll();
  events.clear();
  speech.events().goOn();
  EXPECT_EQ(events, Lines()) << "the second is being carried out";
  speech.events().goOn();
  EXPECT_EQ(events, (Lines{"started"}));
}

TEST_F(ASpeaker, WhoIsHeardOverDoesNotEndTheQuietOfALaterOne) {
  standin::Quiet quiet(loop, speech.events());
  quiet.begin("anna");
  speech.events().endAll();
  quiet.begin("ben");
  events.clear();
  quiet.end("anna");
  EXPECT_EQ(events, Lines());
  quiet.end("ben");
  EXPECT_EQ(events, (Lines{"stopped"}));
}

}  // namespace
