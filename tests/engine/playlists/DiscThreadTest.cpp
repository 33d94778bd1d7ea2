#include "engine/playlists/DiscThread.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "support/Process.hpp"

namespace engine {
namespace {

void WorkSlowly() { std::this_thread::sleep_for(std::chrono::milliseconds(300)); }

// Whoever is held up himself between the two finds the first done, and has the whole limit for the second;
// so it is tried until he isn't.
TEST(ADiscThread, HasOneLimitForWhatWasBegunAndWhatIsAsked) {
  EXPECT_TRUE(support::Eventually([] {
    DiscThread thread([] {});
    EXPECT_TRUE(thread.begin(WorkSlowly));
    const auto answer = thread.ask<bool>(
        [] {
          WorkSlowly();
          return true;
        },
        std::chrono::milliseconds(400));
    return !answer;
  }));
}

TEST(ADiscThread, AnswersWithinItsLimitThoughEarlierWorkIsUnderWay) {
  DiscThread thread([] {});
  bool worked = false;
  EXPECT_TRUE(thread.begin([&] { worked = true; }));
  EXPECT_EQ(thread.ask<bool>([&] { return worked; }, std::chrono::minutes(2)), true);
}

}  // namespace
}  // namespace engine
