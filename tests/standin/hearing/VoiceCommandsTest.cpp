// What becomes of what is typed, spoken and said by scripts, with a recogniser that hears what the test
// wants.
#include "standin/hearing/HearingHouse.hpp"

namespace {

using standin::Speaker;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using SpokenCommands = support::HearingHouse;

TEST_F(SpokenCommands, TheOwnerIsAnsweredAloudIfThatIsWished) {
  const Speaker guest{.session = "a guest's", .guest = true};
  const auto saidSoFar = [&](std::size_t count) {
    return eventually([&] { return voice.said().size() >= count; });
  };
  say("play night shift");
  EXPECT_FALSE(commands->speaks()) << "it isn't wished";
  commands->speaks(true);
  say("play night shift", guest);
  say("one two three", guest);
  EXPECT_EQ(done().size(), 2U) << "what a guest types is done all the same";
  say("play night shirt");
  ASSERT_TRUE(saidSoFar(1));
  spoken("play night shift", 0.9);
  spoken("play night shift", 0.4);
  say("some secret words");
  house.onSay("play night shirt");
  ASSERT_TRUE(saidSoFar(5));
  EXPECT_THAT(voice.said(),
              ElementsAre("Play Night Shirt", "Play Night Shift", "Did you mean “Play Night Shift”?",
                          "That was not understood", "Play Night Shirt"));
}

TEST_F(SpokenCommands, AScriptSaysWhatTheOwnerWould) {
  EXPECT_EQ(house.onSay("play night shift"), "Play Night Shift");
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
  EXPECT_EQ(house.onSay("play night shit"), "Did you mean “Play Night Shift” or “Play Night Shirt”?");
  EXPECT_THAT(say("second").says, HasSubstr("was not understood")) << "it wasn't asked";
  EXPECT_EQ(house.onSay("second"), "Play Night Shirt");
  EXPECT_THAT(done(), ElementsAre("Play Night Shift", "Play Night Shirt"));
}

TEST_F(SpokenCommands, WhatIsHeardTooLateIsNotDone) {
  Understood understood;
  speak(understood);
  passed += std::chrono::seconds(25);
  hear("play night shift", 0.9);
  ASSERT_TRUE(understood);
  EXPECT_EQ(understood->kind, Kind::kDone);
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));

  understood.reset();
  speak(understood);
  passed += std::chrono::milliseconds(25'001);
  hear("play night shirt", 0.9);
  ASSERT_TRUE(understood);
  EXPECT_EQ(understood->kind, Kind::kFailed);
  EXPECT_EQ(understood->says, "That took too long: nothing was done");
  EXPECT_EQ(understood->heard, "play night shirt");
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
}

TEST_F(SpokenCommands, ASoundThatIsNotUnderstoodLeavesTheQuestionOpen) {
  question();
  EXPECT_EQ(spoken("play night shift", 0.1).kind, Kind::kUnknown) << "a cough";
  EXPECT_EQ(say("hm").kind, Kind::kUnknown);
  EXPECT_EQ(spoken("first", 0.9).command, "Play Night Shift");
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
}

TEST_F(SpokenCommands, AnotherCommandIsNoAnswerAndTheQuestionIsOver) {
  question();
  EXPECT_EQ(say("play night shirt").kind, Kind::kDone);
  EXPECT_EQ(say("first").kind, Kind::kUnknown);
  EXPECT_THAT(done(), ElementsAre("Play Night Shirt"));
}

TEST_F(SpokenCommands, OfManyQuestionsTheOldestIsForgotten) {
  question("ann");
  passed += std::chrono::milliseconds(1);
  for (int i = 0; i < 99; ++i) question("guest " + std::to_string(i));
  question("ben");
  EXPECT_EQ(say("first", {"ann"}).kind, Kind::kUnknown);
  EXPECT_EQ(say("first", {"ben"}).kind, Kind::kDone);
  EXPECT_EQ(say("second", {"guest 98"}).kind, Kind::kDone);
  EXPECT_THAT(done(), ElementsAre("Play Night Shift", "Play Night Shirt"));
}

}  // namespace
