// A recogniser in a process of its own: one that works, and those that don't.
#include <csignal>
#include <random>

#include "standin/ear/EarOfItsOwn.hpp"
#include "standin/fakes/Spoken.hpp"

namespace {

using standin::EarProcess;
using support::EarOfItsOwn;
using support::NetworkFor;
using testing::HasSubstr;

TEST_F(EarOfItsOwn, HearsWhatItWasTaughtLast) {
  EarProcess ear(loop, {.program = EAR_PROGRAM});
  EXPECT_EQ(ear.status().state, State::kOff);
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  EXPECT_EQ(ear.status().state, State::kStarting);
  const std::vector<std::int16_t> sound = support::Spoken("play album night shift");
  ASSERT_FALSE(sound.empty());
  std::optional<Heard> told = heard(ear, sound);  // waits until it is ready
  ASSERT_TRUE(told);
  EXPECT_EQ(told->kind, Kind::kWords);
  EXPECT_EQ(told->words, "play album night shift");
  EXPECT_EQ(ear.status().state, State::kReady);
  EXPECT_GT(ear.status().words, 5U);

  const pid_t first = ear.process();
  ear.learn(NetworkFor("Play Artist (Night Owls)"));
  EXPECT_EQ(ear.status().state, State::kReady) << "the one before goes on hearing";
  ASSERT_TRUE(support::Eventually([&] {
    loop.turn(std::chrono::milliseconds(20));
    return ear.process() != first;
  }));
  told = heard(ear, sound);
  ASSERT_TRUE(told);
  EXPECT_NE(told->words, "play album night shift");
  EXPECT_EQ(heard(ear, std::vector<std::int16_t>(16000, 0))->kind, Kind::kSilence);
}

TEST_F(EarOfItsOwn, WhatIsSaidInPiecesIsHeardAsAWhole) {
  EarProcess ear(loop, {.program = EAR_PROGRAM});
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  const std::vector<std::int16_t> night = support::Spoken("play album night shift");
  const std::vector<std::int16_t> day = support::Spoken("play album long day");
  ASSERT_FALSE(night.empty() || day.empty());
  // Two speak at once, and a third sends all of it in between.
  auto first = ear.begin();
  auto second = ear.begin();
  say(*first, night);
  say(*second, day);
  EXPECT_EQ(heard(ear, day)->words, "play album long day");
  EXPECT_EQ(heard(std::move(second))->words, "play album long day");
  EXPECT_EQ(heard(std::move(first))->words, "play album night shift");
  EXPECT_EQ(heard(ear.begin())->kind, Kind::kSilence) << "of nothing";
}

TEST_F(EarOfItsOwn, WhatIsDroppedInTheMiddleIsForgotten) {
  EarProcess ear(loop, {.program = EAR_PROGRAM});
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  auto dropped = ear.begin();
  say(*dropped, support::Spoken("play album night shift"));
  dropped.reset();
  auto next = ear.begin();
  say(*next, support::Spoken("play album long day"));
  EXPECT_EQ(heard(std::move(next))->words, "play album long day");
}

TEST_F(EarOfItsOwn, OneThatDiesWhileSomebodySpeaksIsStartedAndHearsAllOfIt) {
  EarProcess::Options options{.program = EAR_PROGRAM};
  options.pause = base::Milliseconds(0);
  EarProcess ear(loop, options);
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  auto early = ear.begin();  // nobody hears yet
  ASSERT_TRUE(becomes(ear, State::kReady));
  const std::vector<std::int16_t> sound = support::Spoken("play album night shift");
  say(*early, sound);
  EXPECT_EQ(heard(std::move(early))->words, "play album night shift");

  auto cut = ear.begin();
  say(*cut, {sound.begin(), sound.begin() + 16000});
  ::kill(ear.process(), SIGKILL);
  ASSERT_TRUE(becomes(ear, State::kFailed));
  say(*cut, {sound.begin() + 16000, sound.end()});
  EXPECT_EQ(heard(std::move(cut))->words, "play album night shift");

  auto relearnt = ear.begin();
  say(*relearnt, {sound.begin(), sound.begin() + 16000});
  const pid_t before = ear.process();
  ear.learn(NetworkFor("Play Album (Night Shift|Other Names)"));
  ASSERT_TRUE(eventually([&] { return ear.process() != before; }));
  say(*relearnt, {sound.begin() + 16000, sound.end()});
  EXPECT_EQ(heard(std::move(relearnt))->words, "play album night shift");
}

TEST_F(EarOfItsOwn, OneThatDiesIsToldAndStartedAgain) {
  EarProcess::Options options{.program = EAR_PROGRAM};
  options.pause = base::Milliseconds(0);
  EarProcess ear(loop, options);
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  ::kill(ear.process(), SIGKILL);
  ASSERT_TRUE(becomes(ear, State::kFailed));
  EXPECT_EQ(ear.status().missing, "It has ended");
  const std::optional<Heard> told = heard(ear, support::Spoken("play album night shift"));
  ASSERT_TRUE(told);
  EXPECT_EQ(told->words, "play album night shift");
}

TEST_F(EarOfItsOwn, OneThatDiesIsStartedAgainByItself) {
  EarProcess::Options options{.program = EAR_PROGRAM};
  options.pause = base::Milliseconds(1);
  EarProcess ear(loop, options);
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  ::kill(ear.process(), SIGKILL);
  ASSERT_TRUE(becomes(ear, State::kFailed));
  EXPECT_TRUE(becomes(ear, State::kReady));
  EXPECT_EQ(ear.status().missing, "");
}

TEST_F(EarOfItsOwn, OneThatIsNotThereSaysWhatIsMissing) {
  EarProcess none(loop, {.program = "/nowhere/ear"});
  EXPECT_EQ(heard(none, anything)->reason, "nobody has told the recogniser what can be said");
  none.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(none, State::kFailed));
  EXPECT_EQ(
      none.status().missing,
      "/nowhere/ear can’t be started: No such file or directory. It comes with the server: install that "
      "again");
  EXPECT_EQ(heard(none, anything)->kind, Kind::kDeaf);

  EarProcess noModel(loop, {.program = EAR_PROGRAM, .arguments = {"/nowhere"}});
  noModel.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(noModel, State::kFailed));
  EXPECT_THAT(noModel.status().missing, HasSubstr("Install the package pocketsphinx-en-us"));

  EarProcess noLibrary(loop,
                       shell("echo 'libpocketsphinx.so.3: cannot open shared object file' >&2; exit 127"));
  noLibrary.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(noLibrary, State::kFailed));
  EXPECT_EQ(noLibrary.status().missing,
            "libpocketsphinx.so.3: cannot open shared object file. Install the packages libpocketsphinx3 and "
            "pocketsphinx-en-us");

  EarProcess noSpelling(loop, shell("echo 'libflite.so.1: cannot open shared object file' >&2; exit 127"));
  noSpelling.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(noSpelling, State::kFailed));
  EXPECT_THAT(noSpelling.status().missing, testing::EndsWith(". Install the package libflite1"));

  EarProcess noReason(loop, shell("exit 1"));
  noReason.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(noReason, State::kFailed));
  EXPECT_EQ(noReason.status().missing, "It has ended") << "no package would help";
}

TEST_F(EarOfItsOwn, WhatIsTaughtBeforeItIsReadyTakesThePlaceOfWhatWasTaughtFirst) {
  EarProcess ear(loop, {.program = EAR_PROGRAM});
  ear.learn(NetworkFor("Stop"));
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  const std::optional<Heard> told = heard(ear, support::Spoken("play album night shift"));
  ASSERT_TRUE(told);
  EXPECT_EQ(told->words, "play album night shift");
}

TEST_F(EarOfItsOwn, BytesOfAnyKindAreNoDangerToTheProgram) {
  EarProcess ear(loop, {.program = EAR_PROGRAM});
  ear.learn(NetworkFor("Play Album (Night Shift|Long Day)"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  const pid_t process = ear.process();
  std::minstd_rand random(7);
  std::vector<std::int16_t> noise(16000);
  for (std::int16_t& each : noise) each = static_cast<std::int16_t>(random());
  for (const std::vector<std::int16_t>& sound :
       {noise, {}, {1}, std::vector<std::int16_t>(16000, -32768), std::vector<std::int16_t>(7, 32767)}) {
    const std::optional<Heard> told = heard(ear, sound);
    ASSERT_TRUE(told);
    EXPECT_NE(told->kind, Kind::kDeaf) << told->reason;
  }
  EXPECT_EQ(ear.process(), process) << "it is still the same";

  // And what no server would tell it.
  const std::string messages[] = {ear::Framed(ear::MessageKind::kHear, "before it has learnt") +
                                      ear::Framed(ear::MessageKind::kLearn, "x"),
                                  std::string(100, '\377')};
  for (const std::string& each : messages) {
    support::Process program({"sh", "-c", "{ " + printing(each) + "} | " EAR_PROGRAM});
    EXPECT_EQ(program.wait(), 1);
    std::string come = program.output();
    const std::optional<ear::Message> told = ear::TakeMessage(come);
    ASSERT_TRUE(told);
    EXPECT_EQ(told->kind, ear::MessageKind::kFailed);
    EXPECT_NE(told->content, "");
  }
}

}  // namespace
