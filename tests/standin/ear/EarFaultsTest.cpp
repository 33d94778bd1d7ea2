// Processes that are no good listeners.
#include <fcntl.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>

#include "standin/ear/EarOfItsOwn.hpp"
#include "support/TempFolder.hpp"

namespace {

using standin::EarProcess;
using support::NetworkFor;
using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* kNonsense = "It talks nonsense";
constexpr const char* kSleep = "exec sleep 1000";

class EarWithFaults : public support::EarOfItsOwn {
 protected:
  /// What a process has failed of that does this when it is to learn, with time enough for all but hanging.
  std::string failing(const std::string& script, base::Milliseconds learns = std::chrono::hours(1)) {
    EarProcess::Options options = shell(script);
    options.learns = learns;
    EarProcess ear(loop, options);
    ear.learn(NetworkFor("Stop"));
    return becomes(ear, State::kFailed) ? ear.status().missing : "nothing";
  }
};

TEST_F(EarWithFaults, OneThatHangsIsGivenUp) {
  EarProcess::Options hangs = shell(kSleep);
  hangs.learns = base::Milliseconds(200);
  EarProcess silent(loop, hangs);
  silent.learn(NetworkFor("Stop"));
  const std::optional<Heard> told = heard(silent, anything);
  ASSERT_TRUE(told);
  EXPECT_EQ(told->kind, Kind::kDeaf);
  EXPECT_THAT(told->reason, HasSubstr("It gave no answer in time"));
}

TEST_F(EarWithFaults, OneThatTalksNonsenseIsGivenUp) {
  EXPECT_EQ(failing("exec cat /dev/urandom"), kNonsense);
  EXPECT_EQ(failing("exec yes"), kNonsense);
  EXPECT_EQ(failing(answering("stop") + kSleep), kNonsense) << "nobody has asked it to hear";
  EXPECT_EQ(failing(printing(ear::Framed(ear::MessageKind::kReady, "x")) + kSleep), kNonsense);
  const std::string head("\3\0\0\0\1\0\20\0", 8);
  EXPECT_EQ(failing(printing(head) + kSleep), kNonsense) << "the head of what is longer than any answer";
}

TEST_F(EarWithFaults, OneThatSpeaksUnaskedIsGivenUp) {
  EarProcess ear(loop, shell(ready() + ready() + kSleep));
  std::vector<State> states;
  ear.onChange = [&] { states.push_back(ear.status().state); };
  ear.learn(NetworkFor("Stop"));
  ASSERT_TRUE(eventually([&] { return states.size() == 3; }));
  EXPECT_THAT(states, testing::ElementsAre(State::kStarting, State::kReady, State::kFailed));
  EXPECT_EQ(ear.status().missing, kNonsense);
}

TEST_F(EarWithFaults, OneWhoseAnswerCannotBeReadIsGivenUp) {
  const ear::SpeechNetwork network = NetworkFor("Stop");
  const std::size_t size = ear::Framed(ear::MessageKind::kLearn, ear::Encoded(network)).size() + 100;
  EarProcess ear(loop, shell(ready() + "head -c " + std::to_string(size) + " >/dev/null; " +
                             printing(ear::Framed(ear::MessageKind::kHeard, "what?")) + kSleep));
  ear.learn(network);
  const std::optional<Heard> told = heard(ear, anything);
  ASSERT_TRUE(told);
  EXPECT_EQ(told->kind, Kind::kDeaf);
  EXPECT_THAT(told->reason, HasSubstr(kNonsense));
}

TEST_F(EarWithFaults, OneThatComplainsWithoutEndDoesNotHoldTheHouse) {
  EXPECT_EQ(failing("exec 3>&1; exec yes >&2", base::Milliseconds(200)), "It gave no answer in time");
  EXPECT_THAT(failing("head -c 5000000 /dev/zero | tr '\\000' x >&2; exit 1"),
              testing::AllOf(SizeIs(500), HasSubstr("xxx")));
}

TEST_F(EarWithFaults, NothingOfTheHouseIsLeftOpenForIt) {
  // As a library leaves it that doesn't think of other programs.
  const files::Descriptor open(::open("/dev/null", O_RDONLY));
  const files::Descriptor other(::dup2(open.get(), 77));
  ASSERT_EQ(other.get(), 77);
  ASSERT_EQ(::setenv("VANTORIX_SECRET", "secret", 1), 0);
  const std::string told = failing(
      "cd /proc/$$/fd; opened=$(echo *); variables=$(tr '\\000' '\\n' <../environ | cut -d = -f 1); "
      "echo $opened, $variables. >&2; exit 1");
  ::unsetenv("VANTORIX_SECRET");
  EXPECT_THAT(told, testing::StartsWith("0 1 2 "));
  EXPECT_THAT(told, testing::Not(HasSubstr("77")));
  EXPECT_THAT(told, HasSubstr("PATH"));
  EXPECT_THAT(told, testing::Not(HasSubstr("VANTORIX_SECRET")));
}

class EarThatIsStartedAgain : public EarWithFaults {
 protected:
  /// What a shell does of the first, the second and the third process, each for its own start.
  EarProcess::Options inTurn(const std::vector<std::string>& scripts) const {
    std::string all;
    for (std::size_t i = 0; i < scripts.size(); ++i)
      all += "if mkdir " + (folder.path() / std::to_string(i)).string() + " 2>/dev/null; then " + scripts[i] +
             "; exit; fi; ";
    EarProcess::Options options = shell(all);
    options.pause = base::Milliseconds(1);
    return options;
  }
  /// What a shell does until the test makes a file.
  [[nodiscard]] std::string until(const std::string& file) const {
    return "while [ ! -e " + (folder.path() / file).string() + " ]; do sleep 0.02; done; ";
  }
  void make(const std::string& file) const { std::ofstream(folder.path() / file) << file; }

  support::TempFolder folder;
};

TEST_F(EarThatIsStartedAgain, WhenSomebodyAsksForItAndTheFailureIsNotOfJustNow) {
  EarProcess::Options rests = inTurn({ready() + kSleep, ready() + kSleep});
  rests.pause = std::chrono::hours(1);
  EarProcess ear(loop, rests);
  ear.retry();
  EXPECT_EQ(ear.status().state, State::kOff) << "it has nothing to learn";
  ear.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  const pid_t first = ear.process();
  ear.retry();
  EXPECT_EQ(ear.process(), first) << "nothing has failed";
  ::kill(first, SIGKILL);
  ASSERT_TRUE(becomes(ear, State::kFailed));
  ear.retry();
  EXPECT_EQ(ear.status().state, State::kFailed) << "only just";

  EarProcess::Options atOnce = shell(ready() + kSleep);
  atOnce.pause = base::Milliseconds(0);
  EarProcess other(loop, atOnce);
  other.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(other, State::kReady));
  ::kill(other.process(), SIGKILL);
  ASSERT_TRUE(becomes(other, State::kFailed));
  other.retry();
  EXPECT_TRUE(becomes(other, State::kReady));
}

TEST_F(EarThatIsStartedAgain, WhatIsNewIsLearntAgainWhereOnlyThatHasFailed) {
  EarProcess ear(loop, inTurn({ready() + kSleep, "echo no memory left >&2; exit 1", ready() + kSleep}));
  ear.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  const pid_t first = ear.process();
  ear.learn(NetworkFor("Stop|Next"));
  ASSERT_TRUE(eventually([&] { return !ear.status().stale.empty(); }));
  EXPECT_THAT(ear.status().stale, HasSubstr("no memory left"));
  EXPECT_EQ(ear.status().state, State::kReady) << "for what it knew before";
  EXPECT_EQ(ear.status().missing, "");
  EXPECT_EQ(ear.process(), first);
  ASSERT_TRUE(eventually([&] { return ear.process() != first; }));
  EXPECT_EQ(ear.status().stale, "");
  EXPECT_EQ(ear.status().state, State::kReady);
}

TEST_F(EarThatIsStartedAgain, OneThatDiesWhileTheNextOneLearnsIsWaitedFor) {
  EarProcess ear(loop, inTurn({ready() + kSleep, until("go") + ready() + kSleep}));
  ear.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  ear.learn(NetworkFor("Stop|Next"));
  ::kill(ear.process(), SIGKILL);
  EXPECT_TRUE(becomes(ear, State::kStarting));
  make("go");
  EXPECT_TRUE(becomes(ear, State::kReady));
}

TEST_F(EarThatIsStartedAgain, ALargeNetworkComesWholeToOneThatReadsSlowly) {
  ear::SpeechNetwork network;
  for (int i = 0; i < 200'000; ++i) network.words.push_back("word" + std::to_string(i));
  const std::string whole = ear::Framed(ear::MessageKind::kLearn, ear::Encoded(network));
  ASSERT_GT(whole.size(), std::size_t{2} << 20U);
  const std::string sound = ear::Framed(ear::MessageKind::kHear, ear::SoundContent(anything));
  const std::string come = (folder.path() / "come").string();
  EarProcess ear(loop, shell("sleep 0.3; head -c " + std::to_string(whole.size()) + " >" + come + "; " +
                             ready() + "head -c " + std::to_string(sound.size()) + " >>" + come + "; " +
                             answering("stop") + kSleep));
  ear.learn(network);
  const std::optional<Heard> told = heard(ear, anything);
  ASSERT_TRUE(told);
  EXPECT_EQ(told->words, "stop");
  std::ifstream file(come, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  EXPECT_TRUE(bytes == whole + sound) << bytes.size() << " bytes";
}

TEST_F(EarThatIsStartedAgain, ThePauseBetweenFailuresGrows) {
  std::chrono::steady_clock::time_point now{std::chrono::hours(1)};
  bus::PollLoop clocked([&] { return now; });
  EarProcess ear(clocked, {.program = "/nowhere/ear"});
  int starts = 0;
  ear.onChange = [&] { starts += ear.status().state == State::kStarting ? 1 : 0; };
  const auto startsAfter = [&](std::chrono::milliseconds time) {
    now += time;
    for (int i = 0; i < 5; ++i) clocked.turn(base::Milliseconds(0));
    return starts;
  };
  ear.learn(NetworkFor("Stop"));
  EXPECT_EQ(startsAfter(std::chrono::seconds(4)), 1);
  EXPECT_EQ(startsAfter(std::chrono::seconds(5)), 2);
  EXPECT_EQ(startsAfter(std::chrono::seconds(9)), 2);
  EXPECT_EQ(startsAfter(std::chrono::seconds(1)), 3);
  for (int seconds = 20; seconds < 600; seconds *= 2) {
    const int before = starts;
    EXPECT_EQ(startsAfter(std::chrono::seconds(seconds - 1)), before);
    EXPECT_EQ(startsAfter(std::chrono::seconds(1)), before + 1) << seconds;
  }
  const int before = starts;
  EXPECT_EQ(startsAfter(std::chrono::seconds(599)), before);
  EXPECT_EQ(startsAfter(std::chrono::seconds(1)), before + 1) << "ten minutes are the longest";
  EXPECT_EQ(startsAfter(std::chrono::seconds(599)), before + 1);
  EXPECT_EQ(startsAfter(std::chrono::seconds(1)), before + 2);
}

TEST_F(EarThatIsStartedAgain, WhoIsBeingHeardIsAnsweredByTheOneWhoHasBegun) {
  const ear::SpeechNetwork network = NetworkFor("Stop");
  const std::size_t learnt = ear::Framed(ear::MessageKind::kLearn, ear::Encoded(network)).size();
  const std::size_t sound = ear::Framed(ear::MessageKind::kHear, ear::SoundContent(anything)).size();
  const std::string hears = "head -c " + std::to_string(learnt + sound) + " >/dev/null; ";
  EarProcess ear(loop, inTurn({ready() + hears + until("go") + answering("the old one") + kSleep,
                               ready() + hears + answering("the new one") + kSleep}));
  ear.learn(network);
  ASSERT_TRUE(becomes(ear, State::kReady));
  const pid_t first = ear.process();
  std::string old;
  ear.hear(anything, [&](const Heard& heard) { old = heard.words; });
  ear.learn(network);
  ASSERT_TRUE(eventually([&] { return ear.process() != first; }));
  EXPECT_EQ(heard(ear, anything)->words, "the new one");
  EXPECT_EQ(old, "");
  make("go");
  EXPECT_TRUE(eventually([&] { return old == "the old one"; }));
  EXPECT_TRUE(eventually([&] { return ::kill(first, 0) != 0; })) << "nobody needs it any more";
}

TEST_F(EarWithFaults, OfManyWhoSpeakAtOnceEightAreHeard) {
  EarProcess ear(loop, shell(ready() + kSleep));
  std::vector<std::string> told;
  const auto speak = [&] { ear.hear(anything, [&](const Heard& heard) { told.push_back(heard.reason); }); };
  ear.learn(NetworkFor("Stop"));
  for (int i = 0; i < 4; ++i) speak();  // who waits for it counts, too
  ASSERT_TRUE(becomes(ear, State::kReady));
  for (int i = 0; i < 4; ++i) speak();
  EXPECT_THAT(told, testing::IsEmpty());
  speak();
  EXPECT_THAT(told, testing::ElementsAre("too many are speaking at once"));
}

TEST_F(EarWithFaults, ItsDeathIsToldOnceToEachWhoWaits) {
  EarProcess::Options options = shell(ready() + kSleep);
  options.pause = std::chrono::hours(1);
  EarProcess ear(loop, options);
  ear.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  std::vector<std::string> told(3);
  for (std::string& each : told) ear.hear(anything, [&](const Heard& heard) { each += heard.reason; });
  ::kill(ear.process(), SIGKILL);
  ASSERT_TRUE(becomes(ear, State::kFailed));
  for (int i = 0; i < 5; ++i) loop.turn(base::Milliseconds(0));
  EXPECT_THAT(told, testing::Each("the recogniser has failed. It has ended"));
  EXPECT_EQ(heard(ear, anything)->reason, "It has ended") << "it rests";
}

TEST_F(EarWithFaults, WhoIsToldOfItsDeathMaySpeakAgainAtOnce) {
  EarProcess::Options options = shell(ready() + kSleep);
  options.pause = std::chrono::hours(1);
  EarProcess ear(loop, options);
  ear.learn(NetworkFor("Stop"));
  ASSERT_TRUE(becomes(ear, State::kReady));
  std::vector<std::string> told;
  ear.hear(anything, [&](const Heard& first) {
    told.push_back(first.reason);
    ear.hear(anything, [&](const Heard& second) { told.push_back(second.reason); });
  });
  ::kill(ear.process(), SIGKILL);
  EXPECT_TRUE(eventually([&] { return told.size() == 2; }));
  EXPECT_THAT(told, testing::ElementsAre("the recogniser has failed. It has ended", "It has ended"));
}

TEST_F(EarWithFaults, OneThatNeverAnswersASoundIsGivenUp) {
  EarProcess::Options options = shell(ready() + kSleep);
  options.hears = base::Milliseconds(200);
  EarProcess ear(loop, options);
  ear.learn(NetworkFor("Stop"));
  const std::optional<Heard> told = heard(ear, anything);
  ASSERT_TRUE(told);
  EXPECT_EQ(told->reason, "the recogniser has failed. It gave no answer in time");
  EXPECT_TRUE(becomes(ear, State::kFailed));
}

TEST_F(EarThatIsStartedAgain, OfASoundThatIsTooLongHalfAMinuteIsHeard) {
  const ear::SpeechNetwork network = NetworkFor("Stop");
  const std::size_t learnt = ear::Framed(ear::MessageKind::kLearn, ear::Encoded(network)).size();
  const std::string size = (folder.path() / "size").string();
  EarProcess ear(loop, shell(ready() + "head -c " + std::to_string(learnt + 4) + " >/dev/null; " +
                             "head -c 4 | od -An -t u4 >" + size + "; " + answering("stop") + kSleep));
  ear.learn(network);
  const std::optional<Heard> told = heard(ear, std::vector<std::int16_t>(16000 * 31, 1));
  ASSERT_TRUE(told);
  EXPECT_EQ(told->words, "stop");
  int bytes = 0;
  std::ifstream(size) >> bytes;
  EXPECT_EQ(bytes, 30 * 16000 * 2);
}

TEST_F(EarThatIsStartedAgain, ItMayGoWhileItsProcessesStillSpeak) {
  const std::filesystem::path spoken = folder.path() / "spoken";
  auto ear = std::make_unique<EarProcess>(loop, shell(ready() + "mkdir " + spoken.string() + "; " + kSleep));
  int told = 0;
  ear->onChange = [&] { ++told; };
  ear->learn(NetworkFor("Stop"));
  ASSERT_TRUE(support::Eventually([&] { return std::filesystem::exists(spoken); }));
  ear->learn(NetworkFor("Stop|Next"));  // the first one's word hasn't been read yet
  EXPECT_EQ(told, 1);
  ear.reset();
  for (int i = 0; i < 5; ++i) loop.turn(base::Milliseconds(20));
  EXPECT_EQ(told, 1);
}

}  // namespace
