// The kept queue on a disk whose operations fail one after the other.
#include <gtest/gtest.h>

#include <fcntl.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "engine/queue/QueueHouse.hpp"
#include "engine/queue/SyncThread.hpp"
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
    std::vector<std::string> told;
    std::optional<QueueHouse> house(std::in_place, run.folder(), files::WriteBytes,
                                    [&](const std::string& line) { told.push_back(line); });
    house->play(first);
    house->pass();
    run.onTheFailingDisk([&] {
      const auto list = house->playback.queue().playlist();
      list->appendItem(Title("/c"));
      list->moveItem(2, 0);
      house->pass();
      house->play(second);
      house->pass();
      left = house->sources();
      house.reset();  // what is still on its way to the disk gets there or is told
    });
    if (run.failed().starts_with("sync " + run.folder() + "/kept")) {
      EXPECT_FALSE(told.empty()) << run.failed();
    }
    {
      QueueHouse next(run.folder());
      const std::vector<std::string> now = next.sources();
      EXPECT_TRUE(next.messages.empty()) << next.messages.front();
      if (told.empty()) {
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

TEST(QueueFaults, AFileThatCantGetOntoTheDiskIsToldAndTheOneBeforeItStays) {
  int unsynced = 0;
  const int failed = support::WithEachFileFault([&](support::FaultyRun& run) {
    const std::string before = run.folder() + "/queue.1";
    const std::string path = run.folder() + "/queue.2";
    std::ofstream(before) << "before";
    std::ofstream(path) << "behind";
    const auto file = std::make_shared<files::Descriptor>(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    std::vector<std::string> told;
    run.onTheFailingDisk([&] {
      SyncThread thread([&](const std::string& reason) { told.push_back(reason); });
      thread.sync({file, run.folder(), {before}});
    });
    const bool synced = run.failed().empty() || run.failed().starts_with("remove ");
    EXPECT_EQ(told.empty(), synced) << run.failed();
    EXPECT_EQ(std::filesystem::exists(before), !run.failed().empty()) << run.failed();
    unsynced += run.failed() == "sync " + path ? 1 : 0;
  });
  EXPECT_GT(failed, unsynced);  // the folder's too
  EXPECT_EQ(unsynced, 4);
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
