#include "engine/queue/SyncThread.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>

#include "support/Process.hpp"
#include "support/TempFolder.hpp"

namespace engine::testing {
namespace {

namespace fs = std::filesystem;

TEST(FilesOnTheirWayToTheDisk, ThatHadToStayGoWithTheNextThatGetsThere) {
  const support::TempFolder folder;
  const std::string root = folder.path().string();
  for (const char* name : {"/old", "/older", "/new"}) std::ofstream(root + name) << name;
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  const files::Descriptor other(pipe[0]);
  std::atomic<int> told{0};
  {
    SyncThread sync([&](const std::string&) { ++told; });
    // A pipe can't be brought to any disk.
    sync.sync({std::make_shared<files::Descriptor>(pipe[1]), root, {root + "/old"}});
    ASSERT_TRUE(support::Eventually([&] { return told == 1; }));
    EXPECT_TRUE(fs::exists(root + "/old"));
    const int file = ::open((root + "/new").c_str(), O_WRONLY | O_CLOEXEC);
    sync.sync({std::make_shared<files::Descriptor>(file), root, {root + "/older"}});
  }
  EXPECT_EQ(told, 1);
  EXPECT_FALSE(fs::exists(root + "/old"));
  EXPECT_FALSE(fs::exists(root + "/older"));
  EXPECT_TRUE(fs::exists(root + "/new"));
}

}  // namespace
}  // namespace engine::testing
