// Processes that are no good listeners.
#include "standin/ear/EarOfItsOwn.hpp"

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

}  // namespace
