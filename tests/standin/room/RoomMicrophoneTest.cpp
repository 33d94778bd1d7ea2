// The server's own microphone, which a program of the test's stands for: what is said in the room, and what
// is wrong with microphones.
#include "standin/room/RoomMicrophone.hpp"

#include <csignal>
#include <fstream>

#include "standin/room/InTheRoom.hpp"

namespace {

using standin::RoomMicrophone;
using support::InTheRoom;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Sound = std::vector<std::int16_t>;
using State = RoomMicrophone::State;

constexpr std::size_t kRate = InTheRoom::kRate;

TEST_F(InTheRoom, NobodyIsHeardUntilItIsWished) {
  programs = {program("exec cat " + pipe())};
  const RoomMicrophone::Parts parts{loop, house, *commands, quiet, speech, programs};
  room.emplace(parts);
  EXPECT_EQ(room->status().state, State::kOff);
  EXPECT_EQ(room->process(), -1);
  room->on(true);
  EXPECT_EQ(room->status().state, State::kStarting);
  feed(stillness(1));
  EXPECT_EQ(room->status().state, State::kListening);
  const pid_t process = room->process();
  ASSERT_GT(process, 0);

  room.emplace(parts);
  EXPECT_EQ(room->status().state, State::kStarting) << "the next start of the server knows of it";
  EXPECT_TRUE(eventually([&] { return ::kill(process, 0) != 0; })) << "it ends with its server";
  const pid_t second = room->process();
  room->on(false);
  EXPECT_EQ(room->status().state, State::kOff);
  EXPECT_TRUE(eventually([&] { return ::kill(second, 0) != 0; }));
  room.emplace(parts);
  EXPECT_EQ(room->status().state, State::kOff);
}

TEST_F(InTheRoom, WhatIsSaidIsDoneAndPlayersMakeRoom) {
  listen();
  sayAloud();
  ASSERT_TRUE(askedFor(1));
  EXPECT_GT(ear.sounds[0].size(), kRate) << "all of the sentence";
  EXPECT_LT(ear.sounds[0].size(), 3 * kRate) << "and little else";
  EXPECT_THAT(players, ElementsAre("quiet")) << "until it is done";
  hear("play night shift", 0.9);
  EXPECT_TRUE(eventually([&] { return players.size() == 2; }));
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
  EXPECT_EQ(room->status().heard, 1U);
  ASSERT_TRUE(room->status().last);
  EXPECT_EQ(room->status().last->heard, "play night shift");
  EXPECT_EQ(room->status().last->says, "Play Night Shift");
}

TEST_F(InTheRoom, AQuestionIsAnsweredThereByVoice) {
  listen();
  sayAloud();
  ASSERT_TRUE(askedFor(1));
  hear("play night shift", 0.5);
  EXPECT_EQ(room->status().last->kind, Kind::kUnclear);
  EXPECT_EQ(say("first").kind, Kind::kUnknown) << "who looks at a page was not asked";
  EXPECT_THAT(done(), IsEmpty());
  sayAloud();
  ASSERT_TRUE(askedFor(2));
  hear("no", 0.5);
  EXPECT_EQ(room->status().last->kind, Kind::kUnknown) << "that may have been said to somebody else";
  sayAloud();
  ASSERT_TRUE(askedFor(3));
  hear("yes", 0.9);
  EXPECT_THAT(done(), ElementsAre("Play Night Shift"));
}

TEST_F(InTheRoom, ACommandThatIsTypedMeanwhileLosesNothing) {
  listen();
  const Sound sentence = support::Spoken("play night shift");
  const auto half = static_cast<std::ptrdiff_t>(sentence.size() / 2);
  const auto hearable = [](const Sound& words) {
    Sound noisy = stillness(static_cast<double>(words.size()) / kRate);
    for (std::size_t i = 0; i < noisy.size(); ++i)
      noisy[i] = static_cast<std::int16_t>(noisy[i] + words[i] / 2);
    return noisy;
  };
  feed(hearable({sentence.begin(), sentence.begin() + half}));
  ASSERT_TRUE(eventually([&] { return players.size() == 1; }));
  EXPECT_EQ(say("play night shirt").kind, Kind::kDone);
  ASSERT_TRUE(eventually([&] { return players.size() == 3; }));
  EXPECT_THAT(players, ElementsAre("quiet", "as before", "quiet"));
  feed(hearable({sentence.begin() + half, sentence.end()}));
  feed(stillness(2));
  ASSERT_TRUE(askedFor(1));
  EXPECT_GT(ear.sounds[0].size(), sentence.size() - kRate / 2) << "all of it is one sentence";
  hear("play night shift", 0.9);
  EXPECT_THAT(done(), ElementsAre("Play Night Shirt", "Play Night Shift"));
  ASSERT_TRUE(eventually([&] { return players.size() == 4; }));
  EXPECT_EQ(players.back(), "as before");
}

TEST_F(InTheRoom, IsAnsweredAloudButNotWhatWasMeantForNobody) {
  commands->speaks(true);
  listen();
  for (const double sure : {0.1, 0.9}) {
    sayAloud();
    ASSERT_TRUE(askedFor(1));
    hear("play night shift", sure);
    ear.sounds.clear();
  }
  ASSERT_TRUE(eventually([&] { return !voice.said().empty(); }));
  EXPECT_THAT(voice.said(), ElementsAre("Play Night Shift"));
  EXPECT_EQ(room->status().heard, 2U) << "the page tells of both";
}

TEST_F(InTheRoom, NobodySpeakingIsNotWorthTelling) {
  listen();
  sayAloud();
  ASSERT_TRUE(askedFor(1));
  answer({.kind = Heard::Kind::kSilence});
  EXPECT_EQ(room->status().heard, 0U);
}

TEST_F(InTheRoom, TheHouseDoesNotHearItself) {
  listen();
  voice.time = std::chrono::minutes(10);
  speech.speak("play night shift", false);
  ASSERT_TRUE(eventually([&] { return !voice.said().empty(); }));
  sayAloud();
  players.clear();
  voice.hush();
  ASSERT_TRUE(eventually([&] { return !speech.speaking(); }));
  feed(stillness(2));
  EXPECT_THAT(ear.sounds, IsEmpty());
  sayAloud();
  EXPECT_TRUE(askedFor(1)) << "who speaks behind it is heard";
  EXPECT_EQ(ear.sounds.size(), 1U);
}

TEST_F(InTheRoom, WhoHoldsAButtonIsHeardOnce) {
  listen();
  quiet.begin("a browser's session");
  sayAloud();
  quiet.end("a browser's session");
  feed(stillness(2));
  EXPECT_THAT(ear.sounds, IsEmpty()) << "the page sends it";
  sayAloud();
  EXPECT_TRUE(askedFor(1));
}

TEST_F(InTheRoom, SwitchedOffInTheMiddleOfAWordItIsOver) {
  listen();
  Sound loud(kRate / 2);
  for (std::size_t i = 0; i < loud.size(); ++i)
    loud[i] = static_cast<std::int16_t>(i % 20 < 10 ? 5000 : -5000);
  feed(loud);
  ASSERT_TRUE(eventually([&] { return players.size() == 1; }));
  room->on(false);
  EXPECT_TRUE(eventually([&] { return players.size() == 2; }));
  EXPECT_THAT(ear.sounds, IsEmpty());
}

TEST_F(InTheRoom, TheNextProgramIsTriedWhereTheFirstIsOfNoUse) {
  listen({program("echo 'Connection refused' >&2; exit 1"),
          {"no-such-program", {}, "nothing"},
          program("exec cat " + pipe())});
  feed(stillness(1));
  EXPECT_EQ(room->status().state, State::kListening);
  EXPECT_EQ(room->status().trouble, "");
}

TEST_F(InTheRoom, WhatIsMissingIsToldWithItsPackages) {
  listen({{"no-such-program", {}, "pulseaudio-utils"}, {"nor-this", {}, "alsa-utils"}});
  EXPECT_EQ(room->status().state, State::kFailed);
  EXPECT_EQ(room->status().trouble,
            "No program that records is installed. Install the package pulseaudio-utils or alsa-utils");
}

TEST_F(InTheRoom, OneThatFailsIsTriedAgainLessAndLessOften) {
  const std::string starts = (folder.path() / "starts").string();
  listen({program("echo >> " + starts + "; echo 'No such device' >&2; exit 1")});
  const auto started = [&] {
    std::ifstream in(starts);
    return std::count(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>(), '\n');
  };
  ASSERT_TRUE(becomes(State::kFailed));
  EXPECT_EQ(room->status().trouble,
            "No such device. Plug a microphone in, and make it the system’s default source");
  EXPECT_EQ(started(), 1);
  wait(std::chrono::seconds(5));
  ASSERT_TRUE(eventually([&] { return started() == 2 && room->process() < 0; }));
  wait(std::chrono::seconds(9));
  EXPECT_LT(room->process(), 0) << "ten seconds now";
  wait(std::chrono::seconds(1));
  ASSERT_TRUE(eventually([&] { return started() == 3 && room->process() < 0; }));
  room->on(true);
  EXPECT_TRUE(eventually([&] { return started() == 4; })) << "at once for who asks for it";
}

TEST_F(InTheRoom, OneThatDiesIsThereAgain) {
  listen();
  const pid_t first = room->process();
  ::kill(first, SIGKILL);
  ASSERT_TRUE(becomes(State::kFailed));
  EXPECT_THAT(room->status().trouble, HasSubstr("See whether the microphone is plugged in"));
  wait(std::chrono::seconds(5));
  ASSERT_GT(room->process(), 0);
  EXPECT_NE(room->process(), first);
  feed(stillness(2));
  sayAloud();
  EXPECT_TRUE(askedFor(1));
}

TEST_F(InTheRoom, RandomBytesAndOtherRatesAreTold) {
  listen({program("exec cat /dev/urandom")});
  ASSERT_TRUE(becomes(State::kFailed));
  EXPECT_THAT(room->status().trouble, HasSubstr("samples a second where 16000 were asked for"));
  EXPECT_LT(room->process(), 0);
  EXPECT_THAT(ear.sounds, IsEmpty());
}

TEST_F(InTheRoom, AMicrophoneThatGivesNothingIsTold) {
  listen({program("exec sleep 1000")});
  wait(std::chrono::seconds(9));
  EXPECT_EQ(room->status().state, State::kStarting);
  wait(std::chrono::seconds(2));
  ASSERT_TRUE(becomes(State::kFailed));
  EXPECT_THAT(room->status().trouble, HasSubstr("Nothing comes from the microphone"));
}

TEST_F(InTheRoom, AMicrophoneThatIsMutedIsToldAndListenedTo) {
  listen();
  for (int i = 0; i < 8; ++i) feed(Sound(9 * kRate, 0));
  wait(std::chrono::seconds(2));
  EXPECT_EQ(room->status().state, State::kListening);
  EXPECT_THAT(room->status().trouble, HasSubstr("Only silence comes from the microphone"));
  feed(stillness(2));
  wait(std::chrono::seconds(2));
  EXPECT_EQ(room->status().trouble, "");
}

TEST_F(InTheRoom, AByteOfASampleWaitsForItsOther) {
  listen({program("printf '\\001\\002\\003'; exec cat " + pipe())});
  ASSERT_TRUE(eventually([&] { return room->status().samples == 1; }));
  feed(stillness(1));
  EXPECT_EQ(room->status().samples, 1 + kRate);
}

}  // namespace
