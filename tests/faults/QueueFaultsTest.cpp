// The kept queue on a disk whose operations fail one after the other.
#include <gtest/gtest.h>

#include <optional>

#include "engine/queue/QueueHouse.hpp"
#include "support/faults/FailingFiles.hpp"

namespace engine::testing {
namespace {

std::shared_ptr<LooseMedia> Title(const std::string& address) {
  return std::make_shared<LooseMedia>(address, TrackTags());
}

TEST(QueueFaults, WhereAnyOperationFailsTheQueueIsOneThatWasThereAndTheFailureIsTold) {
  const std::vector<std::string> first{"/a", "/b"};
  const std::vector<std::string> longer{"/a", "/b", "/c"};
  const std::vector<std::string> moved{"/c", "/a", "/b"};
  const std::vector<std::string> second{"/d", "/e"};
  const int failed = support::WithEachFileFault([&](support::FaultyRun& run) {
    std::vector<std::string> left;
    bool told = false;
    {
      QueueHouse house(run.folder());
      house.play(first);
      house.pass();
      run.onTheFailingDisk([&] {
        const auto list = house.playback.queue().playlist();
        list->appendItem(Title("/c"));
        list->moveItem(2, 0);
        house.pass();
        house.play(second);
        house.pass();
      });
      left = house.sources();
      told = !house.messages.empty();
    }
    {
      QueueHouse next(run.folder());
      const std::vector<std::string> now = next.sources();
      EXPECT_TRUE(next.messages.empty()) << next.messages.front();
      if (!told) {
        EXPECT_EQ(now, left);
      }
      EXPECT_TRUE(now == first || now == longer || now == moved || now == second)
          << ::testing::PrintToString(now);
      next.play({"/after"});
    }
    EXPECT_EQ(QueueHouse(run.folder()).sources(), std::vector<std::string>{"/after"});
  });
  EXPECT_GT(failed, 10);
}

TEST(QueueFaults, AStartThatCantReadItLosesNothing) {
  const int failed = support::WithEachFileFault([&](support::FaultyRun& run) {
    {
      QueueHouse house(run.folder());
      house.play({"/a", "/b"});
      house.pass();
    }
    run.onTheFailingDisk([&] {
      const QueueHouse house(run.folder());
      EXPECT_TRUE(house.sources() == std::vector<std::string>({"/a", "/b"}) || !house.messages.empty());
    });
    EXPECT_EQ(QueueHouse(run.folder()).sources(), std::vector<std::string>({"/a", "/b"}));
  });
  EXPECT_GT(failed, 2);
}

}  // namespace
}  // namespace engine::testing
