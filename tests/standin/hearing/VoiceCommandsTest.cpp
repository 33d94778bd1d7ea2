// What becomes of what is typed, spoken and said by scripts, with a recogniser that hears what the test
// wants.
#include "standin/hearing/HearingHouse.hpp"
#include "standin/house/EventRows.hpp"

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

TEST_F(SpokenCommands, WhatIsHardlyASentenceIsNotUnderstoodHoweverLateItIs) {
  commands->speaks(true);
  const auto heard = house.log.lastId();
  Understood understood;
  commands->listen({.session = "the room", .room = true}, std::vector<std::int16_t>(16000, 1),
                   [&](const Understanding& told) { understood = told; });
  passed += std::chrono::seconds(26);
  hear("play night shirt", 0.1);
  ASSERT_TRUE(understood);
  EXPECT_EQ(understood->kind, Kind::kUnknown);
  EXPECT_FALSE(speech.speaking()) << "nobody in the room has asked for an answer";
  EXPECT_EQ(house.log.lastId(), heard) << "and nobody wants to read it";
}

TEST_F(SpokenCommands, WhatAPlayerThatHangsWouldDoTooLateIsNotDone) {
  house.eventSinks = {{8, std::make_shared<support::TableOf>(
                              "vxif", std::vector<base::Member>{{"VXEvent",
                                                                 base::MemberKind::kOperation,
                                                                 {{"parms", base::Type::kArray}},
                                                                 base::Type::kNone,
                                                                 [this](base::Args& args) {
                                                                   if (args[0].array()[1] ==
                                                                       base::Value(false))
                                                                     passed += std::chrono::seconds(26);
                                                                   return base::Value();
                                                                 }}})}};
  speech.events().tell(true);
  const Understanding told = spoken("play night shift", 0.9);
  EXPECT_EQ(told.kind, Kind::kFailed);
  EXPECT_THAT(told.says, HasSubstr("That took too long: nothing was done"));
  EXPECT_THAT(done(), IsEmpty());
  EXPECT_EQ(spoken("play night shift", 0.9).kind, Kind::kDone);
}

TEST_F(SpokenCommands, WhatIsSpokenAndFitsNothingIsNotAdvisedToTryWhatIsNotHeard) {
  EXPECT_EQ(spoken("play album", 0.9).says, "That was not understood");
  EXPECT_THAT(say("play album").says, HasSubstr("Try “stop”"));
}

TEST_F(SpokenCommands, ASoundThatIsNotUnderstoodLeavesTheQuestionOpen) {
  question();
  EXPECT_EQ(spoken("play night shift", 0.1).kind, Kind::kUnknown) << "a cough";
  EXPECT_EQ(say("hm").kind, Kind::kUnknown);
  EXPECT_EQ(spoken("first", 0.9).command, "Play Night Shift");
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
}

TEST_F(SpokenCommands, TheSecondOneIsSaidInManyWays) {
  for (const char* answer : {"second", "the second", "second one", "The second one!", "two", "2"}) {
    question();
    EXPECT_EQ(say(answer).command, "Play Night Shirt") << answer;
  }
  question();
  EXPECT_EQ(say("first one").command, "Play Night Shift");
  question();
  EXPECT_EQ(say("third one").says.substr(0, 23), "There is no third one. ");
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

TEST_F(SpokenCommands, HowSureTheEarIsSaysWhatIsDone) {
  EXPECT_EQ(spoken("play night shift", 0.29).says, "That was not understood");
  for (const double perhaps : {0.30, 0.59}) {
    const Understanding told = spoken("play night shift", perhaps);
    EXPECT_EQ(told.kind, Kind::kUnclear);
    EXPECT_EQ(told.says, "Did you mean “Play Night Shift”?");
    EXPECT_EQ(told.confidence, perhaps);
    EXPECT_EQ(told.heard, "play night shift");
  }
  EXPECT_THAT(done(), IsEmpty());
  const Understanding told = spoken("play night shift", 0.60);
  EXPECT_EQ(told.kind, Kind::kDone);
  EXPECT_THAT(told.events, ElementsAre("Play VR"));
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
}

TEST_F(SpokenCommands, AQuestionIsAnsweredByVoice) {
  for (const char* yes : {"yes", "first"}) {
    spoken("play night shift", 0.5);
    EXPECT_EQ(spoken(yes, 0.9).kind, Kind::kDone) << yes;
  }
  EXPECT_THAT(done(), ElementsAre("Play Night Shift", "Play Night Shift"));
  question();
  EXPECT_EQ(spoken("second", 0.4).command, "Play Night Shirt") << "it was asked for";
  question();
  EXPECT_EQ(spoken("no", 0.9).says, "Nothing was done");
  EXPECT_EQ(spoken("first", 0.9).kind, Kind::kUnknown) << "it has been answered";
  EXPECT_EQ(done().size(), 3U);
}

TEST_F(SpokenCommands, AnAnswerThatIsNoneOfThoseAskedForIsAskedAgain) {
  question();
  const Understanding third = say("the third one");
  EXPECT_EQ(third.kind, Kind::kUnclear);
  EXPECT_EQ(third.says, "There is no third one. Did you mean “Play Night Shift” or “Play Night Shirt”?");
  EXPECT_EQ(third.choices.size(), 2U);
  EXPECT_EQ(spoken("second", 0.9).command, "Play Night Shirt") << "it can still be answered";
  spoken("play night shift", 0.5);
  EXPECT_EQ(spoken("second", 0.9).says, "There is no second one. Did you mean “Play Night Shift”?");
  EXPECT_EQ(say("no").says, "Nothing was done");
  EXPECT_THAT(done(), ElementsAre("Play Night Shirt"));
}

TEST_F(SpokenCommands, AQuestionIsOpenForAMinute) {
  question();
  passed += std::chrono::seconds(60);
  EXPECT_EQ(say("first").kind, Kind::kDone);
  question();
  passed += std::chrono::seconds(61);
  EXPECT_EQ(say("first").kind, Kind::kUnknown);
  EXPECT_EQ(done().size(), 1U);
}

TEST_F(SpokenCommands, NobodyAnswersAnothersQuestion) {
  question("ann");
  EXPECT_EQ(say("first", {"ben"}).kind, Kind::kUnknown);
  EXPECT_EQ(spoken("first", 0.9, "ben").kind, Kind::kUnknown);
  EXPECT_THAT(done(), IsEmpty());
  EXPECT_EQ(say("second", {"ann"}).kind, Kind::kDone);
  EXPECT_THAT(done(), ElementsAre("Play Night Shirt"));
}

TEST_F(SpokenCommands, TwoWhoSpeakAtOnceAreEachAnswered) {
  Understood ann;
  Understood ben;
  speak(ann, "ann");
  speak(ben, "ben");
  hear("play night shift", 0.9);
  ASSERT_TRUE(ann);
  EXPECT_FALSE(ben);
  hear("play night shirt", 0.5);
  ASSERT_TRUE(ben);
  EXPECT_EQ(ann->command, "Play Night Shift");
  EXPECT_EQ(ben->kind, Kind::kUnclear);
  EXPECT_EQ(say("yes", {"ann"}).kind, Kind::kUnknown) << "ben was asked";
  EXPECT_EQ(say("yes", {"ben"}).command, "Play Night Shirt");
}

TEST_F(SpokenCommands, WhoStillSpeaksIsGivenQuietAgainWhateverBecomesOfAnAnswer) {
  standin::AudioEvents& events = speech.events();
  events.tell(true);
  EXPECT_EQ(say("play night shift").kind, Kind::kDone);
  EXPECT_TRUE(events.interrupted());
  EXPECT_TRUE(eventually([&] { return events.making(); }));
  commands->say({"ben"}, "play night shirt", [](const Understanding&) { throw std::runtime_error("gone"); });
  EXPECT_TRUE(events.interrupted());
  EXPECT_TRUE(eventually([&] { return events.making(); }));
  EXPECT_THAT(done(), ElementsAre("Play Night Shift", "Play Night Shirt"));
}

TEST_F(SpokenCommands, WhatCanNoLongerBeSaidIsNotDone) {
  question();
  house.events.put(event, &standin::Event::vcmd, std::string("Play (Night Shift)"));
  EXPECT_NE(say("second").kind, Kind::kDone);
  Understood understood;
  speak(understood);
  house.events.put(event, &standin::Event::vcmd, std::string("Play (Long Day)"));
  hear("play night shift", 0.9);
  ASSERT_TRUE(understood);
  EXPECT_NE(understood->kind, Kind::kDone);
  EXPECT_THAT(done(), IsEmpty());
}

TEST_F(SpokenCommands, WhatHasGoneWhileItWasHeardIsNotDone) {
  Understood understood;
  speak(understood);
  house.devices.remove(device);
  hear("play night shift", 0.9);
  ASSERT_TRUE(understood);
  EXPECT_EQ(understood->kind, Kind::kUnknown) << "no device listens to it";

  understood.reset();
  speak(understood);
  standin::EraseEvent(house.database, event);
  house.events.take(event, standin::ReadEvent(house.database, event));
  hear("play night shift", 0.9);
  ASSERT_TRUE(understood);
  EXPECT_EQ(understood->kind, Kind::kUnknown);
  EXPECT_THAT(done(), IsEmpty());
}

TEST_F(SpokenCommands, ADeafHouseSaysWhyAndSilenceIsNobody) {
  question();
  Understood understood;
  speak(understood);
  answer({.kind = Heard::Kind::kDeaf, .reason = "there is no model"});
  ASSERT_TRUE(understood);
  EXPECT_EQ(understood->kind, Kind::kDeaf);
  EXPECT_EQ(understood->says, "The house can’t listen: there is no model");
  speak(understood);
  answer({.kind = Heard::Kind::kSilence});
  EXPECT_EQ(understood->kind, Kind::kSilence);
  EXPECT_EQ(understood->says, "Nobody was heard speaking");
  EXPECT_EQ(say("first").kind, Kind::kDone) << "neither was an answer";
}

TEST_F(SpokenCommands, WhatThePluginCannotDoIsTold) {
  keeper.stop();
  const Understanding told = say("play night shift");
  EXPECT_EQ(told.kind, Kind::kFailed);
  EXPECT_EQ(told.says, "The plug-in isn't running");
}

TEST_F(SpokenCommands, TheEarLearnsWhatIsNewOnceSomebodyListens) {
  const auto follow = [&] {
    passed += std::chrono::milliseconds(500);
    for (int i = 0; i < 5; ++i) loop.turn(base::Milliseconds(0));
  };
  house.events.put(event, &standin::Event::vcmd, std::string("Play (Night Shift)"));
  follow();
  EXPECT_THAT(ear.learnt, IsEmpty()) << "nobody has ever spoken";
  commands->wake();
  ASSERT_EQ(ear.learnt.size(), 1U);
  EXPECT_EQ(ear.retried, 0);
  commands->wake();
  EXPECT_EQ(ear.learnt.size(), 1U) << "it knows that";
  EXPECT_EQ(ear.retried, 1) << "but it may have failed";
  for (const char* pattern : {"Play (Long Day)", "Play (Long Day|Afternoon)"})
    house.events.put(event, &standin::Event::vcmd, std::string(pattern));
  follow();
  ASSERT_EQ(ear.learnt.size(), 2U) << "once for both";
  EXPECT_THAT(ear.learnt.back().words, testing::Contains("afternoon"));
}

TEST_F(SpokenCommands, WhatIsHeardAfterTheEndIsNobodys) {
  Understood understood;
  speak(understood);
  commands.reset();
  hear("play night shift", 0.9);
  EXPECT_FALSE(understood);
  EXPECT_EQ(house.onSay("play night shift"), "");
}

TEST_F(SpokenCommands, ThirdOfTwoIsAFirstThatWasHeardBadly) {
  question();
  EXPECT_EQ(spoken("third", 0.5).command, "Play Night Shift");
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
  question();
  EXPECT_EQ(say("third").kind, Kind::kUnclear) << "who types it has typed it";
}

TEST_F(SpokenCommands, LoudNonsenseIsNotUnderstood) {
  const Understanding told = spoken("", 0);
  EXPECT_EQ(told.kind, Kind::kUnknown);
  EXPECT_EQ(told.says, "That was not understood");
}

}  // namespace
