#include "files/ReadFile.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "files/FolderLock.hpp"
#include "support/FailureNumber.hpp"
#include "support/TempFolder.hpp"
#include "support/faults/InChild.hpp"

namespace files::testing {
namespace {

TEST(TextOf, IsNothingWhereThereIsNoFileAndAFailureWhereItIsNone) {
  const support::TempFolder root;
  EXPECT_EQ(TextOf(root.path() / "a"), std::nullopt);
  std::ofstream(root.path() / "a") << "text";
  EXPECT_EQ(TextOf(root.path() / "a"), "text");
  EXPECT_EQ(support::FailureNumberOf([&] { TextOf(root.path()); }), base::number::kDeviceIo);
  // Nobody writes to this pipe: whoever waits for that waits for ever.
  ASSERT_EQ(::mkfifo((root.path() / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(support::FailureNumberOf([&] { TextOf(root.path() / "pipe"); }), base::number::kDeviceIo);
}

TEST(TextOf, ReadsAllOfWhatTheSystemMakesUpAsItIsRead) {
  const auto status = TextOf("/proc/self/status");  // says that it is empty
  ASSERT_TRUE(status.has_value());
  EXPECT_NE(status->find("\nPid:"), std::string::npos);
  EXPECT_NE(status->find("\nnonvoluntary_ctxt_switches:"), std::string::npos);
}

TEST(FolderLock, LetsOneProcessInUntilItLeaves) {
  const support::TempFolder root;
  {
    const FolderLock first(root.path());
    EXPECT_EQ(support::FailureNumberOf([&] { const FolderLock second(root.path()); }),
              base::number::kPermissionDenied);
  }
  EXPECT_EQ(support::FailureNumberOf([&] { const FolderLock second(root.path()); }), 0);
}

TEST(FolderLock, WhoAsksWhetherItIsHeldKeepsNobodyOut) {
  const support::TempFolder root;
  EXPECT_FALSE(FolderLock::held(root.path())) << "nobody was ever in there";
  {
    const FolderLock first(root.path());
    EXPECT_TRUE(FolderLock::held(root.path()));
  }
  EXPECT_FALSE(FolderLock::held(root.path()));
  std::atomic<bool> end{false};
  std::thread asking([&] {
    while (!end) FolderLock::held(root.path());
  });
  int kept = 0;
  for (int i = 0; i < 1000; ++i) kept += support::FailureNumberOf([&] { const FolderLock one(root.path()); });
  end = true;
  asking.join();
  EXPECT_EQ(kept, 0);
}

}  // namespace
}  // namespace files::testing
