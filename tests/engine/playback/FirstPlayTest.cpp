// The decoder, which is made when something is played for the first time.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "base/Failure.hpp"
#include "engine/common/Fixtures.hpp"
#include "support/faults/InChild.hpp"

namespace engine::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Lets the process have little more memory than it has already; `false` takes the limit away again.
void LimitMemory(bool limited) {
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_AS, &limit), 0);
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  const rlim_t little = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + (rlim_t{64} << 20U);
  limit.rlim_cur = limited ? little : limit.rlim_max;
  ASSERT_EQ(::setrlimit(RLIMIT_AS, &limit), 0);
}

/// The decoder's threads carry its name. The library has threads of its own, which come and go.
int DecoderThreads() {
  int count = 0;
  for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
    std::string name;
    std::getline(std::ifstream(thread.path() / "comm"), name);
    if (name.starts_with("mpv")) ++count;
  }
  return count;
}

class FirstPlay : public PlayerTest {};

}  // namespace

TEST_F(FirstPlay, MakesTheDecoderAndNothingBeforeDoes) {
  start();
  demo::WriteSound(folder / "1.wav", demo::Tone(440, 0.2), demo::FileFormat::kWav);
  EXPECT_EQ(player->versionInfo().front(), '9');
  player->settings().volume(70);
  player->settings().mute(true);
  player->settings().setMode("loop", true);
  player->settings().setMode("loop", false);
  player->URL(folder / "1.wav");
  player->controls().stop();
  player->controls().next();
  EXPECT_FALSE(player->controls().isAvailable("pause"));
  EXPECT_EQ(player->controls().currentPosition(), 0);
  for (int i = 0; i < 10; ++i) loop.pump();
  EXPECT_EQ(DecoderThreads(), 0);
  told.states.clear();
  player->controls().play();
  EXPECT_GT(DecoderThreads(), 0);
  ASSERT_TRUE(untilState(player::kStopped));
  EXPECT_THAT(told.states, ElementsAre(9, 3, 8, 1));
}

TEST_F(FirstPlay, SoundsAsWasSetBefore) {
  demo::WriteSound(folder / "1.wav", demo::Tone(440, 0.2), demo::FileFormat::kWav);
  for (const bool mute : {true, false}) {
    config.audioOutput = "pcm:" + (folder / "heard.wav");
    start();
    player->settings().volume(100);
    player->settings().mute(mute);
    player->URL(folder / "1.wav");
    player->controls().play();
    ASSERT_TRUE(untilState(player::kStopped));
    player.reset();
    told.states.clear();
    const auto heard = demo::ReadSound(folder / "heard.wav").samples;
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(*std::max_element(heard.begin(), heard.end()) > 0.1F, !mute);
  }
}

TEST_F(FirstPlay, IsNotAwaitedToTellThatThereIsTooLittleMemory) {
  EXPECT_TRUE(support::InChild([&] {
    LimitMemory(true);
    try {
      start();
      ADD_FAILURE() << "it started";
    } catch (const base::Failure& failure) {
      EXPECT_EQ(failure.number(), base::number::kCannotCreate);
    }
  }));
}

TEST_F(FirstPlay, WithTooLittleMemoryLeftIsAFailureThatIsTold) {
  demo::WriteSound(folder / "1.wav", demo::Tone(440, 0.2), demo::FileFormat::kWav);
  EXPECT_TRUE(support::InChild([&] {
    start();
    player->URL(folder / "1.wav");
    LimitMemory(true);
    player->controls().play();
    EXPECT_EQ(told.errors, 0) << "told from within the call";
    ASSERT_TRUE(untilState(player::kStopped));
    EXPECT_THAT(told.states, ElementsAre(10, 9, 1));
    EXPECT_EQ(told.errors, 1);
    EXPECT_THAT(player->Error().item(0).errorDescription, HasSubstr("too little memory"));
    LimitMemory(false);
    told.states.clear();
    player->controls().play();
    ASSERT_TRUE(untilState(player::kStopped));
    EXPECT_THAT(told.states, ElementsAre(9, 3, 8, 1));
    player.reset();
  }));
}

}  // namespace engine::testing
